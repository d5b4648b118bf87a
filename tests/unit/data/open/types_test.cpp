#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/open.h"
#include "runtime/data/typing/typesteps.h"
#include "runtime/machine/threadpool.h"
#include "tests/unit/data/open/datafolder.h"

namespace runtime::data {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

class Types : public testing::Test {
 protected:
  OpenedDataset Read(const std::string& csv) {
    fOptions.path = fFolder.Write("t.csv", csv);
    return OpenDataset(fOptions);
  }
  std::vector<TypeDecision> Decisions(const std::string& csv) {
    fOptions.explainTypes = true;
    return Read(csv).types;
  }
  /// The steps as "TYPE@ROW cell", the type as its number.
  static std::vector<std::string> Steps(const TypeDecision& decision) {
    std::vector<std::string> steps;
    for (const TypeStep& step : decision.steps) {
      const char* type =
          step.type == FieldType::Inferred ? "any" : (step.type == FieldType::Integer ? "integer" : "other");
      steps.push_back(fmt::format("{}@{} {}", type, step.row, step.cell));
    }
    return steps;
  }
  static std::vector<std::string> Texts(const OpenedDataset& opened) {
    std::vector<std::string> texts;
    for (const Note& note : opened.notes) texts.push_back(note.text);
    return texts;
  }

