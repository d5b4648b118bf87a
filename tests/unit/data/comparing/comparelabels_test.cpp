#include "runtime/data/comparing/comparelabels.h"

#include <gmock/gmock.h>

#include "tests/unit/data/comparing/wave.h"

namespace runtime::data {
namespace {

using test::InWords;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(CompareLabels, findNothingInTheSameInAnotherOrder) {
  EXPECT_THAT(CompareLabels({{"1", "Yes"}, {"2", "No"}}, {{"2", "No"}, {"1", "Yes"}}), IsEmpty());
}

TEST(CompareLabels, tellAddedRemovedAndChangedOnes) {
  EXPECT_THAT(InWords(CompareLabels({{"1", "Yes"}, {"2", "No"}, {"3", "Perhaps"}},
                                    {{"1", "Yes!"}, {"3", "Perhaps"}, {"4", "Never"}})),
              ElementsAre("value-label-changed 1: Yes -> Yes!", "value-label-removed 2: No -> nothing",
                          "value-label-added 4: nothing -> Never"));
}

TEST(CompareLabels, takeTheSameLabelAtAnotherValueForAMovedCode) {
  EXPECT_THAT(InWords(CompareLabels({{"1", "Yes"}, {"9", "Other"}}, {{"1", "Yes"}, {"98", "Other"}})),
              ElementsAre("code-moved Other: 9 -> 98"));
}

TEST(CompareLabels, tellCodesThatWereExchangedAsMovedOnly) {
  EXPECT_THAT(InWords(CompareLabels({{"1", "Yes"}, {"2", "No"}}, {{"1", "No"}, {"2", "Yes"}})),
              ElementsAre("code-moved Yes: 1 -> 2", "code-moved No: 2 -> 1"));
}

TEST(CompareLabels, tellTheLabelThatTakesAMovedOnesPlaceAsAdded) {
  EXPECT_THAT(InWords(CompareLabels({{"9", "Other"}}, {{"9", "Refused"}, {"98", "Other"}})),
              ElementsAre("code-moved Other: 9 -> 98", "value-label-added 9: nothing -> Refused"));
}

TEST(CompareLabels, takeALabelOfSeveralValuesForNoMovedCode) {
  EXPECT_THAT(InWords(CompareLabels({{"1", "n/a"}, {"2", "n/a"}}, {{"1", "n/a"}, {"3", "n/a"}})),
              ElementsAre("value-label-removed 2: n/a -> nothing", "value-label-added 3: nothing -> n/a"));
}

}  // namespace
}  // namespace runtime::data
