#include "app/timings.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

namespace app {
namespace {

/// A clock of which every look takes the next of these times.
class Timed : public ::testing::Test {
 protected:
  Timings Measured() {
    return Timings([this] { return fNow; });
  }
  void At(double wall, double cpu) { fNow = {wall, cpu}; }

  Seconds fNow{100.0, 0.5};
};

TEST_F(Timed, stagesFollowOneAnotherAndAddUp) {
  Timings timings = Measured();
  timings.Begin(Stage::Read);
  At(102.0, 3.5);
  timings.Begin(Stage::Pass);
  At(103.0, 4.5);
  timings.Begin(Stage::Tables);
  At(103.5, 5.0);
  timings.Begin(Stage::Pass);
  At(104.0, 6.0);
  timings.Begin(Stage::Write);
  At(104.25, 6.25);
  timings.End();
  const auto json = nlohmann::json::parse(timings.Json(123));
  EXPECT_EQ(json["read"], nlohmann::json({{"wall", 2.0}, {"cpu", 3.0}}));
  EXPECT_EQ(json["pass"], nlohmann::json({{"wall", 1.5}, {"cpu", 2.0}}));
  EXPECT_EQ(json["percentiles"], nlohmann::json({{"wall", 0.0}, {"cpu", 0.0}}));
  EXPECT_EQ(json["tables"], nlohmann::json({{"wall", 0.5}, {"cpu", 0.5}}));
  EXPECT_EQ(json["write"], nlohmann::json({{"wall", 0.25}, {"cpu", 0.25}}));
  EXPECT_EQ(json["memory"], 123);
}

TEST_F(Timed, totalCountsTheProcessorFromTheStartOfTheProgram) {
  Timings timings = Measured();
  At(110.0, 8.5);
  timings.End();
  EXPECT_EQ(nlohmann::json::parse(timings.Json(0))["total"], nlohmann::json({{"wall", 10.0}, {"cpu", 8.5}}));
}

TEST_F(Timed, tableIsAligned) {
  Timings timings = Measured();
  timings.Begin(Stage::Read);
  At(1234.5, 2000.0);
  timings.End();
  EXPECT_EQ(timings.Table(182'345'678),
            "                  wall s      CPU s\n"
            "  read          1134.500   1999.500\n"
            "  pass             0.000      0.000\n"
            "  percentiles      0.000      0.000\n"
            "  tables           0.000      0.000\n"
            "  write            0.000      0.000\n"
            "  total         1134.500   2000.000\n"
            "  peak memory      182.3 MB");
}

TEST(Clocks, processorTimeAndMemoryAreThoseOfThisProcess) {
  const Seconds before = SecondsNow();
  volatile double x = 1.0;
  for (int i = 0; i < 20'000'000; ++i) x = x * 1.0000001;
  const Seconds after = SecondsNow();
  EXPECT_GT(after.cpu, before.cpu);
  EXPECT_GT(after.wall, before.wall);
  EXPECT_GT(PeakMemory(), 1'000'000);
}

}  // namespace
}  // namespace app
