// The walk over command specifications such as no command text gives.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/common/check.h"

#include "codebook/parser/cbkparser.h"
#include "runtime/data/builder.h"
#include "tests/unit/codebook_standin/standin.h"

namespace codebook::standin {
namespace {

using runtime::data::DatasetBuilder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kMalformed = "error: Error in < ^1 > command. (CODEBOOK)";

/// A request over a variable a, a variable b and a set $s; a new host a test.
class Parsing : public ::testing::Test {
 protected:
  Parsing() {
    DatasetBuilder builder;
    builder.AddNumeric("a", {1});
    builder.AddNumeric("b", {1});
    builder.AddCategorySet("$s", {"a", "b"});
    newHost().dataset = builder.Build();
    fDataSource = std::make_unique<ProcedureDataSource>();
    fMessages = std::make_unique<ParserMessage>();
    fRequest = std::make_unique<CodebookRequest>(fDataSource.get(), fMessages.get());
  }

  CodebookRequest& request() { return *fRequest; }

 private:
  std::unique_ptr<ProcedureDataSource> fDataSource;
  std::unique_ptr<ParserMessage> fMessages;
  std::unique_ptr<CodebookRequest> fRequest;
};

TEST_F(Parsing, refusedTextIsNotInterpreted) {
  host().read = [](CommandSpec& spec) {
    addSubcommand(spec, "VARINFO", {{"LABEL"}});
    return 7;
  };
  EXPECT_FALSE(request().parse());
  EXPECT_FALSE(request().settings()->varInfoGiven());
}

TEST_F(Parsing, listWithoutItsExportedParameterFailsTheInternalCheck) {
  for (const std::vector<std::string>& tokens : {std::vector<std::string>{"a"}, {"a", "TO", "b"}, {"$s"}, {"ALL"}}) {
    CommandSpec spec;
    addList(spec, tokens, false);
    try {
      request().interpret(spec);
      FAIL() << tokens.front();
    } catch (const InternalCheckFailure& failure) {
      EXPECT_EQ(failure.condition(), "paramObjPtr");
      EXPECT_EQ(failure.source(), "backend/codebook/parser/cbkparser");
    }
  }
}

TEST_F(Parsing, tokensThatCannotBeReadAreAnErrorInTheCommand) {
  const std::vector<std::vector<std::string>> lists = {{"a"}, {"a", "TO", "b"}, {"$s"}, {"ALL"}};
  for (const std::vector<std::string>& tokens : lists) {
    host().messages.clear();
    CommandSpec spec;
    addList(spec, tokens, true, false);
    EXPECT_FALSE(request().interpret(spec)) << tokens.front();
    EXPECT_THAT(host().messages, ElementsAre(kMalformed)) << tokens.front();
    EXPECT_THAT(request().settings()->items(), IsEmpty()) << tokens.front();
  }
}

TEST_F(Parsing, emptyListListsNothing) {
  CommandSpec spec;
  addList(spec, {});
  EXPECT_TRUE(request().interpret(spec));
  EXPECT_THAT(request().settings()->items(), IsEmpty());
}

TEST_F(Parsing, undeclaredOrderFailsWithoutAMessageOfItsOwn) {
  CommandSpec spec;
  addSubcommand(spec, "OPTIONS", {{"VARORDER", std::nullopt, "RANDOM"}, {"MAXCATS", "5"}});
  EXPECT_FALSE(request().interpret(spec));
  EXPECT_THAT(host().messages, IsEmpty());
  EXPECT_EQ(request().settings()->varOrder(), kOrderVarList);
  EXPECT_EQ(request().settings()->maxCats(), 5);
}

TEST_F(Parsing, undeclaredDirectionFailsWithoutAMessageOfItsOwn) {
  CommandSpec spec;
  addSubcommand(spec, "OPTIONS", {{"SORT", std::nullopt, "SIDEWAYS"}, {"MAXCATS", "5"}});
  EXPECT_FALSE(request().interpret(spec));
  EXPECT_THAT(host().messages, IsEmpty());
  EXPECT_TRUE(request().settings()->sortAscending());
}

TEST_F(Parsing, maxCatsWithoutAValueGivesTheDefault) {
  CommandSpec spec;
  addSubcommand(spec, "OPTIONS", {{"MAXCATS"}});
  EXPECT_TRUE(request().interpret(spec));
  EXPECT_EQ(request().settings()->maxCats(), 200);
  EXPECT_EQ(host().messages.front(), "warning: MAXCATS must be a positive integer.");
}

}  // namespace
}  // namespace codebook::standin
