// A host that the tests hold in their hands, for what the real one never does: it throws, gives null, has a parent
// dataset, answers with the cells that it is told to. It stands in for the aggregation library, the procedure, its data
// source, the messages, the parser and the common blocks; dictionary, cases and pivot tables are the real ones.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/data/caseiterator.h"
#include "host/output/proceduredatasource.h"
#include "host/parser/commandspec.h"

#include "runtime/data/dataset.h"
#include "runtime/output/model/report.h"

namespace codebook::standin {

/// Statistic code and value.
using Cell = std::vector<std::pair<int, double>>;

struct Category {
  double value = 0.0;
  int code = 0;
  std::string text;
  std::optional<Cell> cell;  // none: the cell has no values
};

/// One aggregation table, in the order in which they are made: what it is to answer, and what was asked of it.
struct Table {
  // Planned by the test.
  std::vector<double> column;        // its item's value a row, for the number of values met
  std::vector<Category> categories;  // the total last
  std::optional<Cell> wholeCell;     // of a scale item
  // Recorded.
  std::vector<std::string> requests;
  std::vector<int> takenRows;
};

struct Host {
  // Planned by the test.
  std::shared_ptr<const runtime::data::Dataset> dataset;
  bool fatalError = false;
  const MAVO_DataSource* parent = nullptr;
  /// In place of an iterator over the dataset's cases.
  std::function<MAVO_InputCaseIterator*(ProcedureDataSource&)> newIterator;
  /// What the parser makes of the command: fills the CommandSpec, 0 on success. None: nothing was written.
  std::function<int(CommandSpec&)> read;
  std::deque<Table> tables;
  // Recorded.
  std::size_t tablesMade = 0;
  std::vector<std::string> life;      // "procedure", "~procedure", ... in order
  std::vector<std::string> messages;  // "error: text (^1, ^2)", placeholders as they stand
  std::vector<std::string> blocksFetched;
  std::vector<std::shared_ptr<runtime::output::Procedure>> procedures;
};

/// The present host; every test begins with a new one.
Host& host();
Host& newHost();

/// The titles of all tables of the output, in order.
std::vector<std::string> tableTitles();
/// The rows of the i-th table of the output, one line each: "Label | <none>", groups in front.
std::vector<std::string> rowsOfTable(std::size_t i);

/// Puts command specifications together, also such as no command text gives.
struct Keyword {
  std::string name;
  std::optional<std::string> value = std::nullopt;   // a plain value
  std::optional<std::string> chosen = std::nullopt;  // a qualifier or declared value
};
void addSubcommand(CommandSpec& spec, const std::string& name, const std::vector<Keyword>& keywords);
/// `exported`: the raw parameter is there. `readable`: its tokens can be read.
void addList(CommandSpec& spec, const std::vector<std::string>& tokens, bool exported = true, bool readable = true);

}  // namespace codebook::standin
