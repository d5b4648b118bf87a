#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/parser/boundcommand.h"

namespace {

using parsertest::Bound;
using parsertest::Parse;
using parsertest::ParseCommand;
using parsertest::Parsed;
using parsertest::Texts;
using testing::ElementsAre;

std::vector<std::string> ListOf(const Parsed& parsed) {
  const SubComObj* list = parsed.spec->getSubComObj("");
  if (list == nullptr) return {"(no list)"};
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < list->getTokenListSize(); ++i) texts.push_back(list->getTokenObj(i)->getString());
  return texts;
}

/// The keyword's qualifier or declared value, with what it carries.
std::string ChosenOf(const Parsed& parsed, const std::string& keyword) {
  const SubComObj* options = parsed.spec->getSubComObj("OPTIONS");
  const ParamObj* param = options == nullptr ? nullptr : options->getParamObj(keyword);
  if (param == nullptr) return "(absent)";
  ParamObj chosen;
  if (!param->getStringAndQual(chosen, nullptr, nullptr)) return "(none)";
  std::string carried;
  return chosen.getStringGeneric(carried) ? chosen.getParamName() + ":" + carried : chosen.getParamName();
}

std::string IntegerOf(const std::string& value) {
  const Parsed parsed = Parse("CODEBOOK /OPTIONS MAXCATS=" + value);
  if (!parsed.accepted()) return "(refused)";
  int integer = 200;
  if (!parsed.spec->getSubComObj("OPTIONS")->getParamObj("MAXCATS")->getIntegerValue(integer)) {
    return integer == 200 ? "(no integer)" : "(changed)";
  }
  return std::to_string(integer);
}

TEST(Grammar, acceptsTheCommandNameAlone) {
  const Parsed parsed = Parse("CODEBOOK.");
  EXPECT_TRUE(parsed.accepted());
  for (const char* name : {"", "VARINFO", "FILEINFO", "STATISTICS", "OPTIONS"}) {
    EXPECT_EQ(parsed.spec->getSubComObj(name), nullptr) << name;
  }
}

TEST(Grammar, readsTheCommandNameWithoutRegardToCase) { EXPECT_TRUE(Parse("codeBook x.").accepted()); }

TEST(Grammar, handsTheListOnRaw) {
  EXPECT_THAT(ListOf(Parse("CODEBOOK x [S] = ( ) , 'a b' 5 \"/\" VARINFO ALL ] / VARINFO")),
              ElementsAre("x", "[", "S", "]", "=", "(", ")", "a b", "5", "/", "VARINFO", "ALL", "]"));
}

TEST(Grammar, hasNoListWhenItHoldsNoToken) {
  EXPECT_THAT(ListOf(Parse("CODEBOOK /VARINFO LABEL")), ElementsAre("(no list)"));
}

TEST(Grammar, exportsTheListAndItsTokens) {
  const Parsed parsed = Parse("CODEBOOK a 'b c' /VARINFO LABEL");
  const SubComObj* list = parsed.spec->getSubComObj("");
  ASSERT_NE(list, nullptr);
  ASSERT_NE(list->exportParamObj(), nullptr);
  std::vector<TokenInfoObj> tokens;
  ASSERT_TRUE(list->exportParamObj()->getTokenList(tokens));
  EXPECT_THAT(Texts(tokens), ElementsAre("a", "b c"));
  EXPECT_EQ(list->getTokenObj(1)->kind(), TokenInfoObj::Kind::Quoted);
  EXPECT_EQ(list->getTokenObj(2), nullptr);
  EXPECT_EQ(parsed.spec->getSubComObj("VARINFO")->exportParamObj(), nullptr);
}

TEST(Grammar, exportsTheTokensOfASubcommandThatAlsoHasKeywords) {
  const Parsed parsed = Parse("CODEBOOK /OPTIONS = SORT=DESCENDING MAXCATS(5)");
  std::vector<TokenInfoObj> tokens;
  ASSERT_TRUE(parsed.spec->getSubComObj("OPTIONS")->exportParamObj()->getTokenList(tokens));
  EXPECT_THAT(Texts(tokens), ElementsAre("SORT", "=", "DESCENDING", "MAXCATS", "(", "5", ")"));
}

