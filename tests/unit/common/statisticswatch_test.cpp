#include "runtime/common/statisticswatch.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace runtime::common {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

struct Watched {
  std::vector<std::string> told;
  StatisticsWatch watch{[this](const std::string& text) { told.push_back(text); }};
};

TEST(StatisticsWatch, aVariablesOwnStatisticsAreNotTold) {
  Watched w;
  w.watch.TableOpened("x");
  w.watch.StatisticRead("x");
  EXPECT_THAT(w.told, IsEmpty());
}

TEST(StatisticsWatch, anothersStatisticsAreToldOnceATable) {
  Watched w;
  w.watch.TableOpened("y");
  w.watch.StatisticRead("x");
  w.watch.StatisticRead("x");
  w.watch.TableOpened("z");
  w.watch.StatisticRead("x");
  EXPECT_THAT(w.told, ElementsAre(StartsWith("Statistics shown for y are those of x."),
                                  StartsWith("Statistics shown for z are those of x.")));
}

TEST(StatisticsWatch, readingWithoutATableIsNotTold) {
  Watched w;
  w.watch.StatisticRead("x");
  w.watch.TableOpened("y");
  w.watch.NoTable();
  w.watch.StatisticRead("x");
  EXPECT_THAT(w.told, IsEmpty());
}

}  // namespace
}  // namespace runtime::common
