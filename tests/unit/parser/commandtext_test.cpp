#include "runtime/parser/commandtext.h"

#include <chrono>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/parser/boundcommand.h"

namespace {

using parsertest::ReadTexts;
using runtime::parser::ReadCommand;
using runtime::parser::ReadCommands;
using runtime::parser::TextPlace;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Kind = TokenInfoObj::Kind;

TEST(CommandText, splitsAtBlanksLineEndsAndCommas) {
  EXPECT_THAT(ReadTexts("a b,c\td\ne\r\nf\rg , h"), ElementsAre(ElementsAre("a", "b", "c", "d", "e", "f", "g", "h")));
}

TEST(CommandText, givesEachSpecialCharacterAsItsOwnToken) {
  EXPECT_THAT(ReadTexts("x[N]y(=z)/w"),
              ElementsAre(ElementsAre("x", "[", "N", "]", "y", "(", "=", "z", ")", "/", "w")));
  EXPECT_EQ(ReadCommands("x [")[0].tokens()[1].kind(), Kind::Special);
}

TEST(CommandText, keepsEveryOtherCharacterInAWord) {
  EXPECT_THAT(ReadTexts("$set1 @v #v v_1 a-b a+b* {x} é日本 v:1;2"),
              ElementsAre(ElementsAre("$set1", "@v", "#v", "v_1", "a-b", "a+b*", "{x}", "é日本", "v:1;2")));
}

TEST(CommandText, treatsPastedBlanksAsBlanks) {
  EXPECT_THAT(ReadTexts("a\xC2\xA0"
                        "b\xE3\x80\x80"
                        "c\xE2\x80\x83"
                        "d\xE2\x80\xA8"
                        "e\fg"),
              ElementsAre(ElementsAre("a", "b", "c", "d", "e", "g")));
}

TEST(CommandText, tellsNumbersFromWords) {
  const std::vector<ReadCommand> commands = ReadCommands("n 5 -5 +5 2.5 .5 5. 1e3 -1.5E-7 5a 1e . - 1.2.3 e5 \"5\" x");
  std::vector<Kind> kinds;
  for (const TokenInfoObj& token : commands[0].tokens()) kinds.push_back(token.kind());
  const Kind w = Kind::Word;
  const Kind n = Kind::Number;
  EXPECT_THAT(kinds, ElementsAre(w, n, n, n, n, n, n, n, n, w, w, w, w, w, w, Kind::Quoted, w));
}

TEST(CommandText, keepsTheSignOfANumber) { EXPECT_THAT(ReadTexts("-5 +7"), ElementsAre(ElementsAre("-5", "+7"))); }

TEST(CommandText, takesQuotesOffAndReadsDoubledOnes) {
  EXPECT_THAT(ReadTexts(R"('it''s' "a ""b"" c" "it's" '' """" 'x''')"),
              ElementsAre(ElementsAre("it's", "a \"b\" c", "it's", "", "\"", "x'")));
  EXPECT_EQ(ReadCommands("'a'")[0].tokens()[0].kind(), Kind::Quoted);
}

TEST(CommandText, keepsSeparatorsSpecialsAndPeriodsInsideQuotes) {
  EXPECT_THAT(ReadTexts("\"a, b/[=].\" 'x. '\nc"), ElementsAre(ElementsAre("a, b/[=].", "x. ", "c")));
}

TEST(CommandText, endsAWordAtAQuoteAndBeginsOneBehindIt) {
  EXPECT_THAT(ReadTexts("ab\"cd\"ef'g'\"h\""), ElementsAre(ElementsAre("ab", "cd", "ef", "g", "h")));
}

TEST(CommandText, endsTheCommandAtAPeriodAtTheLineEnd) {
  EXPECT_THAT(ReadTexts("A x.\nB y.\r\nC z.\rD"),
              ElementsAre(ElementsAre("A", "x"), ElementsAre("B", "y"), ElementsAre("C", "z"), ElementsAre("D")));
}

TEST(CommandText, endsTheCommandAtAPeriodAtTheTextEnd) {
  EXPECT_THAT(ReadTexts("A x."), ElementsAre(ElementsAre("A", "x")));
  EXPECT_THAT(ReadTexts("A x. \t "), ElementsAre(ElementsAre("A", "x")));
}

TEST(CommandText, endsTheCommandAlsoWithBlanksBehindThePeriod) {
  EXPECT_THAT(ReadTexts("A x.  \t\r\nB.\xC2\xA0\nC"),
              ElementsAre(ElementsAre("A", "x"), ElementsAre("B"), ElementsAre("C")));
}

TEST(CommandText, keepsAPeriodInsideAWordAndAtAWordsEndWithinALine) {
  EXPECT_THAT(ReadTexts("A v1.x b. c .d"), ElementsAre(ElementsAre("A", "v1.x", "b.", "c", ".d")));
  EXPECT_THAT(ReadTexts("A b., \nc"), ElementsAre(ElementsAre("A", "b.", "c")));
}

TEST(CommandText, endsTheCommandAtAPeriodBehindAnyKindOfToken) {
  EXPECT_THAT(ReadTexts("A \"x\".\nB 5.\nC (.\nD .\nE 'x' .\nF"),
              ElementsAre(ElementsAre("A", "x"), ElementsAre("B", "5"), ElementsAre("C", "("), ElementsAre("D"),
                          ElementsAre("E", "x"), ElementsAre("F")));
}

TEST(CommandText, takesOnlyTheLastOfSeveralPeriodsAsTheEnd) {
  EXPECT_THAT(ReadTexts("A x..\nB"), ElementsAre(ElementsAre("A", "x."), ElementsAre("B")));
}

TEST(CommandText, goesOnPastALineEndWithoutAPeriod) {
  EXPECT_THAT(ReadTexts("A x\n\n  y\nz"), ElementsAre(ElementsAre("A", "x", "y", "z")));
}

TEST(CommandText, givesNoCommandForATextWithoutTokens) {
  EXPECT_THAT(ReadCommands(""), IsEmpty());
  EXPECT_THAT(ReadCommands(" \t\r\n , ,\n"), IsEmpty());
  EXPECT_THAT(ReadCommands("."), IsEmpty());
  EXPECT_THAT(ReadCommands(".\n . \n.\r\n."), IsEmpty());
  EXPECT_THAT(ReadCommands("\xEF\xBB\xBF"), IsEmpty());
}

TEST(CommandText, skipsAByteOrderMarkAtTheStart) {
  const std::vector<ReadCommand> commands = ReadCommands(
      "\xEF\xBB\xBF"
      "A x.");
  EXPECT_EQ(commands[0].name(), "A");
  EXPECT_EQ(commands[0].begin(), (TextPlace{1, 1}));
  EXPECT_EQ(commands[0].text(), "A x.");
}

TEST(CommandText, countsLinesOverEveryKindOfLineEnd) {
  const std::vector<ReadCommand> commands = ReadCommands("a\nb\r\nc\r\rd");
  const auto& tokens = commands[0].tokens();
  EXPECT_EQ(tokens[1].line(), 2);
  EXPECT_EQ(tokens[2].line(), 3);
  EXPECT_EQ(tokens[3].line(), 5);
  EXPECT_EQ(tokens[3].column(), 1);
}

TEST(CommandText, countsColumnsInCharacters) {
  const auto commands = ReadCommands("é日😀 b 'ß'c\n\tx");
  const auto& tokens = commands[0].tokens();
  EXPECT_EQ(tokens[1].column(), 5);
  EXPECT_EQ(tokens[2].column(), 7);
  EXPECT_EQ(tokens[3].column(), 10);
  EXPECT_EQ(tokens[4].column(), 2);
}

TEST(CommandText, knowsItsOwnTextAndPlaces) {
  const std::vector<ReadCommand> commands = ReadCommands("\n A x.\n\nB\n y  \n");
  ASSERT_EQ(commands.size(), 2U);
  EXPECT_EQ(commands[0].text(), "A x.");
  EXPECT_EQ(commands[0].begin(), (TextPlace{2, 2}));
  EXPECT_EQ(commands[0].end(), (TextPlace{2, 5}));
  EXPECT_EQ(commands[1].text(), "B\n y");
  EXPECT_EQ(commands[1].begin(), (TextPlace{4, 1}));
  EXPECT_EQ(commands[1].end(), (TextPlace{5, 3}));
}

TEST(CommandText, namesACommandByItsFirstWord) {
  EXPECT_EQ(ReadCommands("Codebook x")[0].name(), "Codebook");
  EXPECT_EQ(ReadCommands("Codebook x")[0].upperName(), "CODEBOOK");
  EXPECT_EQ(ReadCommands("'CODEBOOK' x")[0].name(), "");
  EXPECT_EQ(ReadCommands("/VARINFO")[0].name(), "");
}

TEST(CommandText, reportsAQuoteThatIsNotClosedWithItsPlace) {
  const auto commands = ReadCommands("A x\n  y \"abc");
  ASSERT_EQ(commands.size(), 1U);
  EXPECT_EQ(commands[0].error(),
            "The quoted text that opens here is not closed before the end of the line (line 2, column 5). Expected a "
            "closing \"; a \" inside the text is written twice.\n"
            "    y \"abc\n"
            "      ^");
}

TEST(CommandText, readsTheNextCommandBehindAQuoteThatIsNotClosed) {
  const auto commands = ReadCommands("A 'x y.\nB z.");
  ASSERT_EQ(commands.size(), 2U);
  EXPECT_THAT(commands[0].error(), StartsWith("The quoted text"));
  EXPECT_EQ(commands[1].error(), "");
  EXPECT_EQ(commands[1].name(), "B");
}

TEST(CommandText, endsAQuotedTextWithItsLine) {
  const auto commands = ReadCommands("A \"x\ny\" z.\nB");
  ASSERT_EQ(commands.size(), 2U);
  EXPECT_THAT(commands[0].error(), HasSubstr("line 1, column 3"));
  EXPECT_THAT(commands[0].error(), HasSubstr("1 more such place in this command."));
  EXPECT_EQ(commands[1].error(), "");
}

TEST(CommandText, reportsBytesThatAreNotUtf8WithTheirPlace) {
  const auto commands = ReadCommands("A é\xFFz.\nB");
  ASSERT_EQ(commands.size(), 2U);
  EXPECT_EQ(
      commands[0].error(),
      "Bytes that are not UTF-8: found <FF> (line 1, column 4). Expected text in UTF-8: save the commands in that "
      "encoding.\n"
      "  A é<FF>z.\n"
      "     ^");
  EXPECT_EQ(commands[1].error(), "");
}

TEST(CommandText, reportsEveryKindOfIllFormedSequence) {
  for (const std::string bytes :
       {"\x80", "\xC3", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82", "\xF0\x9F\x98"}) {
    EXPECT_THAT(ReadCommands("A " + bytes)[0].error(), StartsWith("Bytes that are not UTF-8")) << bytes;
    EXPECT_THAT(ReadCommands("A '" + bytes + "'")[0].error(), StartsWith("Bytes that are not UTF-8")) << bytes;
  }
}

TEST(CommandText, reportsANulByteInAndOutOfQuotes) {
  const std::string outside = std::string("A x") + '\0' + "y\nB";
  EXPECT_EQ(ReadCommands(outside)[0].error(),
            "Control character: found U+0000 (line 1, column 4). Expected text: remove the character.\n"
            "  A x<U+0000>y\n"
            "     ^");
  EXPECT_THAT(ReadCommands(std::string("A 'x") + '\0' + "'")[0].error(), StartsWith("Control character: found U+0000"));
}

TEST(CommandText, reportsAControlCharacterOutOfQuotesOnly) {
  EXPECT_THAT(ReadCommands("A \x1B[31m")[0].error(), StartsWith("Control character: found U+001B (line 1, column 3)"));
  EXPECT_THAT(ReadCommands("A \xC2\x9B")[0].error(), StartsWith("Control character: found U+009B"));
  EXPECT_EQ(ReadCommands("A '\x1B\x01'")[0].error(), "");
}

TEST(CommandText, countsFurtherPlacesInsteadOfTellingThem) {
  EXPECT_THAT(ReadCommands("A \x01 \x02 \x03")[0].error(), HasSubstr("2 more such places in this command."));
}

TEST(CommandText, readsTenMegabytesOfAnythingInLinearTime) {
  const std::size_t size = 10'000'000;
  std::vector<std::string> texts;
  for (const char byte : {'a', ' ', '.', '/', '\n', '\'', '\0', '\xFF', ','}) texts.emplace_back(size, byte);
  std::string periods;
  std::string commands;
  std::string openQuotes;
  while (periods.size() < size) periods += ". ";
  while (commands.size() < size) commands += "CODEBOOK /VARINFO LABEL.\n";
  while (openQuotes.size() < size) openQuotes += "'. . . x\n";
  texts.push_back("'" + periods + "x");
  texts.push_back(std::move(periods));
  texts.push_back(std::move(commands));
  texts.push_back(std::move(openQuotes));
  for (const std::string& text : texts) {
    const auto start = std::chrono::steady_clock::now();
    const auto read = ReadCommands(text);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    EXPECT_LT(read.size(), size) << text.substr(0, 20);
    // Square time would be hours.
    EXPECT_LT(seconds.count(), 60.0) << text.substr(0, 20);
  }
}

}  // namespace