TEST(Grammar, readsSubcommandsInAnyOrderAndCase) {
  const Parsed parsed = Parse("CODEBOOK /options sort=Ascending /StatiStics Mean/varinfo label");
  ASSERT_TRUE(parsed.accepted());
  EXPECT_NE(parsed.spec->getSubComObj("STATISTICS")->getParamObj("MEAN"), nullptr);
  EXPECT_NE(parsed.spec->getSubComObj("VARINFO")->getParamObj("LABEL"), nullptr);
  EXPECT_EQ(ChosenOf(parsed, "SORT"), "ASCENDING");
  EXPECT_EQ(parsed.spec->getSubComObj("FILEINFO"), nullptr);
}

TEST(Grammar, findsNamesWithoutRegardToCase) {
  const Parsed parsed = Parse("CODEBOOK /VARINFO LABEL");
  ASSERT_NE(parsed.spec->getSubComObj("varinfo"), nullptr);
  EXPECT_EQ(parsed.spec->getSubComObj("varinfo")->getParamObj("Label")->getParamName(), "LABEL");
}

TEST(Grammar, allowsAnEqualsSignBehindASubcommandName) {
  EXPECT_TRUE(Parse("CODEBOOK /VARINFO=LABEL TYPE /STATISTICS = MEAN /FILEINFO=").accepted());
}

TEST(Grammar, acceptsAnEmptySubcommandThatAllowsIt) {
  const Parsed parsed = Parse("CODEBOOK /VARINFO /OPTIONS.");
  ASSERT_TRUE(parsed.accepted());
  ASSERT_NE(parsed.spec->getSubComObj("VARINFO"), nullptr);
  EXPECT_EQ(parsed.spec->getSubComObj("VARINFO")->getParamObj("LABEL"), nullptr);
  EXPECT_EQ(parsed.spec->getSubComObj("VARINFO")->getTokenListSize(), 0U);
  std::vector<TokenInfoObj> tokens(3);
  ASSERT_TRUE(parsed.spec->getSubComObj("OPTIONS")->exportParamObj()->getTokenList(tokens));
  EXPECT_TRUE(tokens.empty());
}

TEST(Grammar, acceptsABareKeywordTwice) { EXPECT_TRUE(Parse("CODEBOOK /VARINFO LABEL TYPE label").accepted()); }

TEST(Grammar, readsAValueBehindASignOrInParentheses) {
  EXPECT_EQ(ChosenOf(Parse("CODEBOOK /OPTIONS SORT=DESCENDING"), "SORT"), "DESCENDING");
  EXPECT_EQ(ChosenOf(Parse("CODEBOOK /OPTIONS SORT(descending)"), "SORT"), "DESCENDING");
  EXPECT_EQ(ChosenOf(Parse("CODEBOOK /OPTIONS SORT ( 'Descending' )"), "SORT"), "DESCENDING");
  EXPECT_EQ(IntegerOf("5"), "5");
  int integer = 0;
  EXPECT_TRUE(Parse("CODEBOOK /OPTIONS MAXCATS(7)")
                  .spec->getSubComObj("OPTIONS")
                  ->getParamObj("MAXCATS")
                  ->getIntegerValue(integer));
  EXPECT_EQ(integer, 7);
}

TEST(Grammar, acceptsAnIntegerValueAsWritten) {
  EXPECT_EQ(IntegerOf("-3"), "-3");
  EXPECT_EQ(IntegerOf("+5"), "5");
  EXPECT_EQ(IntegerOf("0"), "0");
  EXPECT_EQ(IntegerOf("007"), "7");
  EXPECT_EQ(IntegerOf("'12'"), "12");
  EXPECT_EQ(IntegerOf("2147483647"), "2147483647");
  EXPECT_EQ(IntegerOf("-2147483648"), "-2147483648");
  for (const char* value : {"abc", "2.5", "5.0", "1e3", "2147483648", "-2147483649", "99999999999", "+-5", "''", "' 5'",
                            "5x", "-", "0x5", "LABEL", "SORT"}) {
    EXPECT_EQ(IntegerOf(value), "(no integer)") << value;
  }
}

