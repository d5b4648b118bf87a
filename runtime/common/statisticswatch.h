// Watches whose statistics go into whose table.
#pragma once

#include <functional>
#include <string>

namespace runtime::common {

/// A procedure may read the mean, standard deviation or percentiles of one variable while it writes the table of
/// another. That is told, once a table.
class StatisticsWatch {
 public:
  using Warn = std::function<void(const std::string& text)>;

  explicit StatisticsWatch(Warn warn) : fWarn(std::move(warn)) {}

  /// A table was opened; a variable's table has the variable's name as its title.
  void TableOpened(const std::string& title);
  /// A scale statistic of the variable of that name was read.
  void StatisticRead(const std::string& variable);
  /// The procedure has ended; no table is being written.
  void NoTable();

 private:
  Warn fWarn;
  std::string fTable;  // empty when none is being written
  bool fTold = false;
};

}  // namespace runtime::common
