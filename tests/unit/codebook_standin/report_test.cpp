// The run on a host that misbehaves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/common/check.h"

#include "codebook/cbkreport.h"
#include "codebook/parser/cbkparser.h"
#include "runtime/data/builder.h"
#include "tests/unit/codebook_standin/standin.h"

namespace codebook::standin {
namespace {

using runtime::data::DatasetBuilder;
using ::testing::ElementsAre;
using ::testing::Eq;
using ::testing::IsEmpty;

/// Runs a report over the items as they stand in the settings, without a parse.
void runReport(const std::vector<ListedItem>& items, const std::vector<std::int32_t>& kinds,
               const std::function<void(CodebookSettings&)>& choose = {}) {
  CodebookSettings settings;
  settings.setItems(items);
  settings.setItemKinds(kinds);
  settings.setStatistics(false, false, false, false, false);
  if (choose) choose(settings);
  BpProcedure procedure("Codebook", 1);
  ProcedureDataSource dataSource;
  ParserMessage messages;
  CodebookReport(&settings, &dataSource, &procedure, &messages).run();
}

std::shared_ptr<const runtime::data::Dataset> survey() {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2}).ValueLabel(1, "one").ValueLabel(2, "two");
  builder.AddNumeric("w", {1, 2});
  builder.AddCategorySet("$s", {"v", "w"});
  return builder.Build();
}

TEST(Run, withoutAnIteratorTheDatasetIsEmpty) {
  newHost().dataset = survey();
  host().newIterator = [](ProcedureDataSource&) -> MAVO_InputCaseIterator* { return nullptr; };
  runReport({{"v", 0}}, {1, 1, 2}, [](CodebookSettings& settings) {
    settings.setFileInfoGiven(true);
    settings.setFileInfo(true, true, true, true, true, true, true, true);
  });
  EXPECT_THAT(host().messages, ElementsAre("error: Empty dataset."));
  EXPECT_THAT(tableTitles(), IsEmpty());
}

TEST(Run, iteratorOfAnotherKindIsNoneAndIsReleased) {
  class PlainIterator : public MAVO_InputCaseIterator {
   public:
    explicit PlainIterator(const MAVO_DataSource& source) : MAVO_InputCaseIterator(source, nullptr) {
      host().life.emplace_back("plain iterator");
    }
    ~PlainIterator() override { host().life.emplace_back("~plain iterator"); }
  };
  newHost().dataset = survey();
  host().newIterator = [](ProcedureDataSource& source) -> MAVO_InputCaseIterator* {
    return std::make_unique<PlainIterator>(source).release();
  };
  runReport({{"v", 0}}, {1, 1, 2});
  EXPECT_THAT(host().messages, ElementsAre("error: Empty dataset."));
  EXPECT_THAT(host().life, ElementsAre("procedure", "data source", "messages", "plain iterator", "~plain iterator",
                                       "~messages", "~data source", "~procedure"));
}

TEST(Run, iteratorIsAskedForAlsoWithoutStatistics) {
  newHost().dataset = survey();
  runReport({{"w", 1}}, {1, 1, 2}, [](CodebookSettings& settings) {
    settings.setStatisticsGiven(true);
    settings.setStatisticsNone(true);
  });
  EXPECT_THAT(host().life, ::testing::Contains("iterator"));
  EXPECT_EQ(host().tablesMade, 0U);
  EXPECT_THAT(tableTitles(), ElementsAre("w"));
}

TEST(Run, wrongNumberOfScaleResultsFailsTheInternalCheck) {
  newHost().dataset = survey();
  host().tables.resize(1);
  host().tables[0].wholeCell = std::nullopt;
  try {
    runReport({{"w", 1}}, {1, 1, 2});
    FAIL() << "no check failed";
  } catch (const InternalCheckFailure& failure) {
    EXPECT_EQ(failure.condition(),
              "results.size() == fScaleStatCodes.size() || (results.size() == fScaleStatCodes.size()+2)");
    EXPECT_EQ(failure.source(), "backend/codebook/cbkoutput");
  }
}

TEST(Run, percentilesShowOnlyWhenTheResultsEndWithThem) {
  newHost().dataset = survey();
  host().tables.resize(1);
  // As many results as codes: the percentile code has one value instead of three.
  host().tables[0].wholeCell = Cell{{222, 2.0}, {198, 0.0}, {179, 1.5}, {203, 0.5}, {468, 1.0}};
  runReport({{"w", 1}}, {1, 1, 2});
  const std::vector<std::string> rows = rowsOfTable(0);
  EXPECT_THAT(rows, ::testing::Contains(Eq("Central Tendency and Dispersion > Mean | 1.50")));
  EXPECT_THAT(rows, ::testing::Not(::testing::Contains(::testing::HasSubstr("Percentile"))));
}

