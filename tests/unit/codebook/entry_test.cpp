// The entry: what happens between the host's call and the first table.
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

}  // namespace
}  // namespace codebook::test
