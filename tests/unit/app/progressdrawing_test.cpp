#include "app/progressdrawing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace app {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::Optional;

constexpr int kWide = 120;

/// A run that is `share` through after 10 seconds.
ProgressDrawing after10Seconds(bool utf8, std::int64_t cases, double share) {
  ProgressDrawing drawing(utf8);
  drawing.BeginStage("reading", 0.0);
  drawing.Advance({cases, share});
  return drawing;
}

TEST(ProgressDrawing, saysStageShareCasesSpeedAndTimeLeft) {
  EXPECT_THAT(
      after10Seconds(false, 1234567, 0.25).Line(10.0, kWide),
      Optional(std::string("reading  [#######.......................]   25 %  1,234,567 cases  123.5k/s  0:30 left")));
}

TEST(ProgressDrawing, drawsBlocksWhereTheLocaleHasThem) {
  EXPECT_THAT(after10Seconds(true, 8, 0.5).Line(10.0, kWide),
              Optional(std::string("reading  ████████████████░░░░░░░░░░░░░░░░   50 %  8 cases  1/s  0:10 left")));
}

TEST(ProgressDrawing, saysNothingBeforeTheFirstStage) {
  EXPECT_EQ(ProgressDrawing(true).Line(100.0, kWide), std::nullopt);
}

TEST(ProgressDrawing, saysNothingOfWorkThatIsDoneSoon) {
  ProgressDrawing drawing(false);
  drawing.BeginStage("reading", 5.0);
  drawing.Advance({10, 0.5});
  EXPECT_EQ(drawing.Line(5.0 + ProgressDrawing::kShownAfter - 0.01, kWide), std::nullopt);
  EXPECT_NE(drawing.Line(5.0 + ProgressDrawing::kShownAfter, kWide), std::nullopt);
}

TEST(ProgressDrawing, laterStageIsShownAtOnceAndBeginsWithNothingDone) {
  ProgressDrawing drawing = after10Seconds(false, 50, 1.0);
  drawing.BeginStage("counting", 10.0);
  EXPECT_THAT(drawing.Line(10.0, kWide), Optional(std::string("counting")));
}

TEST(ProgressDrawing, speedAndTimeLeftAreThoseOfTheStage) {
  ProgressDrawing drawing = after10Seconds(false, 50, 1.0);
  drawing.BeginStage("counting", 10.0);
  drawing.Advance({2000, 0.5});
  const auto line = drawing.Line(12.0, kWide);
  EXPECT_THAT(line, Optional(HasSubstr("1.0k/s")));
  EXPECT_THAT(line, Optional(HasSubstr("0:02 left")));
}

TEST(ProgressDrawing, leavesOutWhatIsNotKnown) {
  EXPECT_THAT(after10Seconds(false, 500, 0.0).Line(10.0, kWide), Optional(std::string("reading  500 cases  50/s")));
  EXPECT_THAT(after10Seconds(false, 0, 0.0).Line(10.0, kWide), Optional(std::string("reading")));
}

TEST(ProgressDrawing, givesNoSpeedOfAnInstant) {
  ProgressDrawing drawing = after10Seconds(false, 1, 1.0);
  drawing.BeginStage("counting", 10.0);
  drawing.Advance({1000, 0.1});
  EXPECT_THAT(drawing.Line(10.0, kWide), Optional(Not(HasSubstr("/s"))));
  EXPECT_THAT(drawing.Line(10.0, kWide), Optional(Not(HasSubstr("left"))));
}

TEST(ProgressDrawing, neverExceedsItsColumns) {
  for (const double share : {0.0, 0.001, 0.5, 1.0})
    for (int columns = 0; columns <= 130; ++columns) {
      const auto line = after10Seconds(false, 123456789012, share).Line(10.0, columns);
      ASSERT_NE(line, std::nullopt);
      EXPECT_LE(line->size(), static_cast<std::size_t>(columns)) << *line;
    }
}

TEST(ProgressDrawing, givesUpTheBarFirstAndTheShareLast) {
  const ProgressDrawing drawing = after10Seconds(false, 1000000, 0.25);
  EXPECT_THAT(drawing.Line(10.0, 79), Optional(HasSubstr("[##")));
  EXPECT_THAT(drawing.Line(10.0, 54), Optional(std::string("reading   25 %  1,000,000 cases  100.0k/s  0:30 left")));
  EXPECT_THAT(drawing.Line(10.0, 45), Optional(std::string("reading   25 %  1,000,000 cases  0:30 left")));
  EXPECT_THAT(drawing.Line(10.0, 30), Optional(std::string("reading   25 %  0:30 left")));
  EXPECT_THAT(drawing.Line(10.0, 20), Optional(std::string("reading   25 %")));
  EXPECT_THAT(drawing.Line(10.0, 10), Optional(std::string("reading")));
  EXPECT_THAT(drawing.Line(10.0, 4), Optional(std::string("read")));
}

TEST(ProgressDrawing, longTimesHaveHours) {
  EXPECT_THAT(after10Seconds(false, 1, 0.0025).Line(10.0, kWide), Optional(HasSubstr("1:06:30 left")));
}

TEST(ProgressDrawing, shareIsNeverRoundedUpToWhole) {
  EXPECT_THAT(after10Seconds(false, 1, 0.9999).Line(10.0, kWide), Optional(HasSubstr(" 99 %")));
  EXPECT_THAT(after10Seconds(false, 1, 1.0).Line(10.0, kWide), Optional(HasSubstr("100 %  1 case  ")));
}

}  // namespace
}  // namespace app
