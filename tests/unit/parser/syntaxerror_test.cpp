#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/parser/boundcommand.h"

namespace {

using parsertest::Parse;
using parsertest::ParseCommand;
using parsertest::Parsed;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

constexpr const char* kVarInfoKeywords =
    "POSITION, LABEL, TYPE, FORMAT, MEASURE, ROLE, ATTRIBUTES, VALUELABELS, MISSING, RESERVEDATTRIBUTES or the next "
    "subcommand";

/// The sentences of the only message, without the excerpt.
std::string ErrorOf(const std::string& text) {
  const std::string message = Parse(text).error();
  return message.substr(0, message.find('\n'));
}

TEST(SyntaxError, namesWhatWasFoundAndExpectedTheNearestKeywordAndThePlace) {
  EXPECT_EQ(Parse("CODEBOOK /VARINFO LABLE").error(),
            std::string(
                "Unknown keyword \"LABLE\" in subcommand VARINFO (line 1, column 19). Did you mean LABEL? Expected ") +
                kVarInfoKeywords +
                ".\n"
                "  CODEBOOK /VARINFO LABLE\n"
                "                    ^");
}

TEST(SyntaxError, isAnErrorOnTheMessageChannel) {
  const Parsed parsed = Parse("CODEBOOK /VARINFO LABLE");
  EXPECT_NE(parsed.result, 0);
  ASSERT_THAT(parsed.messages, SizeIs(1));
  EXPECT_TRUE(parsed.messages[0].isError);
}

TEST(SyntaxError, showsTheLineOfThePlace) {
  EXPECT_THAT(Parse("CODEBOOK x\n  /VARINFO\n\t日本 LABEL\n/STATISTICS.").error(),
              AllOf(StartsWith("Unknown keyword \"日本\" in subcommand VARINFO (line 3, column 2)."),
                    EndsWith("\n      日本 LABEL\n      ^")));
}

TEST(SyntaxError, standsBehindTheLastTokenAtTheEndOfTheCommand) {
  EXPECT_THAT(Parse("\nCODEBOOK x\n /OPTIONS SORT= .\n").error(),
              AllOf(HasSubstr("found the end of the command (line 3, column 16)."), EndsWith("\n   /OPTIONS SORT= .\n"
                                                                                             "                 ^")));
}

TEST(SyntaxError, neverTakesAnAbbreviationButNamesWhatItStandsFor) {
  EXPECT_THAT(ErrorOf("CODEBOOK /VARINFO LAB"),
              StartsWith("Unknown keyword \"LAB\" in subcommand VARINFO (line 1, column "
                         "19). Did you mean LABEL?"));
  EXPECT_THAT(ErrorOf("CODEBOOK /VAR LABEL"), HasSubstr("Did you mean VARINFO?"));
}

TEST(SyntaxError, suggestsNothingWhereNothingIsClose) {
  EXPECT_THAT(ErrorOf("CODEBOOK /VARINFO KURTOSIS"), Not(HasSubstr("Did you mean")));
}

TEST(SyntaxError, saysWhereAMisplacedKeywordBelongs) {
  EXPECT_THAT(ErrorOf("CODEBOOK /VARINFO COUNT"), EndsWith(" COUNT is a keyword of subcommand STATISTICS."));
  EXPECT_THAT(ErrorOf("CODEBOOK /VARINFO LABEL STATISTICS MEAN"),
              EndsWith(" STATISTICS is a subcommand: write /STATISTICS."));
  EXPECT_THAT(ErrorOf("CODEBOOK /OPTIONS descending"),
              EndsWith(" DESCENDING is a value of keyword SORT: write SORT=DESCENDING."));
  EXPECT_THAT(ErrorOf("CODEBOOK /LABEL"), EndsWith(" LABEL is a keyword of subcommand VARINFO: write /VARINFO LABEL."));
}

TEST(SyntaxError, explainsAPeriodWithinALine) {
  EXPECT_THAT(
      ErrorOf("CODEBOOK /VARINFO label. CODEBOOK x"),
      AllOf(StartsWith("Unknown keyword \"label.\" in subcommand VARINFO (line 1, column 19). Did you mean LABEL?"),
            EndsWith(" A period ends the command only at the end of a line.")));
}

TEST(SyntaxError, refusesAQuotedKeyword) {
  EXPECT_EQ(
      ErrorOf("CODEBOOK /VARINFO 'LABEL'"),
      std::string("Unexpected quoted text \"LABEL\" in subcommand VARINFO (line 1, column 19). Did you mean LABEL? "
                  "Expected ") +
          kVarInfoKeywords + ". Keywords are written without quotes.");
  EXPECT_EQ(ErrorOf("CODEBOOK /'VARINFO'"),
            "No subcommand behind \"/\", found the quoted text \"VARINFO\" (line 1, column 11). Did you mean VARINFO? "
            "Expected VARINFO, FILEINFO, STATISTICS or OPTIONS. Subcommands are written without quotes.");
}

TEST(SyntaxError, refusesAnUnknownSubcommand) {
  EXPECT_EQ(ErrorOf("CODEBOOK /VARIFNO LABEL"),
            "Unknown subcommand \"VARIFNO\" (line 1, column 11). Did you mean VARINFO? Expected VARINFO, FILEINFO, "
            "STATISTICS or OPTIONS.");
}

TEST(SyntaxError, refusesASlashWithoutAName) {
  EXPECT_EQ(ErrorOf("CODEBOOK /"),
            "No subcommand behind \"/\", found the end of the command (line 1, column 11). Expected VARINFO, FILEINFO, "
            "STATISTICS or OPTIONS.");
  EXPECT_THAT(ErrorOf("CODEBOOK / /VARINFO"),
              StartsWith("No subcommand behind \"/\", found \"/\" (line 1, column 12)."));
  EXPECT_THAT(ErrorOf("CODEBOOK /=VARINFO"),
              StartsWith("No subcommand behind \"/\", found \"=\" (line 1, column 11)."));
}

TEST(SyntaxError, refusesASubcommandTwice) {
  EXPECT_EQ(
      ErrorOf("CODEBOOK /VARINFO LABEL /STATISTICS\n/varinfo TYPE"),
      "Subcommand VARINFO is given twice, found again (line 2, column 2). Expected FILEINFO, OPTIONS or the end of "
      "the command. It stands first at line 1, column 11.");
}

TEST(SyntaxError, refusesAKeywordWithValueTwice) {
  EXPECT_EQ(
      ErrorOf("CODEBOOK /OPTIONS MAXCATS=5 SORT=ASCENDING maxcats=5"),
      "Keyword MAXCATS is given twice in subcommand OPTIONS, found again (line 1, column 44). Expected VARORDER or the "
      "next subcommand. It stands first at line 1, column 19.");
}

TEST(SyntaxError, refusesAValueOfABareKeyword) {
  EXPECT_THAT(
      ErrorOf("CODEBOOK /STATISTICS MEAN=2"),
      StartsWith("Keyword MEAN of subcommand STATISTICS takes no value, found \"=\" (line 1, column 26). Expected "
                 "NONE, COUNT,"));
  EXPECT_THAT(ErrorOf("CODEBOOK /STATISTICS MEAN(2)"), HasSubstr("takes no value, found \"(\" (line 1, column 26)."));
  EXPECT_EQ(
      ErrorOf("CODEBOOK /OPTIONS VARORDER=FILE(x)"),
      "FILE as value of keyword VARORDER takes no value of its own, found \"(\" (line 1, column 32). Expected MAXCATS, "
      "SORT or the next subcommand.");
}

TEST(SyntaxError, refusesAMissingSign) {
  EXPECT_EQ(
      ErrorOf("CODEBOOK /OPTIONS MAXCATS 5"),
      "Keyword MAXCATS needs a value, found \"5\" (line 1, column 27). Expected \"=\" or \"(\". Write MAXCATS=n or "
      "MAXCATS(n).");
  EXPECT_THAT(ErrorOf("CODEBOOK /OPTIONS VARORDER"), EndsWith(" Write VARORDER=FILE or VARORDER(FILE)."));
}

TEST(SyntaxError, refusesAValueLeftOut) {
  EXPECT_EQ(
      ErrorOf("CODEBOOK /OPTIONS MAXCATS= /VARINFO LABEL"),
      "The value of keyword MAXCATS is left out, found \"/\" (line 1, column 28). Expected an integer. Write MAXCATS=n "
      "or MAXCATS(n).");
  for (const char* text : {"MAXCATS=", "MAXCATS()", "MAXCATS(", "SORT=", "SORT()", "VARORDER=", "VARORDER()",
                           "MAXCATS==5", "MAXCATS=[5]", "VARORDER=ATTRIBUTE()", "VARORDER=ATTRIBUTE="}) {
    EXPECT_THAT(ErrorOf(std::string("CODEBOOK /OPTIONS ") + text), HasSubstr(" is left out, found ")) << text;
  }
}

TEST(SyntaxError, seesThatTheNextKeywordIsNoValue) {
  EXPECT_EQ(ErrorOf("CODEBOOK /OPTIONS MAXCATS= SORT=ASCENDING"),
            "The value of keyword MAXCATS is left out, found \"SORT\" (line 1, column 28). Expected an integer. Write "
            "MAXCATS=n or MAXCATS(n).");
  EXPECT_THAT(ErrorOf("CODEBOOK /OPTIONS VARORDER= SORT(ASCENDING)"),
              StartsWith("The value of keyword VARORDER is left out"));
}

TEST(SyntaxError, refusesBothSigns) {
  EXPECT_EQ(ErrorOf("CODEBOOK /OPTIONS MAXCATS=(5)"),
            "Both \"=\" and \"(\" behind keyword MAXCATS (line 1, column 27). Expected an integer. Write MAXCATS=n or "
            "MAXCATS(n).");
  for (const char* text :
       {"SORT=(ASCENDING)", "VARORDER=(FILE)", "VARORDER=ATTRIBUTE=(x)", "VARORDER=(ATTRIBUTE(x))"}) {
    EXPECT_THAT(ErrorOf(std::string("CODEBOOK /OPTIONS ") + text), StartsWith("Both \"=\" and \"(\"")) << text;
  }
}

TEST(SyntaxError, refusesAValueThatIsNotClosed) {
  EXPECT_EQ(ErrorOf("CODEBOOK /OPTIONS SORT(ASCENDING /VARINFO"),
            "The value of keyword SORT is not closed, found \"/\" (line 1, column 34). Expected \")\".");
  EXPECT_EQ(
      ErrorOf("CODEBOOK /OPTIONS VARORDER=ATTRIBUTE(my name)"),
      "The value of keyword ATTRIBUTE is not closed, found \"name\" (line 1, column 41). Expected \")\". A value of "
      "several words is put in quotes.");
}

TEST(SyntaxError, refusesAValueThatIsNotDeclared) {
  EXPECT_EQ(ErrorOf("CODEBOOK /OPTIONS SORT=UP"),
            "Unknown value \"UP\" of keyword SORT (line 1, column 24). Expected ASCENDING or DESCENDING.");
  EXPECT_EQ(
      ErrorOf("CODEBOOK /OPTIONS VARORDER(MEASUER)"),
      "Unknown value \"MEASUER\" of keyword VARORDER (line 1, column 28). Did you mean MEASURE? Expected FILE, ALPHA, "
      "VARLIST, MEASURE or ATTRIBUTE.");
  EXPECT_THAT(ErrorOf("CODEBOOK /OPTIONS SORT=ASC"), HasSubstr("Did you mean ASCENDING?"));
}

TEST(SyntaxError, refusesAQualifierWithoutItsValue) {
  EXPECT_EQ(
      ErrorOf("CODEBOOK /OPTIONS VARORDER=ATTRIBUTE"),
      "Keyword ATTRIBUTE needs a value, found the end of the command (line 1, column 37). Expected \"=\" or \"(\". "
      "Write ATTRIBUTE=name or ATTRIBUTE(name).");
  EXPECT_THAT(ErrorOf("CODEBOOK /OPTIONS VARORDER(ATTRIBUTE)"),
              StartsWith("Keyword ATTRIBUTE needs a value, found \")\""));
  EXPECT_THAT(ErrorOf("CODEBOOK /OPTIONS VARORDER=ATTRIBUTE name"),
              StartsWith("Keyword ATTRIBUTE needs a value, found \"name\""));
}

TEST(SyntaxError, refusesASpecialWhereAKeywordBelongs) {
  EXPECT_EQ(
      ErrorOf("CODEBOOK /OPTIONS MAXCATS=5)"),
      "Unexpected \")\" in subcommand OPTIONS (line 1, column 28). Expected VARORDER, SORT or the next subcommand.");
}

TEST(SyntaxError, refusesAnotherCommandName) {
  EXPECT_EQ(ErrorOf("CODEBOKO x"),
            "Unknown command \"CODEBOKO\" (line 1, column 1). Did you mean CODEBOOK? Expected CODEBOOK.");
  EXPECT_THAT(ErrorOf("'CODEBOOK' x"),
              StartsWith("A command begins with its name, found the quoted text \"CODEBOOK\""));
}

TEST(SyntaxError, refusesAnEmptySubcommandThatMayNotBe) {
  CommandDescriptor grammar("LIST");
  SubComDescriptor show("SHOW", kSubComPlain, false, false);
  show.addParamDesc("NAMES", kParamKeyword, false, true, kBracketsDefault);
  grammar.addSubComDesc(show);
  const Parsed parsed = ParseCommand(runtime::parser::ReadCommands("LIST /SHOW.")[0], grammar);
  EXPECT_THAT(
      parsed.error(),
      StartsWith("Subcommand SHOW stands empty, found the end of the command (line 1, column 11). Expected NAMES.\n"));
}

TEST(SyntaxError, refusesAListThatTheCommandDoesNotHave) {
  CommandDescriptor grammar("LIST");
  const Parsed parsed = ParseCommand(runtime::parser::ReadCommands("LIST x.")[0], grammar);
  EXPECT_THAT(parsed.error(),
              StartsWith("Command LIST takes no list, found \"x\" (line 1, column 6). Expected a subcommand "
                         "or the end of the command.\n"));
}

TEST(SyntaxError, tellsOneErrorForEverySubcommand) {
  const Parsed parsed = Parse("CODEBOOK /VARINFO LABLE TPYE /STATISTICS MEEN /FILEINFO NAME /OPTIONS SORT=UP");
  ASSERT_THAT(parsed.messages, SizeIs(3));
  EXPECT_THAT(parsed.messages[0].text, StartsWith("Unknown keyword \"LABLE\""));
  EXPECT_THAT(parsed.messages[1].text, StartsWith("Unknown keyword \"MEEN\""));
  EXPECT_THAT(parsed.messages[2].text, StartsWith("Unknown value \"UP\""));
}

TEST(SyntaxError, stopsAfterTenErrors) {
  std::string text = "CODEBOOK";
  for (int i = 0; i < 100'000; ++i) text += " /X";
  const Parsed parsed = Parse(text);
  ASSERT_THAT(parsed.messages, SizeIs(10));
  EXPECT_THAT(parsed.messages.back().text, HasSubstr("The rest of the command was not read, for its many errors."));
}

TEST(SyntaxError, showsNothingThatATerminalWouldActOn) {
  const Parsed parsed = Parse("CODEBOOK /VARINFO '\x1B]0;x\x07' /OPTIONS SORT='\xE2\x80\xAE\x9F' /\xE2\x80\x8FX");
  // The ill-formed byte stands before everything else.
  EXPECT_THAT(parsed.error(), StartsWith("Bytes that are not UTF-8: found <9F> (line 1, column 44)."));
  EXPECT_THAT(parsed.error(), Not(HasSubstr("\x1B")));
  const Parsed valid = Parse("CODEBOOK /VARINFO '\x1B]0;x\x07' /OPTIONS SORT='\xE2\x80\xAE' /\xE2\x80\x8FX");
  ASSERT_THAT(valid.messages, SizeIs(3));
  for (const parsertest::Message& message : valid.messages) {
    for (const char* raw : {"\x1B", "\x07", "\xE2\x80\xAE", "\xE2\x80\x8F"})
      EXPECT_THAT(message.text, Not(HasSubstr(raw)));
  }
  EXPECT_THAT(valid.messages[1].text, StartsWith("Unknown value the quoted text \"<U+202E>\" of keyword SORT"));
}

TEST(SyntaxError, cutsAVeryLongWord) {
  const Parsed parsed = Parse("CODEBOOK /VARINFO " + std::string(10'000'000, 'x') + " LABEL");
  EXPECT_LT(parsed.error().size(), 1'000U);
  EXPECT_THAT(parsed.error(), StartsWith("Unknown keyword \"xxx"));
}

}  // namespace