TEST(Run, percentsOfAScaleVariablesLabelsAreAsReturnedWhereTheCaseCountIsUnknown) {
  newHost().dataset = survey();
  host().tables.resize(2);
  host().tables[0].wholeCell = Cell{{222, 0.0}, {198, 0.0}, {179, 0.0}, {203, 0.0}, {468, 0.0}, {468, 0.0}, {468, 0.0}};
  host().tables[1].categories = {{1.0, 0, "1", Cell{{1, 3.0}, {130, 12.5}}},
                                 {7.0, 1, "7", Cell{{1, 3.0}, {130, 12.5}}},  // without a label: not shown
                                 {2.0, 2, "2", std::nullopt},
                                 {0.0, 3, "", std::nullopt}};
  runReport({{"v", 0}}, {1, 1, 2});
  const std::vector<std::string> rows = rowsOfTable(0);
  EXPECT_THAT(rows, ::testing::Contains(Eq("Labeled Values > 1.00 | one | 3 | 12.5")));
  EXPECT_THAT(rows, ::testing::Contains(Eq("Labeled Values > 2.00 | two | 0 | 0.0")));
  EXPECT_THAT(rows, ::testing::Not(::testing::Contains(::testing::HasSubstr("7.00"))));
}

TEST(Run, systemMissingRowNeedsAPositiveTotal) {
  newHost().dataset = survey();
  host().tables.resize(1);
  host().tables[0].column = {1, 2};
  host().tables[0].categories = {{1.0, 0, "1", Cell{{1, 3.0}, {130, 100.0}}},
                                 {0.0, 1, "", Cell{{198, 5.0}, {213, 0.0}}}};
  runReport({{"w", 1}}, {1, 2, 2});
  EXPECT_THAT(rowsOfTable(0), ::testing::Not(::testing::Contains(::testing::HasSubstr("System"))));
}

TEST(Run, remainderOfRoundingIsNoSystemMissingRow) {
  for (const double remainder : {1e-9, 1e-7}) {
    newHost().dataset = survey();
    host().tables.resize(1);
    host().tables[0].column = {1, 2};
    host().tables[0].categories = {{1.0, 0, "1", Cell{{1, 3.0}, {130, 100.0}}},
                                   {0.0, 1, "", Cell{{198, remainder}, {213, 3.0}}}};
    runReport({{"w", 1}}, {1, 2, 2});
    const std::vector<std::string> rows = rowsOfTable(0);
    const bool shown = std::any_of(rows.begin(), rows.end(),
                                   [](const std::string& row) { return row.find("System") != std::string::npos; });
    EXPECT_EQ(shown, remainder > 1e-8) << remainder;
  }
}

// What could not be described ends the preparation: what stands behind it is listed all the same, without statistics.
TEST(Run, itemsBehindOneThatCannotBeDescribedAreListedWithoutStatistics) {
  newHost().dataset = survey();
  host().tables.resize(1);
  host().tables[0].wholeCell = Cell{{222, 2.0}, {198, 0.0}, {179, 1.5}};
  runReport({{"w", 1}, {"$gone", 3}, {"v", 0}, {"$s", 2}}, {1, 1, 2}, [](CodebookSettings& settings) {
    settings.setVarInfoGiven(true);
    settings.setVarInfo(false, true, false, false, false, false, false, false, false, false);
    settings.setStatisticsGiven(true);
    settings.setStatistics(false, false, true, false, false);
  });
  EXPECT_THAT(tableTitles(), ElementsAre("w", "$gone", "v", "$s"));
  EXPECT_EQ(host().tablesMade, 1U);
  EXPECT_THAT(rowsOfTable(2), ElementsAre("Standard Attributes > Label | <none>"));
}

TEST(Run, setThatCannotBeDescribedFailsTheInternalCheckWhereItsCategoriesAreWanted) {
  newHost().dataset = survey();
  host().tables.resize(1);
  host().tables[0].wholeCell = Cell{{222, 2.0}, {198, 0.0}};
  try {
    runReport({{"w", 1}, {"$gone", 3}, {"v", 0}}, {1, 1, 2}, [](CodebookSettings& settings) {
      settings.setStatisticsGiven(true);
      settings.setStatistics(true, false, false, false, false);
    });
    FAIL() << "no check failed";
  } catch (const InternalCheckFailure& failure) {
    EXPECT_EQ(failure.condition(), "mdSetVarIndice.size() >0");
    EXPECT_EQ(failure.source(), "backend/codebook/cbkoutput");
  }
  EXPECT_THAT(tableTitles(), ElementsAre("w", "$gone"));
  // Everything was released on the way out.
  EXPECT_THAT(host().life, ElementsAre("procedure", "data source", "messages", "iterator", "~iterator", "~messages",
                                       "~data source", "~procedure"));
  EXPECT_THAT(host().tables[0].requests, ::testing::Contains("~table"));
}

TEST(Run, numberOfCasesIsThatOfTheParent) {
  DatasetBuilder parentBuilder;
  parentBuilder.AddNumeric("v", {1, 2, 3, 4, 5});
  MAVO_DataSource parent(parentBuilder.Build());
  newHost().dataset = survey();
  host().parent = &parent;
  runReport({}, {1, 1, 2}, [](CodebookSettings& settings) {
    settings.setFileInfoGiven(true);
    settings.setFileInfo(false, false, true, false, false, false, false, false);
    settings.setStatisticsGiven(true);
    settings.setStatisticsNone(true);
  });
  EXPECT_THAT(rowsOfTable(0),
              ElementsAre("Number of Cases > Unweighted | 5", "Number of Cases > Weighted | <unknown>"));
}

}  // namespace
}  // namespace codebook::standin
