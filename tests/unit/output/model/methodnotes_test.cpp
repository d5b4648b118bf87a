#include "runtime/output/model/methodnotes.h"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/output/procedure.h"

#include "runtime/output/binding.h"
#include "runtime/output/language/catalog.h"

namespace {

using runtime::output::Catalog;
using runtime::output::MethodNote;
using runtime::output::MethodNotes;
using runtime::output::NoteName;
using runtime::output::NoteText;
using runtime::output::OutputBinding;
using runtime::output::Report;
using runtime::output::ReportFacts;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Eq;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

BpString Fixed(const std::string& text) { return {text, true}; }

/// A report that a test fills as a procedure does.
class MethodNotesTest : public ::testing::Test {
 protected:
  MethodNotesTest() {
    report.facts = ReportFacts();
    report.facts->cases = 10;
    binding.report = &report;
    previous = runtime::output::BindOutput(&binding);
    procedure = std::make_unique<BpProcedure>("Codebook", 1);
  }
  ~MethodNotesTest() override { runtime::output::BindOutput(previous); }

  /// A table with one row in one group; the cell stands in the column, in none where that is empty.
  void AddTable(const std::string& group, const std::string& row, const std::string& column = {}) {
    BpPivotTable table = procedure->PivotTable(BpString("q1", false), BpString("Variable Information", false), true);
    BpDimension rows = table.Dimension(Fixed("Attributes"), BpPivotTable::kCreationOrder);
    rows.Position(BpDimension::kRows, 1, true, false);
    BpDimension columns = table.Dimension(Fixed("Values"), BpPivotTable::kCreationOrder);
    columns.Position(BpDimension::kColumns, 1, true, false);
    BpCategory value = columns.Category(Fixed(column.empty() ? "Value" : column));
    BpGroup inGroup = rows.Group(Fixed(group), true, BpGroup::kCreationOrder);
    if (row.empty()) return;
    inGroup.Category(Fixed(row));
    value.Cell(BpNumber(1, BpProcedure::Count()));
  }

  std::vector<std::string> Names(const Catalog* catalog = nullptr) const {
    std::vector<std::string> names;
    for (const MethodNote& note : MethodNotes(report, catalog)) names.push_back(NoteName(note, catalog));
    return names;
  }
  std::string Texts(const Catalog* catalog = nullptr) const {
    std::string texts;
    for (const MethodNote& note : MethodNotes(report, catalog)) texts += NoteText(note, catalog) + "\n";
    return texts;
  }

