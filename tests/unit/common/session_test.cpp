// A session: binding, several commands in one text, what counts as stopped. The procedures here are tiny stand-ins,
// since the runtime knows none by name.
#include "runtime/common/session.h"

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/common/check.h"
#include "host/output/procedure.h"
#include "host/output/proceduredatasource.h"
#include "host/parser/message.h"

#include "runtime/aggregation/binding.h"
#include "runtime/data/builder.h"

namespace runtime::common {
namespace {

using data::DatasetBuilder;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

std::shared_ptr<const data::Dataset> labelled(const std::string& label) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1, 2, 3});
  builder.Label(label);
  return builder.Build();
}

void reportError() { ParserMessage().GenericError("It failed.", nullptr, nullptr, nullptr, nullptr, nullptr); }

void writeLabelTable() {
  BpProcedure procedure("Label", 1);
  const ProcedureDataSource source;
  BpPivotTable table = procedure.PivotTable(BpString(source.GetLabel(), false), BpString("Label", true), true);
}

void errorThenTable() {
  reportError();
  writeLabelTable();
}

void errorThenCursor() {
  reportError();
  ProcedureDataSource source;
  delete source.NewCaseIterator(0);
}

void tableThenError() {
  writeLabelTable();
  reportError();
}

void warnOnly() { ParserMessage().GenericWarning("Mind ^1.", "this", nullptr, nullptr, nullptr, nullptr); }

void failCheck() { HostCheckFailed("x > 0", "backend/place"); }

std::vector<std::string> titles(Session& session) {
  std::vector<std::string> result;
  for (const auto& procedure : session.report().procedures)
    for (const auto& table : procedure->tables) result.push_back(table->title->text);
  return result;
}

TEST(Session, errorBehindWhichNothingHappensStopsTheCommand) {
  Session session(labelled("x"), {{"P", &reportError}});
  EXPECT_FALSE(session.Run("P."));
  ASSERT_THAT(session.report().messages, SizeIs(1));
  EXPECT_EQ(session.report().messages[0].text, "It failed.");
  EXPECT_EQ(session.report().messages[0].severity, output::Severity::Error);
  EXPECT_EQ(session.report().messages[0].source, output::Source::Command);
}

TEST(Session, errorBehindWhichATableIsOpenedDoesNotStopIt) {
  EXPECT_TRUE(Session(labelled("x"), {{"P", &errorThenTable}}).Run("P."));
}

TEST(Session, errorBehindWhichTheCasesAreAskedForDoesNotStopIt) {
  EXPECT_TRUE(Session(labelled("x"), {{"P", &errorThenCursor}}).Run("P."));
}

TEST(Session, errorBehindTheLastTableStopsTheCommand) {
  EXPECT_FALSE(Session(labelled("x"), {{"P", &tableThenError}}).Run("P."));
}

TEST(Session, warningsStopNothing) { EXPECT_TRUE(Session(labelled("x"), {{"P", &warnOnly}}).Run("P.")); }

TEST(Session, commandsBehindAStoppedOneStillRun) {
  Session session(labelled("x"), {{"BAD", &reportError}, {"GOOD", &writeLabelTable}});
  EXPECT_FALSE(session.Run("BAD.\nGOOD.\n"));
  EXPECT_THAT(titles(session), ElementsAre("x"));
}

TEST(Session, unknownCommandIsAnErrorAndOpensNoProcedure) {
  Session session(labelled("x"), {{"CODEBOOK", &writeLabelTable}});
  EXPECT_FALSE(session.Run("CODEBOK."));
  EXPECT_THAT(session.report().procedures, IsEmpty());
  ASSERT_THAT(session.report().messages, SizeIs(1));
  EXPECT_THAT(session.report().messages[0].text, HasSubstr("CODEBOOK"));
}

TEST(Session, commandNamesAreReadWithoutRegardToCase) {
  Session session(labelled("x"), {{"GOOD", &writeLabelTable}});
  EXPECT_TRUE(session.Run("good."));
  EXPECT_THAT(titles(session), ElementsAre("x"));
}

