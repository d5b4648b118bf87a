// The File Information table.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/builder.h"
#include "tests/unit/codebook/commandrun.h"
#include "tests/unit/codebook/tableoutline.h"

namespace codebook::test {
namespace {

using runtime::data::DatasetBuilder;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

constexpr const char* kTitle = "File Information";

/// The builder with one variable of three cases.
DatasetBuilder threeCases() {
  DatasetBuilder builder;
  builder.AddNumeric("age", {31, 40, 55});
  return builder;
}

std::vector<std::string> fileRows(DatasetBuilder& builder, const std::string& keywords,
                                  const std::string& statistics = "NONE") {
  return CommandRun(builder.Build(), "CODEBOOK /FILEINFO " + keywords + " /STATISTICS " + statistics + ".")
      .rows(kTitle);
}

TEST(FileInformation, lastBackslashPartsNameFromLocation) {
  DatasetBuilder builder = threeCases();
  builder.FileSpec("C:\\data\\survey.dat");
  EXPECT_THAT(fileRows(builder, "NAME LOCATION"), ElementsAre("File Name | survey.dat", "Location | C:\\data"));
}

TEST(FileInformation, withoutABackslashNameAndLocationAreUnknown) {
  DatasetBuilder builder = threeCases();
  builder.FileSpec("survey.dat");
  EXPECT_THAT(fileRows(builder, "NAME LOCATION"), ElementsAre("File Name | <none>", "Location | <none>"));
}

TEST(FileInformation, backslashInFrontLeavesNameAndLocationUnknown) {
  DatasetBuilder builder = threeCases();
  builder.FileSpec("\\survey.dat");
  EXPECT_THAT(fileRows(builder, "NAME LOCATION"), ElementsAre("File Name | <none>", "Location | <none>"));
}

TEST(FileInformation, slashIsNoSeparator) {
  DatasetBuilder builder = threeCases();
  builder.FileSpec("/home/me\\survey.csv");
  EXPECT_THAT(fileRows(builder, "NAME LOCATION"), ElementsAre("File Name | survey.csv", "Location | /home/me"));
  DatasetBuilder slashes = threeCases();
  slashes.FileSpec("/home/me/survey.csv");
  EXPECT_THAT(fileRows(slashes, "NAME"), ElementsAre("File Name | <none>"));
}

TEST(FileInformation, datasetWithoutAFileHasNeitherNameNorLocation) {
  DatasetBuilder builder = threeCases();
  EXPECT_THAT(fileRows(builder, "NAME LOCATION"), ElementsAre("File Name | <none>", "Location | <none>"));
}

TEST(FileInformation, labelOrNone) {
  DatasetBuilder with = threeCases();
  with.Label("Household survey");
  EXPECT_THAT(fileRows(with, "LABEL"), ElementsAre("Label | Household survey"));
  DatasetBuilder without = threeCases();
  EXPECT_THAT(fileRows(without, "LABEL"), ElementsAre("Label | <none>"));
}

// The first line meets the second without a separator, and every line from the second on ends one. Meant so.
TEST(FileInformation, documentLinesAreJoinedFromTheSecondOn) {
  DatasetBuilder builder = threeCases();
  builder.AddDocument({"a", "b", "c"});
  EXPECT_THAT(fileRows(builder, "DOCUMENTS"), ElementsAre("Documents | ab\nc\n"));
}

TEST(FileInformation, documentOfOneLineShowsItAlone) {
  DatasetBuilder builder = threeCases();
  builder.AddDocument({"only"});
  EXPECT_THAT(fileRows(builder, "DOCUMENTS"), ElementsAre("Documents | only"));
}

TEST(FileInformation, everyDocumentIsACellOfTheOneRow) {
  DatasetBuilder builder = threeCases();
  builder.AddDocument({"first"}).AddDocument({"x", "y"}).AddDocument({});
  EXPECT_THAT(fileRows(builder, "DOCUMENTS"), ElementsAre("Documents | first | xy\n | "));
  DatasetBuilder none = threeCases();
  EXPECT_THAT(fileRows(none, "DOCUMENTS"), ElementsAre("Documents"));
}

TEST(FileInformation, weightVariableOrNone) {
  DatasetBuilder without = threeCases();
  EXPECT_THAT(fileRows(without, "WEIGHT"), ElementsAre("Weight Variable | <none>"));
  DatasetBuilder with = threeCases();
  with.AddNumeric("w", {1, 2, 3});
  with.Weight("W");
  EXPECT_THAT(fileRows(with, "WEIGHT"), ElementsAre("Weight Variable | w"));
}

TEST(FileInformation, weightedCountIsUnknownWithoutStatistics) {
  DatasetBuilder builder = threeCases();
  EXPECT_THAT(fileRows(builder, "CASECOUNT"),
              ElementsAre("Number of Cases > Unweighted | 3", "Number of Cases > Weighted | <unknown>"));
}

TEST(FileInformation, weightedCountComesFromTheStatistics) {
  DatasetBuilder unweighted = threeCases();
  EXPECT_THAT(fileRows(unweighted, "CASECOUNT", "MEAN"),
              ElementsAre("Number of Cases > Unweighted | 3", "Number of Cases > Weighted | 3"));
  DatasetBuilder weighted = threeCases();
  weighted.AddNumeric("w", {2, 2, 3});
  weighted.Weight("w");
  EXPECT_THAT(fileRows(weighted, "CASECOUNT", "MEAN"),
              ElementsAre("Number of Cases > Unweighted | 3", "Number of Cases > Weighted | 7"));
}

TEST(FileInformation, weightedCountOfZeroIsUnknown) {
  DatasetBuilder builder = threeCases();
  builder.AddNumeric("w", {0, 0, -1});
  builder.Weight("w");
  EXPECT_THAT(fileRows(builder, "CASECOUNT", "MEAN"),
              ElementsAre("Number of Cases > Unweighted | 3", "Number of Cases > Weighted | <unknown>"));
}

/// A dataset that does not know its number of cases.
class UncountedDataset : public runtime::data::Dataset {
 public:
  explicit UncountedDataset(std::shared_ptr<const runtime::data::Dataset> cases)
      : Dataset(cases->dictionary()), fCases(std::move(cases)) {}
  std::unique_ptr<CaseCursor> NewCursor() const override { return fCases->NewCursor(); }
  std::int64_t caseCount() const override { return -1; }

