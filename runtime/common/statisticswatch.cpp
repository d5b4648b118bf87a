#include "runtime/common/statisticswatch.h"

namespace runtime::common {

void StatisticsWatch::TableOpened(const std::string& title) {
  fTable = title;
  fTold = false;
}

void StatisticsWatch::StatisticRead(const std::string& variable) {
  if (fTable.empty() || fTold || variable == fTable) return;
  fTold = true;
  fWarn("Statistics shown for " + fTable + " are those of " + variable +
        ". Add COUNT or PERCENT to the STATISTICS subcommand to have each variable's own.");
}

void StatisticsWatch::NoTable() { fTable.clear(); }

}  // namespace runtime::common