TEST(Grammar, readsAQualifier) {
  EXPECT_EQ(ChosenOf(Parse("CODEBOOK /OPTIONS VARORDER=file"), "VARORDER"), "FILE");
  EXPECT_EQ(ChosenOf(Parse("CODEBOOK /OPTIONS VARORDER(MEASURE)"), "VARORDER"), "MEASURE");
  EXPECT_EQ(ChosenOf(Parse("CODEBOOK /OPTIONS VARORDER=\"Alpha\""), "VARORDER"), "ALPHA");
}

TEST(Grammar, readsAQualifierWithItsOwnValueInEveryForm) {
  for (const char* text : {"VARORDER=ATTRIBUTE(Origin)", "VARORDER=ATTRIBUTE=Origin", "VARORDER(ATTRIBUTE(Origin))",
                           "VARORDER(ATTRIBUTE=Origin)", "varorder = attribute ( 'Origin' )"}) {
    EXPECT_EQ(ChosenOf(Parse(std::string("CODEBOOK /OPTIONS ") + text), "VARORDER"), "ATTRIBUTE:Origin") << text;
  }
}

TEST(Grammar, readsAnAttributeNameThatIsAKeyword) {
  EXPECT_EQ(ChosenOf(Parse("CODEBOOK /OPTIONS VARORDER=ATTRIBUTE(SORT) SORT=ASCENDING"), "VARORDER"), "ATTRIBUTE:SORT");
}

TEST(Grammar, readsTheKeywordsBehindAValue) {
  const Parsed parsed = Parse("CODEBOOK /OPTIONS VARORDER=ATTRIBUTE(x) MAXCATS=5 SORT(DESCENDING)");
  ASSERT_TRUE(parsed.accepted());
  EXPECT_EQ(ChosenOf(parsed, "SORT"), "DESCENDING");
  EXPECT_NE(parsed.spec->getSubComObj("OPTIONS")->getParamObj("MAXCATS"), nullptr);
}

TEST(Grammar, acceptsAFreeStringAsTyped) {
  CommandDescriptor grammar("TITLE");
  SubComDescriptor text("TEXT", kSubComPlain, false, false);
  text.addParamDesc("SAY", kParamString, false, true, kBracketsDefault);
  grammar.addSubComDesc(text);
  const Parsed parsed = ParseCommand(runtime::parser::ReadCommands("TITLE /TEXT SAY='Hello, World.'")[0], grammar);
  ASSERT_TRUE(parsed.accepted());
  const ParamObj* say = parsed.spec->getSubComObj("TEXT")->getParamObj("SAY");
  std::string generic;
  ASSERT_TRUE(say->getStringGeneric(generic));
  EXPECT_EQ(generic, "Hello, World.");
  ParamObj chosen;
  ASSERT_TRUE(say->getStringAndQual(chosen, nullptr, nullptr));
  EXPECT_EQ(chosen.getParamName(), "Hello, World.");
}

TEST(ParamObj, leavesTheResultAloneWhenThereIsNone) {
  const Parsed parsed = Parse("CODEBOOK /VARINFO LABEL");
  const ParamObj* label = parsed.spec->getSubComObj("VARINFO")->getParamObj("LABEL");
  int integer = 42;
  std::string text = "kept";
  ParamObj chosen;
  EXPECT_FALSE(label->getIntegerValue(integer));
  EXPECT_FALSE(label->getStringGeneric(text));
  EXPECT_FALSE(label->getStringAndQual(chosen, nullptr, nullptr));
  EXPECT_EQ(integer, 42);
  EXPECT_EQ(text, "kept");
  std::vector<TokenInfoObj> tokens(2);
  EXPECT_FALSE(ParamObj().getTokenList(tokens));
  EXPECT_EQ(tokens.size(), 2U);
}

TEST(ParamObj, carriesNoStringItselfWhereItsQualifierDoes) {
  const Parsed parsed = Parse("CODEBOOK /OPTIONS VARORDER=ATTRIBUTE(x)");
  const ParamObj* order = parsed.spec->getSubComObj("OPTIONS")->getParamObj("VARORDER");
  std::string text;
  EXPECT_FALSE(order->getStringGeneric(text));
}