 private:
  std::shared_ptr<const runtime::data::Dataset> fCases;
};

TEST(FileInformation, unknownNumberOfCasesIsSaidSo) {
  const CommandRun run(std::make_shared<UncountedDataset>(threeCases().Build()),
                       "CODEBOOK /FILEINFO CASECOUNT /STATISTICS MEAN.");
  EXPECT_THAT(run.rows(kTitle),
              ElementsAre("Number of Cases > Unweighted | <unknown>", "Number of Cases > Weighted | 3"));
}

TEST(FileInformation, reservedAttributeStandsInBothLists) {
  DatasetBuilder builder = threeCases();
  builder.Attribute("$x", {"one", "two"});
  EXPECT_THAT(fileRows(builder, "ATTRIBUTES RESERVEDATTRIBUTES"),
              ElementsAre("Custom Attributes > $x[1] | one", "Custom Attributes > $x[2] | two",
                          "Reserved Attributes > $x[1] | one", "Reserved Attributes > $x[2] | two"));
}

TEST(FileInformation, emptyAttributeValueShowsAsABlank) {
  DatasetBuilder builder = threeCases();
  builder.Attribute("Note", {"", "y"});
  EXPECT_THAT(fileRows(builder, "ATTRIBUTES"),
              ElementsAre("Custom Attributes > Note[1] |  ", "Custom Attributes > Note[2] | y"));
}

TEST(FileInformation, tenAttributeValuesAreNumberedWithTwoDigits) {
  DatasetBuilder builder = threeCases();
  builder.Attribute("n", {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"}).Attribute("one", {"x"});
  const std::vector<std::string> rows = fileRows(builder, "ATTRIBUTES");
  ASSERT_EQ(rows.size(), 11U);
  EXPECT_EQ(rows[0], "Custom Attributes > n[01] | a");
  EXPECT_EQ(rows[9], "Custom Attributes > n[10] | j");
  EXPECT_EQ(rows[10], "Custom Attributes > one | x");
}

TEST(FileInformation, hiddenAttributesStandInNeitherList) {
  DatasetBuilder builder = threeCases();
  builder.Attribute("@x", {"1"}).Attribute("$@x", {"2"}).Attribute("plain", {"3"}).Attribute("none", {});
  EXPECT_THAT(fileRows(builder, "ATTRIBUTES RESERVEDATTRIBUTES"),
              ElementsAre("Custom Attributes > plain | 3", "Reserved Attributes >"));
}

TEST(FileInformation, groupsWithoutAttributesStandEmpty) {
  DatasetBuilder builder = threeCases();
  EXPECT_THAT(fileRows(builder, "ATTRIBUTES RESERVEDATTRIBUTES"),
              ElementsAre("Custom Attributes >", "Reserved Attributes >"));
}

TEST(FileInformation, withoutKeywordsThereIsNoTable) {
  EXPECT_THAT(CommandRun(threeCases().Build(), "CODEBOOK /STATISTICS NONE.").titles(), ElementsAre("age"));
  EXPECT_THAT(CommandRun(threeCases().Build(), "CODEBOOK /FILEINFO /STATISTICS NONE.").titles(), ElementsAre("age"));
}

TEST(FileInformation, standsBeforeTheItemTables) {
  EXPECT_THAT(CommandRun(threeCases().Build(), "CODEBOOK /STATISTICS NONE /FILEINFO NAME.").titles(),
              ElementsAre(kTitle, "age"));
}

TEST(FileInformation, rowsStandInTheirFixedOrderWithTheirMarks) {
  DatasetBuilder builder = threeCases();
  builder.AddNumeric("w", {1, 1, 1});
  builder.Weight("w").FileSpec("D:\\x\\y.csv").Label("Label of it").AddDocument({"text"}).Attribute("$n", {"v"});
  const CommandRun run(
      builder.Build(),
      "CODEBOOK /STATISTICS MEAN /FILEINFO RESERVEDATTRIBUTES ATTRIBUTES CASECOUNT WEIGHT DOCUMENTS LABEL"
      " LOCATION NAME.");
  EXPECT_THAT(outline(run.table(kTitle)),
              ElementsAreArray({"title fixed:File Information", "subtype data:FileInformation", "flag true",
                                "width 200", "rows fixed:Attributes 1 true false", "  fixed:File Name | data:y.csv",
                                "  fixed:Location | data:D:\\x", "  fixed:Label | data:Label of it",
                                "  fixed:Documents | data:text", "  fixed:Weight Variable | data:w",
                                "  group fixed:Number of Cases", "    fixed:Unweighted | number:3",
                                "    fixed:Weighted | number:3", "  group fixed:Custom Attributes",
                                "    data:$n | data:v", "  group fixed:Reserved Attributes", "    data:$n | data:v"}));
}

TEST(FileInformation, whatIsNotThereIsAFixedText) {
  const CommandRun run(threeCases().Build(),
                       "CODEBOOK /STATISTICS NONE /FILEINFO NAME LOCATION LABEL WEIGHT CASECOUNT.");
  EXPECT_THAT(outline(run.table(kTitle)),
              ElementsAreArray({"title fixed:File Information", "subtype data:FileInformation", "flag true",
                                "width 200", "rows fixed:Attributes 1 true false", "  fixed:File Name | fixed:<none>",
                                "  fixed:Location | fixed:<none>", "  fixed:Label | fixed:<none>",
                                "  fixed:Weight Variable | fixed:<none>", "  group fixed:Number of Cases",
                                "    fixed:Unweighted | number:3", "    fixed:Weighted | fixed:<unknown>"}));
}

}  // namespace
}  // namespace codebook::test