  Report report;
  OutputBinding binding;
  OutputBinding* previous = nullptr;
  std::unique_ptr<BpProcedure> procedure;
};

TEST_F(MethodNotesTest, thereAreNoneWithoutFactsOrWithoutTables) {
  EXPECT_THAT(Names(), IsEmpty());
  AddTable("Standard Attributes", "Position");
  EXPECT_THAT(Names(), Not(IsEmpty()));
  report.facts.reset();
  EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(MethodNotesTest, aTableWithoutStatisticsHasThoseOfCasesAndWeightOnly) {
  AddTable("Standard Attributes", "Position");
  EXPECT_THAT(Names(), ElementsAre("Cases", "Weight"));
  EXPECT_EQ(Texts(), "Number of cases in the file: 10.\nThe cases are not weighted: each counts as 1.\n");
}

TEST_F(MethodNotesTest, casesAreNotToldWhereTheyAreNotKnown) {
  AddTable("Standard Attributes", "Position");
  report.facts->cases = -1;
  EXPECT_THAT(Names(), ElementsAre("Weight"));
}

TEST_F(MethodNotesTest, weightAndItsLabelStandBesideBothNumbersOfCases) {
  AddTable("Valid Values", "1", "Count");
  report.facts->weight = "w";
  report.facts->weightedCases = 12.6;
  EXPECT_THAT(Texts(), HasSubstr("Number of cases in the file: 10. The sum of their weights, the weighted number of "
                                 "cases: 13.\nThe cases are weighted by the variable w.\nA case whose weight is "
                                 "missing, zero or negative does not count.\nCounts are sums of weights"));
  report.facts->weightLabel = "Design weight";
  EXPECT_THAT(Texts(), HasSubstr("by the variable w (Design weight)."));
}

TEST_F(MethodNotesTest, weightedNumberOfCasesIsLeftOutWhereNoPassCountedIt) {
  AddTable("Standard Attributes", "Position");
  report.facts->weight = "w";
  EXPECT_THAT(Texts(), HasSubstr("Number of cases in the file: 10.\n"));
}

TEST_F(MethodNotesTest, percentsOfVariablesAndOfSetsHaveTheirOwnNotes) {
  AddTable("Valid Values", "1", "Percent");
  EXPECT_THAT(Texts(), HasSubstr("Percents are of all cases"));
  EXPECT_THAT(Texts(), Not(HasSubstr("response set")));
  AddTable("Multiple Response Categories", "1", "Percent");
  EXPECT_THAT(Texts(), HasSubstr("more than 100"));
}

TEST_F(MethodNotesTest, setsAloneHaveNoNoteOnPercentsOfVariables) {
  AddTable("Multiple Response Categories", "1", "Percent");
  EXPECT_THAT(Texts(), Not(HasSubstr("Percents are of all cases")));
  EXPECT_THAT(Names(), Contains("Percents"));
}

TEST_F(MethodNotesTest, missingCodesAndTheRowSystemAreToldOfWhereTheyAreShown) {
  AddTable("Missing Values", "");
  EXPECT_THAT(Names(), Not(Contains("Missing values")));
  AddTable("Missing Values", "9", "Count");
  EXPECT_THAT(Texts(), HasSubstr("declared as missing stand under"));
  EXPECT_THAT(Texts(), Not(HasSubstr("The row System")));
  AddTable("Missing Values", "System", "Count");
  EXPECT_THAT(Texts(), HasSubstr("The row System"));
}

TEST_F(MethodNotesTest, statisticsOfScaleVariablesAreDefinedWhereTheyAreShown) {
  AddTable("N", "Valid");
  EXPECT_THAT(Texts(), HasSubstr("Valid counts"));
  EXPECT_THAT(Texts(), Not(HasSubstr("Only valid values")));
  AddTable("Central Tendency and Dispersion", "Mean");
  EXPECT_THAT(Texts(), HasSubstr("Only valid values"));
  EXPECT_THAT(Names(), Contains("Mean"));
  EXPECT_THAT(Names(), Not(Contains("Standard Deviation")));
  AddTable("Central Tendency and Dispersion", "Standard Deviation");
  EXPECT_THAT(Texts(), HasSubstr("The divisor is N - 1"));
  EXPECT_THAT(Names(), Not(Contains("Percentiles")));
  AddTable("Central Tendency and Dispersion", "Percentile 50");
  EXPECT_THAT(Texts(), HasSubstr("at (N + 1) p"));
  report.facts->weight = "w";
  EXPECT_THAT(Texts(), HasSubstr("The divisor is W - 1"));
  EXPECT_THAT(Texts(), HasSubstr("at (W + 1) p"));
}

TEST_F(MethodNotesTest, histogramsAreExplainedWhereThereAreAny) {
  AddTable("N", "Valid");
  report.procedures[0]->sketches.push_back({"q1", 3, 0, 1.0, {1, 1, 1}, {}});
  EXPECT_THAT(Names(), Not(Contains("Histograms")));
  report.procedures[0]->sketches[0].bins.push_back({0.5, 1.5, 3});
  EXPECT_THAT(Names(), Contains("Histograms"));
}

TEST_F(MethodNotesTest, aWordOfTheDataIsNoFixedWord) {
  BpPivotTable table = procedure->PivotTable(BpString("q1", false), BpString("Variable Information", false), true);
  BpDimension rows = table.Dimension(Fixed("Attributes"), BpPivotTable::kCreationOrder);
  rows.Position(BpDimension::kRows, 1, true, false);
  rows.Group(Fixed("Custom Attributes"), true, BpGroup::kCreationOrder).Category(BpString("Mean", false));
  EXPECT_THAT(Names(), Not(Contains("Mean")));
}

TEST_F(MethodNotesTest, wordsOfATranslatedReportAreFound) {
  const std::shared_ptr<const Catalog> german = Catalog::Of("de");
  ASSERT_NE(german, nullptr);
  binding.catalog = german.get();
  AddTable("Missing Values", "System", "Count");
  AddTable("Multiple Response Categories", "1", "Percent");
  AddTable("Central Tendency and Dispersion", "Percentile 25");
  const std::vector<MethodNote> notes = MethodNotes(report, german.get());
  std::string english;
  for (const MethodNote& note : notes) english += note.text;
  EXPECT_THAT(english, HasSubstr("The row System"));
  EXPECT_THAT(english, HasSubstr("more than 100"));
  EXPECT_THAT(english, HasSubstr("at (N + 1) p"));
}

TEST(NoteText, argumentsAreFilledInInOnePass) {
  EXPECT_THAT(NoteText({"n", "^1 and ^2, ^1", {"^2", "b"}}, nullptr), Eq("^2 and b, ^2"));
}

TEST(NoteText, whatIsNoPlaceholderStays) {
  EXPECT_EQ(NoteText({"n", "^2 ^0 ^x ^ ^^1 ^", {"a"}}, nullptr), "^2 ^0 ^x ^ ^a ^");
  EXPECT_EQ(NoteText({"n", "^1", {}}, nullptr), "^1");
}

}  // namespace