TEST(ParamObj, givesItsTokensFromTheKeywordOn) {
  const Parsed parsed = Parse("CODEBOOK /OPTIONS MAXCATS=1 VARORDER=ATTRIBUTE(x) SORT(ASCENDING)");
  std::vector<TokenInfoObj> tokens;
  ASSERT_TRUE(parsed.spec->getSubComObj("OPTIONS")->getParamObj("VARORDER")->getTokenList(tokens));
  EXPECT_THAT(Texts(tokens), ElementsAre("VARORDER", "=", "ATTRIBUTE", "(", "x", ")"));
}

TEST(ParamObj, mayBeFilledWithItsOwnQualifier) {
  const Parsed parsed = Parse("CODEBOOK /OPTIONS VARORDER=ATTRIBUTE(x)");
  ParamObj* order = parsed.spec->getSubComObj("OPTIONS")->getParamObj("VARORDER");
  ASSERT_TRUE(order->getStringAndQual(*order, nullptr, nullptr));
  EXPECT_EQ(order->getParamName(), "ATTRIBUTE");
}

TEST(UniversalParser, leavesTheSpecificationEmptyAfterAnError) {
  const Parsed parsed = Parse("CODEBOOK x /VARINFO LABEL /OPTIONS SORT=UP");
  EXPECT_NE(parsed.result, 0);
  EXPECT_EQ(parsed.spec->getSubComObj(""), nullptr);
  EXPECT_EQ(parsed.spec->getSubComObj("VARINFO"), nullptr);
}

TEST(UniversalParser, refusesASequenceWithoutTokensQuietlyWithoutABinding) {
  CommandDescriptor grammar("CODEBOOK");
  parsertest::DeclareGrammar(grammar);
  CommandSpec spec;
  const MAVO_TokenSequence tokens(true);
  EXPECT_NE(UniversalParser(tokens, spec, grammar).getCommandSpecifications(), 0);
}

TEST(UniversalParser, runsTheFollowingCommandsAfterAFaultyOne) {
  const auto commands =
      runtime::parser::ReadCommands("CODEBOOK 'x.\nCODEBOOK /VARINFO LABLE.\nCODEBOOK x /VARINFO LABEL.");
  ASSERT_EQ(commands.size(), 3U);
  const Parsed first = ParseCommand(commands[0]);
  EXPECT_NE(first.result, 0);
  EXPECT_EQ(first.error(), commands[0].error());
  const Parsed second = ParseCommand(commands[1]);
  EXPECT_NE(second.result, 0);
  EXPECT_THAT(second.error(), testing::HasSubstr("(line 2, column 19)"));
  EXPECT_TRUE(ParseCommand(commands[2]).accepted());
}

TEST(UniversalParser, readsALongListAndManyKeywords) {
  std::string text = "CODEBOOK";
  for (int i = 0; i < 100'000; ++i) text += " v" + std::to_string(i) + "\n[N]";
  text += " /VARINFO";
  for (int i = 0; i < 100'000; ++i) text += " LABEL";
  const Parsed parsed = Parse(text);
  ASSERT_TRUE(parsed.accepted());
  EXPECT_EQ(parsed.spec->getSubComObj("")->getTokenListSize(), 400'000U);
  EXPECT_EQ(parsed.spec->getSubComObj("VARINFO")->getTokenListSize(), 100'000U);
}

TEST(UniversalParser, doesNotNestWithTheText) {
  const std::string open(1'000'000, '(');
  EXPECT_TRUE(Parse("CODEBOOK " + open + std::string(1'000'000, '[')).accepted());
  EXPECT_NE(Parse("CODEBOOK /OPTIONS MAXCATS" + open).result, 0);
  EXPECT_NE(Parse("CODEBOOK /OPTIONS VARORDER=ATTRIBUTE" + open).result, 0);
  std::string nested = "CODEBOOK /OPTIONS VARORDER";
  for (int i = 0; i < 100'000; ++i) nested += "(ATTRIBUTE";
  EXPECT_NE(Parse(nested).result, 0);
}

}  // namespace
