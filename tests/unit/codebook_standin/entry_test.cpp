// Life and death of what the entry makes, and the load notification.
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/common/check.h"
#include "host/common/notification.h"

#include "runtime/data/builder.h"
#include "tests/unit/codebook_standin/standin.h"

extern "C" void CODEBOOK();
extern "C" int LoadNotification(void* module, unsigned int notification, void* reserved);

namespace codebook::standin {
namespace {

using runtime::data::DatasetBuilder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

std::shared_ptr<const runtime::data::Dataset> oneVariable() {
  DatasetBuilder builder;
  builder.AddNumeric("age", {31, 40, 55});
  return builder.Build();
}

TEST(Entry, objectsAreMadeInOrderAndDestroyedInReverse) {
  newHost().dataset = oneVariable();
  host().read = [](CommandSpec& spec) {
    addSubcommand(spec, "STATISTICS", {{"NONE"}});
    return 0;
  };
  CODEBOOK();
  EXPECT_THAT(host().life, ElementsAre("procedure", "data source", "messages", "parser of CODEBOOK", "~parser",
                                       "iterator", "~iterator", "~messages", "~data source", "~procedure"));
  EXPECT_THAT(host().procedures, SizeIs(1));
  EXPECT_EQ(host().procedures.front()->title, "Codebook");
  EXPECT_EQ(host().procedures.front()->number, 1);
}

TEST(Entry, parseErrorSkipsTheRunAndTearsDownInTheSameOrder) {
  newHost().dataset = oneVariable();
  host().read = [](CommandSpec&) { return 1; };
  CODEBOOK();
  EXPECT_THAT(host().life, ElementsAre("procedure", "data source", "messages", "parser of CODEBOOK", "~parser",
                                       "~messages", "~data source", "~procedure"));
  EXPECT_THAT(host().messages, IsEmpty());
  EXPECT_THAT(tableTitles(), IsEmpty());
}

TEST(Entry, unusableDatasetEndsTheCommandSilentlyBehindTheParse) {
  newHost().dataset = oneVariable();
  host().fatalError = true;
  CODEBOOK();
  EXPECT_THAT(host().life, ElementsAre("procedure", "data source", "messages", "parser of CODEBOOK", "~parser",
                                       "~messages", "~data source", "~procedure"));
  EXPECT_THAT(host().messages, IsEmpty());
  EXPECT_THAT(tableTitles(), IsEmpty());
}

TEST(Entry, exceptionOfTheParserPassesOnBehindTheTearDown) {
  newHost().dataset = oneVariable();
  host().read = [](CommandSpec&) -> int { throw std::runtime_error("parser gone"); };
  EXPECT_THROW(CODEBOOK(), std::runtime_error);
  EXPECT_THAT(host().life, ElementsAre("procedure", "data source", "messages", "parser of CODEBOOK", "~parser",
                                       "~messages", "~data source", "~procedure"));
}

TEST(Entry, exceptionOfTheCasesPassesOnUnchangedBehindTheTearDown) {
  newHost().dataset = oneVariable();
  host().newIterator = [](ProcedureDataSource&) -> MAVO_InputCaseIterator* {
    throw std::runtime_error("line 7: no such cell");
  };
  try {
    CODEBOOK();
    FAIL() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "line 7: no such cell");
  }
  EXPECT_THAT(host().life, ElementsAre("procedure", "data source", "messages", "parser of CODEBOOK", "~parser",
                                       "~messages", "~data source", "~procedure"));
  EXPECT_THAT(tableTitles(), IsEmpty());
}

TEST(Entry, exceptionInTheMiddleOfThePassReleasesTablesAndIterator) {
  newHost().dataset = oneVariable();
  // A nominal treatment makes the pass ask for the values met, and that many are not planned.
  host().read = [](CommandSpec& spec) {
    addList(spec, {"age", "[", "N", "]"});
    addSubcommand(spec, "OPTIONS", {{"MAXCATS", "1"}});
    return 0;
  };
  EXPECT_THROW(CODEBOOK(), std::out_of_range);
  EXPECT_THAT(host().life, ElementsAre("procedure", "data source", "messages", "parser of CODEBOOK", "~parser",
                                       "iterator", "~iterator", "~messages", "~data source", "~procedure"));
  EXPECT_EQ(host().tables.front().requests.back(), "~table");
  EXPECT_THAT(tableTitles(), IsEmpty());
}

TEST(Notification, everyOneIsASuccessAndOnlyAttachingFetchesTheBlocks) {
  newHost();
  int module = 0;
  for (const unsigned int code : {0U, 2U, 3U, 77U}) {
    EXPECT_EQ(LoadNotification(&module, code, nullptr), 1) << code;
    EXPECT_THAT(host().blocksFetched, IsEmpty()) << code;
  }
  EXPECT_EQ(LoadNotification(&module, kProcessAttach, nullptr), 1);
  EXPECT_THAT(host().blocksFetched,
              ElementsAre("CmnBpr", "CmaDic", "CmaGlb", "CmaMch", "CmaObv", "CmaSym", "CmaSys", "CmnDic", "CmnDmo",
                          "CmnGlb", "CmnInc", "CmnIo", "CmnLoc", "CmnMch", "CmnMcs", "CmnObv", "CmnStk", "CmnSym",
                          "CmnSys", "CmnWrk", "CmnDtm", "CmnBox"));
}

}  // namespace
}  // namespace codebook::standin
