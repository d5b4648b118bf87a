// The entry: what happens between the host's call and the first table.
#include <stdexcept>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/builder.h"
#include "tests/unit/codebook/commandrun.h"

namespace codebook::test {
namespace {

using runtime::data::DatasetBuilder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::shared_ptr<const runtime::data::Dataset> oneVariable() {
  DatasetBuilder builder;
  builder.AddNumeric("age", {31, 40, 55});
  return builder.Build();
}

TEST(Entry, datasetWithoutVariablesGivesNeitherOutputNorMessage) {
  const CommandRun run(DatasetBuilder().Build(), "CODEBOOK /FILEINFO NAME.");
  EXPECT_TRUE(run.done());
  EXPECT_THAT(run.messages(), IsEmpty());
  EXPECT_THAT(run.titles(), IsEmpty());
}

TEST(Entry, parseErrorLeavesTheProcedureWithoutTables) {
  const CommandRun run(oneVariable(), "CODEBOOK nobody.");
  EXPECT_FALSE(run.done());
  EXPECT_THAT(run.messages(), ElementsAre("error: nobody Invalid or non-existent variable name."));
  ASSERT_EQ(run.report().procedures.size(), 1U);
  EXPECT_EQ(run.report().procedures.front()->title, "Codebook");
  EXPECT_THAT(run.titles(), IsEmpty());
}

TEST(Entry, withoutADatasetTheCommandEndsSilently) {
  const CommandRun run(nullptr, "CODEBOOK.");
  EXPECT_THAT(run.messages(), IsEmpty());
  EXPECT_THAT(run.titles(), IsEmpty());
}

/// A dataset whose cases cannot be opened, or break off.
class BrokenDataset : public runtime::data::Dataset {
 public:
  explicit BrokenDataset(const runtime::data::Dataset& like) : Dataset(like.dictionary()) {}
  std::unique_ptr<CaseCursor> NewCursor() const override { throw std::runtime_error("survey.csv:7: gone"); }
  std::int64_t caseCount() const override { return -1; }
};

TEST(Entry, exceptionOfTheCasesReachesTheCallerAndLeavesNothingBehind) {
  const auto broken = std::make_shared<BrokenDataset>(*oneVariable());
  const std::shared_ptr<const runtime::data::Dataset> dataset = broken;
  try {
    const CommandRun run(dataset, "CODEBOOK.");
    FAIL() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "survey.csv:7: gone");
  }
  // Procedure and data source each held the dataset.
  EXPECT_EQ(dataset.use_count(), 2);
}

TEST(Entry, commandBehindAStoppedOneStillRuns) {
  const CommandRun run(oneVariable(), "CODEBOOK nobody.\nCODEBOOK age /STATISTICS NONE.");
  EXPECT_FALSE(run.done());
  EXPECT_EQ(run.report().procedures.size(), 2U);
  EXPECT_THAT(run.titles(), ElementsAre("age"));
}

TEST(Entry, nothingIsKeptFromOneCommandToTheNext) {
  const CommandRun run(
      oneVariable(),
      "CODEBOOK age [N] /VARINFO LABEL /STATISTICS NONE.\nCODEBOOK age /VARINFO MEASURE /STATISTICS MEAN.");
  EXPECT_THAT(run.rows("age", 0), ElementsAre("Standard Attributes > Label | Value: <none>"));
  EXPECT_EQ(run.rows("age", 1).front(), "Standard Attributes > Measurement | Value: Scale");
  EXPECT_EQ(run.rows("age", 1).back(), "Central Tendency and Dispersion > Mean | Value: 42.0000");
}

std::shared_ptr<const runtime::data::Dataset> datasetOf(const std::string& name, double value) {
  DatasetBuilder builder;
  builder.AddNumeric(name, std::vector<double>(500, value)).Level(MAVO_Variable_Enumerations::kLevelNominal);
  return builder.Build(64);
}

TEST(Entry, twoCommandsInTwoThreadsDoNotTouchEachOther) {
  std::vector<std::string> left;
  std::vector<std::string> right;
  const auto describe = [](const std::string& name, double value, std::vector<std::string>& rows) {
    const auto dataset = datasetOf(name, value);
    for (int i = 0; i < 50; ++i) rows = CommandRun(dataset, "CODEBOOK.").rowsOf(name, "Valid Values");
  };
  std::thread one(describe, "left", 1.0, std::ref(left));
  std::thread other(describe, "right", 2.0, std::ref(right));
  one.join();
  other.join();
  EXPECT_THAT(left, ElementsAre("Valid Values > 1.00 | Count: 500 | Percent: 100.0%"));
  EXPECT_THAT(right, ElementsAre("Valid Values > 2.00 | Count: 500 | Percent: 100.0%"));
}

}  // namespace
}  // namespace codebook::test
