// The declared grammar: what the host's parser accepts and refuses for the command.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "codebook/parser/cbkparser.h"
#include "runtime/data/builder.h"
#include "tests/unit/codebook/commandrun.h"
#include "tests/unit/codebook/insession.h"
#include "tests/unit/codebook/parsedcommand.h"

namespace codebook::test {
namespace {

using runtime::data::DatasetBuilder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

std::shared_ptr<const runtime::data::Dataset> oneVariable() {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1, 2}).Attribute("Note", {"x"});
  return builder.Build();
}

/// What checkSyntax says of a text, and what it reported.
struct SyntaxCheck {
  bool accepted = false;
  bool listWritten = false;
  bool varInfoWritten = false;
  std::size_t itemsAfterwards = 0;
  std::vector<std::string> messages;

  explicit SyntaxCheck(const std::string& text) {
    messages = messageLines(runInSession(oneVariable(), text, [this] {
      ProcedureDataSource dataSource;
      ParserMessage parserMessage;
      CodebookRequest request(&dataSource, &parserMessage);
      CommandSpec spec;
      accepted = request.checkSyntax(spec);
      listWritten = spec.getSubComObj("") != nullptr;
      varInfoWritten = spec.getSubComObj("VARINFO") != nullptr;
      itemsAfterwards = request.settings()->items().size();
    }));
  }
};

TEST(Grammar, commandAloneIsAcceptedAndHasNoList) {
  const SyntaxCheck check("CODEBOOK.");
  EXPECT_TRUE(check.accepted);
  EXPECT_FALSE(check.listWritten);
  EXPECT_FALSE(check.varInfoWritten);
  EXPECT_THAT(check.messages, IsEmpty());
}

TEST(Grammar, subcommandWithoutKeywordsIsAccepted) {
  for (const char* name : {"VARINFO", "FILEINFO", "STATISTICS", "OPTIONS"}) {
    const SyntaxCheck check(std::string("CODEBOOK /") + name + ".");
    EXPECT_TRUE(check.accepted) << name;
    EXPECT_THAT(check.messages, IsEmpty()) << name;
  }
  EXPECT_TRUE(SyntaxCheck("CODEBOOK /VARINFO.").varInfoWritten);
}

TEST(Grammar, undeclaredSortOrderIsRefusedAndNothingIsInterpreted) {
  const ParsedCommand parsed(oneVariable(), "CODEBOOK a /VARINFO LABEL /OPTIONS SORT=UP.");
  EXPECT_FALSE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), SizeIs(1));
  EXPECT_THAT(parsed.itemNames(), IsEmpty());
  EXPECT_FALSE(parsed.settings().varInfoGiven());
  EXPECT_FALSE(parsed.settings().optionsGiven());
}

TEST(Grammar, undeclaredSortOrderStopsTheCommandWithoutTables) {
  const CommandRun run(oneVariable(), "CODEBOOK /OPTIONS SORT=UP.");
  EXPECT_FALSE(run.done());
  EXPECT_THAT(run.messages(), SizeIs(1));
  EXPECT_THAT(run.titles(), IsEmpty());
}

TEST(Grammar, declaredKeywordsOfEverySubcommandAreAccepted) {
  const SyntaxCheck check(
      "CODEBOOK a /VARINFO POSITION LABEL TYPE FORMAT MEASURE ROLE ATTRIBUTES VALUELABELS MISSING RESERVEDATTRIBUTES"
      " /FILEINFO NAME LOCATION CASECOUNT LABEL ATTRIBUTES DOCUMENTS WEIGHT RESERVEDATTRIBUTES"
      " /STATISTICS NONE COUNT PERCENT MEAN STDDEV QUARTILES"
      " /OPTIONS MAXCATS=5 VARORDER=ATTRIBUTE(Note) SORT=DESCENDING.");
  EXPECT_TRUE(check.accepted);
  EXPECT_THAT(check.messages, IsEmpty());
  EXPECT_TRUE(check.listWritten);
}

TEST(Grammar, everyVarOrderQualifierIsAccepted) {
  for (const char* order : {"FILE", "ALPHA", "VARLIST", "MEASURE", "ATTRIBUTE(Note)"})
    EXPECT_TRUE(SyntaxCheck(std::string("CODEBOOK /OPTIONS VARORDER=") + order + ".").accepted) << order;
  EXPECT_FALSE(SyntaxCheck("CODEBOOK /OPTIONS VARORDER=NAME.").accepted);
  EXPECT_FALSE(SyntaxCheck("CODEBOOK /OPTIONS VARORDER=ATTRIBUTE.").accepted);
}

TEST(Grammar, undeclaredSubcommandOrKeywordIsRefused) {
  EXPECT_FALSE(SyntaxCheck("CODEBOOK /TABLES.").accepted);
  EXPECT_FALSE(SyntaxCheck("CODEBOOK /VARINFO NAME.").accepted);
  EXPECT_FALSE(SyntaxCheck("CODEBOOK /STATISTICS MEDIAN.").accepted);
  EXPECT_FALSE(SyntaxCheck("CODEBOOK /OPTIONS MAXCATS.").accepted);
}

TEST(Grammar, syntaxCheckReportsButInterpretsNothing) {
  const SyntaxCheck refused("CODEBOOK nobody /OPTIONS SORT=UP.");
  EXPECT_FALSE(refused.accepted);
  EXPECT_THAT(refused.messages, SizeIs(1));
  // The list is not looked at: an unknown name is no matter of syntax.
  const SyntaxCheck accepted("CODEBOOK nobody /STATISTICS NONE COUNT.");
  EXPECT_TRUE(accepted.accepted);
  EXPECT_THAT(accepted.messages, IsEmpty());
  EXPECT_EQ(accepted.itemsAfterwards, 0U);
}

TEST(Grammar, keywordsAreReadWithoutRegardToCase) {
  const ParsedCommand parsed(oneVariable(),
                             "codebook a /VarInfo label /options sort=descending varorder=file maxcats=7.");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_TRUE(parsed.settings().varInfoLabel());
  EXPECT_FALSE(parsed.settings().sortAscending());
  EXPECT_EQ(parsed.settings().varOrder(), kOrderFile);
  EXPECT_EQ(parsed.settings().maxCats(), 7);
}

}  // namespace
}  // namespace codebook::test
