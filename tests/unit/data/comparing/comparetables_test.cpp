#include "runtime/data/comparing/comparetables.h"

#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "tests/unit/data/comparing/wave.h"

namespace runtime::data {
namespace {

using test::InWords;
using test::Numeric;
using test::Wave;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// What changes when the one variable of a wave is edited.
std::vector<std::string> ChangesOf(const std::function<void(ComparedVariable&)>& edit) {
  const ComparedTable before = Wave({Numeric("q", "Question")});
  ComparedTable after = before;
  edit(after.variables[0]);
  const Comparison comparison = CompareTables(before, after);
  EXPECT_THAT(comparison.file, IsEmpty());
  EXPECT_EQ(comparison.differs(), !comparison.variables.at(0).changes.empty());
  return InWords(comparison.variables.at(0).changes);
}

std::vector<std::string> FileChanges(const ComparedTable& before, const ComparedTable& after) {
  const Comparison comparison = CompareTables(before, after);
  EXPECT_EQ(comparison.differs(), !comparison.file.empty());
  return InWords(comparison.file);
}

TEST(CompareTables, findsNothingInTheSame) {
  EXPECT_THAT(ChangesOf([](ComparedVariable&) {}), IsEmpty());
}

TEST(CompareTables, tellsAChangedLabel) {
  EXPECT_THAT(ChangesOf([](ComparedVariable& q) { q.label = "Other"; }),
              ElementsAre("label-changed: Question -> Other"));
  EXPECT_THAT(ChangesOf([](ComparedVariable& q) { q.label.reset(); }),
              ElementsAre("label-changed: Question -> nothing"));
}

TEST(CompareTables, takesAnEmptyLabelForNone) {
  ComparedTable before = Wave({Numeric("q")});
  ComparedTable after = before;
  after.variables[0].label = "";
  EXPECT_FALSE(CompareTables(before, after).differs());
}

TEST(CompareTables, tellsTypeFormatLevelAndRole) {
  EXPECT_THAT(ChangesOf([](ComparedVariable& q) { q.type = ComparedType::String; }),
              ElementsAre("type-changed: numeric -> string"));
  EXPECT_THAT(ChangesOf([](ComparedVariable& q) { q.type = ComparedType::Date; }),
              ElementsAre("type-changed: numeric -> date"));
  EXPECT_THAT(ChangesOf([](ComparedVariable& q) { q.format = "F8.3"; }), ElementsAre("format-changed: F8.2 -> F8.3"));
  EXPECT_THAT(ChangesOf([](ComparedVariable& q) { q.level = "scale"; }),
              ElementsAre("level-changed: nominal -> scale"));
  EXPECT_THAT(ChangesOf([](ComparedVariable& q) { q.role = "target"; }), ElementsAre("role-changed: input -> target"));
}

TEST(CompareTables, takesSilenceForNoDifferenceWhereDataAreCompared) {
  EXPECT_THAT(ChangesOf([](ComparedVariable& q) {
                q.type.reset();
                q.format.reset();
                q.level.reset();
                q.role.reset();
              }),
              IsEmpty());
}

TEST(CompareTables, takesSilenceForADifferenceBetweenTwoDictionaryFiles) {
  ComparedTable before = Wave({Numeric("q")});
  before.isDictionaryAlone = true;
  ComparedTable after = before;
  after.variables[0].level.reset();
  EXPECT_THAT(InWords(CompareTables(before, after).variables[0].changes),
              ElementsAre("level-changed: nominal -> nothing"));
}

TEST(CompareTables, tellsAddedAndRemovedMissingValues) {
  ComparedTable before = Wave({Numeric("q")});
  before.variables[0].missing = {"-9", "90..HI"};
  ComparedTable after = Wave({Numeric("q")});
  after.variables[0].missing = {"-8", "-9"};
  EXPECT_THAT(InWords(CompareTables(before, after).variables[0].changes),
              ElementsAre("missing-removed 90..HI: nothing -> nothing", "missing-added -8: nothing -> nothing"));
}

TEST(CompareTables, tellsAttributesOneByOne) {
  ComparedTable before = Wave({Numeric("q")});
  before.variables[0].attributes = {{"Note", "old"}, {"Source", "same"}, {"Gone", "x"}};
  ComparedTable after = Wave({Numeric("q")});
  after.variables[0].attributes = {{"Source", "same"}, {"Note", "new"}, {"Come", "y"}};
  EXPECT_THAT(InWords(CompareTables(before, after).variables[0].changes),
              ElementsAre("attribute-changed Note: old -> new", "attribute-removed Gone: x -> nothing",
                          "attribute-added Come: nothing -> y"));
}

TEST(CompareTables, tellsAddedAndRemovedVariables) {
  const Comparison comparison =
      CompareTables(Wave({Numeric("a"), Numeric("b")}), Wave({Numeric("c", "New"), Numeric("a")}));
  ASSERT_THAT(comparison.variables, SizeIs(3));
  EXPECT_TRUE(comparison.variables[0].isAdded());
  EXPECT_EQ(comparison.variables[0].label, "New");
  EXPECT_FALSE(comparison.variables[1].differs());
  EXPECT_TRUE(comparison.variables[2].isRemoved());
  EXPECT_EQ(comparison.variables[2].before, "b");
}

TEST(CompareTables, tellsNamesThatDifferInCaseAlone) {
  const Comparison comparison = CompareTables(Wave({Numeric("Größe")}), Wave({Numeric("GRÖßE")}));
  ASSERT_THAT(comparison.variables, SizeIs(1));
  EXPECT_THAT(InWords(comparison.variables[0].changes), ElementsAre("name-case-changed: Größe -> GRÖßE"));
}

TEST(CompareTables, tellsTheFilesLabelWeightAndDocuments) {
  ComparedTable before = Wave({});
  before.label = "Wave 1";
  before.weight = "w";
  before.documents = "One\n";
  ComparedTable after = before;
  EXPECT_THAT(FileChanges(before, after), IsEmpty());
  after.weight = "W";
  EXPECT_THAT(FileChanges(before, after), IsEmpty());
  after.label = "Wave 2";
  after.weight.reset();
  after.documents = "Two\n";
  EXPECT_THAT(FileChanges(before, after),
              ElementsAre("file-label-changed: Wave 1 -> Wave 2", "weight-changed: w -> nothing",
                          "documents-changed: One\n -> Two\n"));
}

TEST(CompareTables, tellsAnotherOrderOnce) {
  const ComparedTable before = Wave({Numeric("a"), Numeric("b"), Numeric("c")});
  EXPECT_THAT(FileChanges(before, Wave({Numeric("a"), Numeric("c"), Numeric("b")})),
              ElementsAre("order-changed: b -> c"));
}

TEST(CompareTables, takesAddedAndRemovedVariablesForNoOtherOrder) {
  EXPECT_THAT(
      CompareTables(Wave({Numeric("a"), Numeric("b"), Numeric("c")}), Wave({Numeric("x"), Numeric("a"), Numeric("c")}))
          .file,
      IsEmpty());
}

class SetsInWaves : public testing::Test {
 protected:
  SetsInWaves() {
    fBefore.sets = {{"$media", "Media", true, {"a", "b"}, "1"}};
    fAfter = fBefore;
  }
  ComparedTable fBefore;
  ComparedTable fAfter;
};

TEST_F(SetsInWaves, meetWithoutRegardToCase) {
  fAfter.sets[0].name = "$MEDIA";
  fAfter.sets[0].variables = {"A", "B"};
  EXPECT_THAT(FileChanges(fBefore, fAfter), IsEmpty());
}

TEST_F(SetsInWaves, differInLabelMembersAndCountedValue) {
  fAfter.sets[0].label.clear();
  fAfter.sets[0].variables = {"b", "a"};
  fAfter.sets[0].countedValue = "2";
  EXPECT_THAT(FileChanges(fBefore, fAfter),
              ElementsAre("set-label-changed $media: Media -> nothing", "set-members-changed $media: a b -> b a",
                          "set-counted-value-changed $media: 1 -> 2"));
}

TEST_F(SetsInWaves, differInKind) {
  fAfter.sets[0].isDichotomy = false;
  fAfter.sets[0].countedValue.clear();
  EXPECT_THAT(FileChanges(fBefore, fAfter), ElementsAre("set-type-changed $media: dichotomy -> category"));
}

TEST_F(SetsInWaves, comeAndGo) {
  fAfter.sets[0].name = "$other";
  EXPECT_THAT(FileChanges(fBefore, fAfter),
              ElementsAre("set-removed $media: a b -> nothing", "set-added $other: nothing -> a b"));
}

}  // namespace
}  // namespace runtime::data
