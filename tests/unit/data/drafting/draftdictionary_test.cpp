#include "runtime/data/drafting/draftdictionary.h"

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/checking/checkdataset.h"
#include "runtime/data/checking/readingfacts.h"
#include "runtime/data/dictionary/writing/writetableschema.h"
#include "tests/unit/data/open/datafolder.h"

namespace runtime::data {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class DraftOfData : public testing::Test {
 protected:
  Draft Drafted(const std::string& csv) {
    OpenOptions options;
    options.path = fFolder.Write("t.csv", csv);
    options.dictionaryBeside = false;
    options.describe = true;
    options.forChecking = true;
    return DraftDictionary(OpenDataset(options), nullptr);
  }
  /// The data with the draft written and read again.
  OpenedDataset ReadBack(const std::string& csv) {
    std::ostringstream json;
    WriteTableSchema(Drafted(csv).table, json);
    OpenOptions options;
    options.path = fFolder.Write("t.csv", csv);
    options.dictionary = fFolder.Write("draft.json", json.str());
    options.forChecking = true;
    return OpenDataset(options);
  }
  static std::vector<std::string> Values(const std::vector<LabelledValue>& entries) {
    std::vector<std::string> values;
    for (const LabelledValue& entry : entries) values.push_back(entry.value);
    return values;
  }