TEST(Session, failedCheckPassesOnAndNothingRunsBehindIt) {
  Session session(labelled("x"), {{"BAD", &failCheck}, {"GOOD", &writeLabelTable}});
  try {
    session.Run("BAD.\nGOOD.\n");
    FAIL() << "the failed check did not pass on";
  } catch (const InternalCheckFailure& failure) {
    EXPECT_EQ(failure.condition(), "x > 0");
    EXPECT_EQ(failure.source(), "backend/place");
  }
  EXPECT_THAT(titles(session), IsEmpty());
}

TEST(Session, withoutADatasetTheActiveOneIsUnusable) {
  static bool unusable = false;
  Session session(nullptr, {{"P", +[] { unusable = ProcedureDataSource().FatalError(); }}});
  EXPECT_TRUE(session.Run("P."));
  EXPECT_TRUE(unusable);
}

TEST(Session, twoSessionsInTwoThreadsDoNotTouchEachOther) {
  const auto runMany = [](const std::string& label, std::vector<std::string>& seen) {
    Session session(labelled(label), {{"GOOD", &writeLabelTable}});
    for (int i = 0; i < 200; ++i) session.Run("GOOD.");
    seen = titles(session);
  };
  std::vector<std::string> left;
  std::vector<std::string> right;
  std::thread one(runMany, "left", std::ref(left));
  std::thread other(runMany, "right", std::ref(right));
  one.join();
  other.join();
  EXPECT_THAT(left, ::testing::AllOf(SizeIs(200), ::testing::Each("left")));
  EXPECT_THAT(right, ::testing::AllOf(SizeIs(200), ::testing::Each("right")));
}

void runInnerSession() {
  Session inner(labelled("inner"), {{"GOOD", &writeLabelTable}});
  inner.Run("GOOD.");
  writeLabelTable();
}

TEST(Session, aSessionInsideAnotherGivesTheBindingBack) {
  Session outer(labelled("outer"), {{"P", &runInnerSession}});
  EXPECT_TRUE(outer.Run("P."));
  EXPECT_THAT(titles(outer), ElementsAre("outer"));
}

/// Runs one procedure and gives the stages that it went through.
std::vector<std::string> stagesOf(ProcedureEntry procedure) {
  std::vector<std::string> stages;
  SessionOptions options;
  options.onPassBegins = [&stages] { stages.emplace_back("pass"); };
  options.onResultsBegin = [&stages] { stages.emplace_back("results"); };
  options.onTablesBegin = [&stages] { stages.emplace_back("tables"); };
  Session(labelled("x"), {{"P", procedure}}, options).Run("P.");
  return stages;
}

void askForCases() {
  ProcedureDataSource source;
  delete source.NewCaseIterator(0);
}

void computeResults() { aggregation::CurrentAggregation()->onResultsBegin(); }

TEST(Session, tellsWhenThePassAndTheTablesBegin) {
  EXPECT_THAT(stagesOf(+[] {
                askForCases();
                writeLabelTable();
                writeLabelTable();
              }),
              ElementsAre("pass", "tables"));
}

TEST(Session, tellsWhenResultsBeginToBeComputed) {
  EXPECT_THAT(stagesOf(+[] {
                askForCases();
                computeResults();
                writeLabelTable();
              }),
              ElementsAre("pass", "results", "tables"));
}

TEST(Session, resultsThatComeLateInterruptTheTables) {
  EXPECT_THAT(stagesOf(+[] {
                askForCases();
                writeLabelTable();
                computeResults();
                writeLabelTable();
                writeLabelTable();
              }),
              ElementsAre("pass", "tables", "results", "tables"));
}

void passTheCases() {
  ProcedureDataSource source;
  const std::unique_ptr<MAVO_InputCaseIterator> cases(source.NewCaseIterator(0));
  while (cases->NextCase() != 0) {
  }
}

TEST(Session, tellsHowFarAPassHasCome) {
  std::vector<std::int64_t> counted;
  SessionOptions options;
  options.onProgress = [&counted](const machine::Progress& progress) { counted.push_back(progress.cases); };
  Session session(labelled("x"), {{"P", &passTheCases}}, options);
  session.Run("P.\nP.\n");
  EXPECT_THAT(counted, ElementsAre(3, 3));
}

}  // namespace
}  // namespace runtime::common