  DataFolder fFolder;
  OpenOptions fOptions;
};

TEST_F(Types, areExplainedByTheFirstCellsThatRuledOutNarrowerOnes) {
  const auto types = Decisions("a,b,c,d,e\n1,1,007,1,\n2,1.5,1,2.5,\n3,2.5,2,x,\n");
  ASSERT_EQ(types.size(), 5U);
  EXPECT_EQ(types[0].type, FieldType::Integer);
  EXPECT_TRUE(types[0].steps.empty());
  EXPECT_EQ(types[1].type, FieldType::Number);
  EXPECT_THAT(Steps(types[1]), ElementsAre("integer@2 1.5"));
  EXPECT_EQ(types[2].type, FieldType::String);
  EXPECT_THAT(Steps(types[2]), ElementsAre("any@1 007"));
  EXPECT_THAT(Steps(types[3]), ElementsAre("integer@2 2.5", "other@3 x"));
  EXPECT_EQ(types[4].blankCells, 3);
  EXPECT_TRUE(types[4].steps.empty());
  for (const TypeDecision& type : types) EXPECT_EQ(type.origin, TypeOrigin::Cells);
}

TEST_F(Types, areExplainedTheSameWhateverTheSegments) {
  std::string csv = "a,b,c\n";
  constexpr int kRows = 60'000;
  constexpr int kFraction = 41'234;
  constexpr int kWord = 52'345;
  for (int row = 1; row <= kRows; ++row)
    csv += fmt::format("{},{},{}\n", row, row == kFraction ? "0.5" : "7", row == kWord ? "NA" : std::to_string(row));
  for (const std::size_t segment : {std::size_t{1} << 22, std::size_t{10'000}}) {
    fOptions.segmentBytes = segment;
    fOptions.pool = std::make_shared<machine::ThreadPool>(3);
    const auto types = Decisions(csv);
    EXPECT_TRUE(types[0].steps.empty());
    EXPECT_THAT(Steps(types[1]), ElementsAre(fmt::format("integer@{} 0.5", kFraction)));
    EXPECT_THAT(Steps(types[2]), ElementsAre(fmt::format("integer@{} NA", kWord)));
  }
}

TEST_F(Types, nameTheFileOfACellInATableOfSeveral) {
  fOptions.explainTypes = true;
  fOptions.path = fFolder.Write("a.csv", "v\n1\n2\n");
  fOptions.furtherPaths = {fFolder.Write("b.csv", "v\n3\nx\n")};
  const auto types = OpenDataset(fOptions).types;
  ASSERT_EQ(types.at(0).steps.size(), 1U);
  EXPECT_EQ(types[0].steps[0].row, 2);
  EXPECT_THAT(types[0].steps[0].source, HasSubstr("b.csv"));
}

TEST_F(Types, sayWhoDecidedThem) {
  fFolder.Write("t.schema.json", R"({"fields": [{"name": "a", "type": "integer"}, {"name": "b"}]})");
  fOptions.inference = false;
  const auto types = Decisions("a,b\n1,2\n");
  EXPECT_EQ(types[0].origin, TypeOrigin::Dictionary);
  EXPECT_EQ(types[0].type, FieldType::Integer);
  EXPECT_EQ(types[1].origin, TypeOrigin::Asked);
  EXPECT_EQ(types[1].type, FieldType::String);
}

TEST_F(Types, ofNothingAreInferredWhenThatIsAskedFor) {
  fOptions.inference = false;
  for (const TypeDecision& type : Decisions("a,b,c,d\n1,1.5,2024-01-31,true\n"))
    EXPECT_EQ(type.type, FieldType::String);
}

TEST_F(Types, tellOfWordsForMissingValuesThatMakeNumbersText) {
  const auto opened = Read("a,b,c,d\n1,x,1.5,2024-01-31\nNA,y,.,null\n3,NA,2,2024-02-29\nNA,z,3,2024-03-01\n");
  ASSERT_EQ(opened.notes.size(), 1U);
  EXPECT_THAT(
      opened.notes[0].text,
      AllOf(HasSubstr("t.csv: 3 columns stay text: \"a\" (holds whole numbers and \"NA\" in 2 cells, first in row 2)"),
            HasSubstr("\"c\" (holds numbers and \".\" in 1 cell, first in row 2)"), HasSubstr("\"d\" (holds dates"),
            HasSubstr("\"missingValues\": [\"\", \"NA\", \".\", \"null\"]")));
}

TEST_F(Types, tellOfOneLateCellThatMakesNumbersText) {
  std::string csv = "a,b\n";
  for (int row = 0; row < 500; ++row) csv += row == 400 ? "12 kg,x\n" : "12,y\n";
  const auto opened = Read(csv);
  ASSERT_EQ(opened.notes.size(), 1U);
  EXPECT_THAT(opened.notes[0].text,
              AllOf(HasSubstr("column \"a\" (holds whole numbers but for 1 cell: \"12 kg\" in row 401) stays text"),
                    HasSubstr("declare the type")));
}

TEST_F(Types, tellOfAFirstRowThatLooksLikeAHeader) {
  std::string csv = "id,,\n,first film,second film\n";
  for (int row = 0; row < 200; ++row) csv += fmt::format("{},1,2\n", row);
  const auto opened = Read(csv);
  ASSERT_FALSE(opened.notes.empty());
  EXPECT_THAT(opened.notes[0].text,
              AllOf(HasSubstr("2 columns stay text: number 2 (holds whole numbers but for 1 cell"),
                    HasSubstr("\"headerRows\": [1, 2]")));
}

TEST_F(Types, sayNothingOfColumnsThatAreTextForGood) {
  EXPECT_TRUE(Texts(Read("a,b,c,d,e\nNA,x,1,007,yes\nDE,1,other,008,NA\nFR,2,2,9,no\n")).empty())
      << "country codes, few numbers, an option beside codes, leading zeros, yes and no";
  EXPECT_TRUE(Texts(Read("a\nNA\n\nNA\n")).empty()) << "a word alone says nothing of a type";
}

TEST_F(Types, declaredMissingWordsLeaveNumbersNumbers) {
  fFolder.Write("t.schema.json", R"({"fields": [{"name": "a"}], "missingValues": ["", "NA"]})");
  const auto types = Decisions("a\n1\nNA\n3\n");
  EXPECT_EQ(types[0].type, FieldType::Integer);
}

TEST(WhyNot, namesWhatANumberWouldLose) {
  EXPECT_THAT(WhyNot("007"), HasSubstr("zero at its front"));
  EXPECT_THAT(WhyNot("+5"), HasSubstr("plus"));
  EXPECT_THAT(WhyNot("12345678901234567890"), HasSubstr("more digits"));
  EXPECT_THAT(WhyNot("1,5"), HasSubstr("comma"));
  EXPECT_THAT(WhyNot("2/3/2024"), HasSubstr("date"));
  EXPECT_THAT(WhyNot("31.12.2024"), HasSubstr("date"));
  EXPECT_THAT(WhyNot("NA"), HasSubstr("missing"));
  EXPECT_EQ(WhyNot("Ann"), "");
  EXPECT_EQ(WhyNot(""), "");
}

}  // namespace
}  // namespace runtime::data
