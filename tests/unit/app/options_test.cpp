#include "app/options.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace app {
namespace {

using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

Options read(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "codebook");
  return ReadOptions(static_cast<int>(arguments.size()), arguments.data());
}

TEST(Options, memoryIsSharedBetweenColumnsAndPercentiles) {
  const Options options = read({"data.csv", "--memory-limit", "256MB"});
  EXPECT_EQ(options.data.columnMemory, 102'400'000);
  EXPECT_EQ(options.percentileMemory, 76'800'000);
}

TEST(Options, littleMemoryForManyThreadsBoundsTheTextReadAtATime) {
  // 15 % of 64 MB, 3 bytes a byte of text, one text more than threads.
  EXPECT_EQ(read({"data.csv", "--memory-limit", "64MB", "--threads", "4"}).data.segmentBytes, 640'000u);
  EXPECT_EQ(read({"data.csv", "--memory-limit", "64MB", "--threads", "1024"}).data.segmentBytes, 262'144u);
  EXPECT_EQ(read({"data.csv", "--memory-limit", "1GB", "--threads", "4"}).data.segmentBytes, 0u);
}

TEST(Options, memoryIsNotLimitedUnlessAsked) {
  const Options options = read({"data.csv"});
  EXPECT_EQ(options.data.segmentBytes, 0u);
  EXPECT_EQ(options.data.columnMemory, 0);
  EXPECT_EQ(options.percentileMemory, 0);
}

TEST(Options, memoryMustSufficeToWork) {
  EXPECT_NO_THROW(read({"data.csv", "--memory-limit=64MB"}));
  EXPECT_THAT([] { read({"data.csv", "--memory-limit=63.9MB"}); }, ThrowsMessage<UsageError>(HasSubstr("64MB")));
}

TEST(Options, timingHasTwoForms) {
  EXPECT_EQ(read({"data.csv"}).timing, TimingForm::None);
  EXPECT_EQ(read({"data.csv", "--timing"}).timing, TimingForm::Table);
  EXPECT_EQ(read({"--timing", "data.csv"}).timing, TimingForm::Table);
  EXPECT_EQ(read({"data.csv", "--timing=json"}).timing, TimingForm::Json);
}

TEST(Options, quietIsAsked) {
  EXPECT_FALSE(read({"data.csv"}).quiet);
  EXPECT_TRUE(read({"data.csv", "-q"}).quiet);
}

TEST(Options, emptyWeightIsNotNoWeight) {
  EXPECT_EQ(read({"data.csv"}).data.weight, std::nullopt);
  EXPECT_EQ(read({"data.csv", "--weight", ""}).data.weight, "");
  EXPECT_EQ(read({"data.csv", "--weight="}).data.weight, "");
  EXPECT_EQ(read({"data.csv", "--weight=", "-c", "X."}).commandText, "X.");
  EXPECT_EQ(read({"--weight", "", "data.csv"}).data.path, "data.csv");
}

TEST(Options, weightWithoutANameIsWrongUse) {
  for (const std::vector<const char*>& arguments :
       {std::vector<const char*>{"data.csv", "--weight"}, {"data.csv", "--weight", "-c", "X."}})
    EXPECT_THAT([&] { read(arguments); }, ThrowsMessage<UsageError>(HasSubstr("--weight NAME")));
}

TEST(Options, nothingBehindTwoDashesIsAnOption) { EXPECT_EQ(read({"--", "--weight"}).data.path, "--weight"); }

}  // namespace
}  // namespace app
