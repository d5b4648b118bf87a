// Runs commands through the module and the real runtime over a dataset in memory, and shows what came out in a form
// that reads well in an expectation.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "runtime/data/dataset.h"
#include "runtime/output/model/report.h"

namespace codebook::test {

/// What a run left behind.
class CommandRun {
 public:
  /// Runs the text at once, on this thread.
  CommandRun(std::shared_ptr<const runtime::data::Dataset> dataset, const std::string& commandText);

  /// False when a command stopped with an error.
  bool done() const { return fDone; }
  const runtime::output::Report& report() const { return fReport; }

  /// "error: text", "warning: text", "host warning: text", in order.
  std::vector<std::string> messages() const;
  /// The titles of the tables of all procedures, in order.
  std::vector<std::string> titles() const;
  /// The rows of the table with that title (the `occurrence`-th, from 0), one line each, groups without rows included:
  /// "Standard Attributes > Label | Value: <none>", "Valid Values > 1 | Value: yes | Count: 3 | Percent: 60.0%",
  /// "Missing Values >" (an empty group), "File Name | survey.csv" (a cell of the row itself).
  std::vector<std::string> rows(const std::string& title, int occurrence = 0) const;
  /// The rows of that table whose line begins with the group's name.
  std::vector<std::string> rowsOf(const std::string& title, const std::string& group) const;
  const runtime::output::Table& table(const std::string& title, int occurrence = 0) const;

 private:
  runtime::output::Report fReport;
  bool fDone = false;
};

}  // namespace codebook::test