  DataFolder fFolder;
};

TEST_F(DraftOfData, leavesLabelsAsToDos) {
  const Draft draft = Drafted("q1,Your age?\n1,30\n2,41\n1,52\n");
  ASSERT_EQ(draft.table.fields.size(), 2u);
  EXPECT_EQ(draft.table.fields[0].title, "TODO: label of q1");
  EXPECT_EQ(draft.table.fields[0].categories.at(1).label, "TODO: label of 2");
  EXPECT_EQ(draft.table.fields[1].title, "Your age?");
  EXPECT_THAT(*draft.table.label, StartsWith(kToDo));
}

TEST_F(DraftOfData, keepsWhatTheDataCallTheirColumns) {
  OpenOptions options;
  options.path = fFolder.Write("t.csv", "q1,Your age?\n1,30\n");
  options.dictionaryBeside = false;
  options.describe = true;
  options.forChecking = true;
  OpenedDataset opened = OpenDataset(options);
  auto commented = std::make_shared<TableDescriptor>(*opened.description);
  commented->fields[0].title = "Satisfied?";
  commented->fields[1].title = "Age in years";
  opened.description = commented;
  const Draft draft = DraftDictionary(opened, nullptr);
  EXPECT_EQ(draft.table.fields[0].title, "Satisfied?");
  EXPECT_EQ(draft.table.fields[1].title, "Age in years");
}

TEST_F(DraftOfData, declaresGuessedMissingCodes) {
  const Draft draft = Drafted("x,s\n1,yes\n2,no\n-9,Refused\n3,yes\n99,no\n");
  EXPECT_THAT(Values(draft.table.fields[0].missingValues), ElementsAre("", "-9", "99"));
  EXPECT_THAT(Values(draft.table.fields[0].categories), ElementsAre("1", "2", "3"));
  EXPECT_THAT(Values(draft.table.fields[1].missingValues), ElementsAre("", "Refused"));
  EXPECT_EQ(draft.missingFields, 2u);
  EXPECT_THAT(draft.missingCodes, ElementsAre("-9", "99", "Refused"));
}

TEST_F(DraftOfData, readsNumbersBesideTextCodes) {
  const Draft draft = Drafted("x,d\n1,2020-01-01\nNA,n/a\n2.5,2020-02-01\n");
  EXPECT_EQ(draft.table.fields[0].dialect.type, FieldType::Number);
  EXPECT_EQ(draft.table.fields[1].dialect.type, FieldType::Date);
  EXPECT_EQ(draft.typedColumns, 2u);
}

TEST_F(DraftOfData, leavesTextsThatAreNoCodesText) {
  EXPECT_EQ(Drafted("x\n1\ntwo\n3\n").table.fields[0].dialect.type, FieldType::String);
  EXPECT_EQ(Drafted("x\n007\nNA\n012\n").table.fields[0].dialect.type, FieldType::String);
}

TEST_F(DraftOfData, proposesTheSetsOfEveryCoding) {
  const char* const coded[] = {
      "Q1_1,Q1_2,Q1_3\n1,0,0\n0,1,1\n0,0,1\n",
      "Q1_1,Q1_2,Q1_3\n1,-1,NA\n-1,1,1\nNA,-1,-1\n",
      "Q1_1,Q1_2,Q1_3\n1,,\n,1,1\n1,1,\n",
      "Q1.a,Q1.b,Q1.c\nTRUE,FALSE,TRUE\nFALSE,TRUE,FALSE\n",
      "Q1/a,Q1/b,Q1/c\nYes,,\n,Yes,Yes\n,,Yes\n",
      "Q1: a,Q1: b,Q1: c\nSelected,Not selected,Selected\nNot selected,Selected,Not selected\n"};
  for (const char* csv : coded) {
    SCOPED_TRACE(csv);
    const Draft draft = Drafted(csv);
    ASSERT_EQ(draft.table.sets.size(), 1u);
    EXPECT_EQ(draft.table.sets[0].name, "$Q1");
    EXPECT_TRUE(draft.table.sets[0].isDichotomy);
    EXPECT_EQ(draft.table.sets[0].variables.size(), 3u);
    const OpenedDataset opened = ReadBack(csv);
    EXPECT_THAT(opened.dataset->dictionary().sets.size(), 1u);
    EXPECT_THAT(opened.notes, IsEmpty());
    EXPECT_THAT(CheckDataset(opened, "t.csv", nullptr), IsEmpty());
  }
}

TEST_F(DraftOfData, takesOptionsOfTheirOwnTextAsACategorySet) {
  const std::string csv = "\"Which, if any? [TV]\",\"Which, if any? [Press]\"\nTV,\n,Press\nTV,Press\n";
  const Draft draft = Drafted(csv);
  ASSERT_EQ(draft.table.sets.size(), 1u);
  EXPECT_FALSE(draft.table.sets[0].isDichotomy);
  EXPECT_EQ(draft.table.sets[0].label, "Which, if any?");
  EXPECT_EQ(draft.table.fields[1].title, "Press");
}

TEST_F(DraftOfData, headersBehindAnEmptyOneGoOnWithTheQuestion) {
  const std::string csv = "id,Which have you seen?,,,other\n1,A,,C,x\n2,,B,,y\n3,A,B,C,x\n";
  const Draft draft = Drafted(csv);
  ASSERT_EQ(draft.table.sets.size(), 1u);
  EXPECT_THAT(draft.table.sets[0].variables, ElementsAre("Which have you seen?", "V3", "V4"));
  const OpenedDataset opened = ReadBack(csv);
  EXPECT_EQ(opened.reading->fieldOfColumn, (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST_F(DraftOfData, splitsSetsWhoseNamesShareTheirBeginning) {
  const Draft draft = Drafted("A.X_ONE,A.X_TWO,A.Y_ONE,A.Y_TWO,A.Y_THREE\n1,0,1,0,1\n0,1,0,1,0\n");
  // Nothing but the words behind the point tells these apart: one question of five options is as likely.
  EXPECT_EQ(draft.table.sets.size(), 1u);
  const Draft split = Drafted("A.X.ONE,A.X.TWO,A.Y.ONE,A.Y.TWO,A.Y.THREE\n1,0,1,0,1\n0,1,0,1,0\n");
  ASSERT_EQ(split.table.sets.size(), 2u);
  EXPECT_EQ(split.table.sets[0].name, "$A.X");
  EXPECT_EQ(split.table.sets[1].variables.size(), 3u);
}

TEST_F(DraftOfData, takesScalesAndStrangersForNoSet) {
  EXPECT_THAT(Drafted("Q1_1,Q1_2\n1,2\n3,1\n2,2\n").table.sets, IsEmpty());
  EXPECT_THAT(Drafted("male,smokes\n1,0\n0,1\n").table.sets, IsEmpty());
  EXPECT_THAT(Drafted("Q1_1,Q2_1\n1,0\n0,1\n").table.sets, IsEmpty());
  EXPECT_THAT(Drafted("Q1_1,x,Q1_2\n1,5,0\n0,6,1\n").table.sets, IsEmpty());
}

TEST_F(DraftOfData, doesNotTakeTheMinusOneOfASetForMissing) {
  const Draft draft = Drafted("Q1_1,Q1_2,x\n1,-1,1\n-1,1,2\n-1,-1,-1\n");
  EXPECT_THAT(Values(draft.table.fields[0].missingValues), ElementsAre(""));
  EXPECT_THAT(Values(draft.table.fields[2].missingValues), ElementsAre("", "-1"));
}

TEST_F(DraftOfData, marksEveryGuess) {
  const Draft draft = Drafted("Q1_1,Q1_2,x\n1,0,1\n0,1,2\n0,0,-9\n");
  ASSERT_EQ(draft.table.fields[2].extras.size(), 1u);
  EXPECT_EQ(draft.table.fields[2].extras[0].name, "codebook.draft");
  EXPECT_THAT(draft.table.fields[2].extras[0].json, HasSubstr("-9 is a code for a missing answer"));
  ASSERT_EQ(draft.table.extras.size(), 1u);
  EXPECT_THAT(draft.table.extras[0].json, HasSubstr("$Q1 is a multiple response set of 2 variables"));
}

TEST_F(DraftOfData, takesAWeightByNameAndMean) {
  EXPECT_EQ(Drafted("weight,x\n0.5,1\n1.5,2\n").weight, "weight");
  EXPECT_EQ(Drafted("weight,x\n70.5,1\n81.5,2\n").weight, "");
  EXPECT_EQ(Drafted("height,x\n0.5,1\n1.5,2\n").weight, "");
}

TEST_F(DraftOfData, isReadBackWithoutANote) {
  const OpenedDataset opened = ReadBack("id,q,s\n1,1,a\n2,-9,NA\n3,2,b\n4,1,a\n5,2,b\n");
  EXPECT_THAT(opened.notes, IsEmpty());
  EXPECT_THAT(CheckDataset(opened, "t.csv", nullptr), IsEmpty());
}

TEST_F(DraftOfData, keepsItsGuessesWhenItIsRead) {
  const OpenedDataset opened = ReadBack("Q1_1,Q1_2,x\n1,0,1\n0,1,2\n0,0,-9\n");
  const auto isDraft = testing::Field(&ExtraProperty::name, "codebook.draft");
  EXPECT_THAT(opened.reading->dictionary->extras, ElementsAre(isDraft));
  EXPECT_THAT(opened.reading->dictionary->fields[2].extras, ElementsAre(isDraft));
}

TEST_F(DraftOfData, ofRepeatedHeadersMeetsItsColumnsAgain) {
  const OpenedDataset opened = ReadBack("a,a,A\n1,5,x\n2,6,y\n1,5,x\n2,6,y\n");
  EXPECT_EQ(opened.reading->fieldOfColumn, (std::vector<int>{0, 1, 2}));
}

TEST_F(DraftOfData, labelsShortTextsOnlyWhereAllAreShort) {
  const Draft draft = Drafted("s,t\nM,Yes\nF,In contention\nM,Yes\nF,In contention\n");
  EXPECT_EQ(draft.table.fields[0].categories.at(0).label, "TODO: label of F");
  EXPECT_EQ(draft.table.fields[1].categories.at(0).label, std::nullopt);
  EXPECT_EQ(draft.table.fields[1].categories.at(1).label, std::nullopt);
}

TEST_F(DraftOfData, freeTextHasNoCategories) {
  const Draft draft = Drafted("s\nthe first answer\nanother one\nand a third\n");
  EXPECT_FALSE(draft.table.fields[0].hasCategories);
}

}  // namespace
}  // namespace runtime::data
