// Random command texts: what holds for every text, whatever it is.
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/parser/unknowncommand.h"
#include "tests/unit/parser/boundcommand.h"

namespace {

using parsertest::ParseCommand;
using parsertest::Parsed;
using parsertest::Texts;
using runtime::parser::ReadCommand;
using runtime::parser::ReadCommands;
using Kind = TokenInfoObj::Kind;
using Random = std::mt19937_64;

std::size_t Below(Random& random, std::size_t bound) { return static_cast<std::size_t>(random() % bound); }

/// Pieces that meet every rule of the tokens, and some that break them.
std::string RandomText(Random& random) {
  static const std::vector<std::string> kPieces = {"CODEBOOK",
                                                   "/",
                                                   "VARINFO",
                                                   "OPTIONS",
                                                   "SORT",
                                                   "MAXCATS",
                                                   "VARORDER",
                                                   "ATTRIBUTE",
                                                   "ASCENDING",
                                                   "LABEL",
                                                   "STATISTICS",
                                                   "MEAN",
                                                   "=",
                                                   "(",
                                                   ")",
                                                   "[",
                                                   "]",
                                                   "'",
                                                   "\"",
                                                   "''",
                                                   "\"\"",
                                                   ".",
                                                   ".\n",
                                                   ".\r\n",
                                                   ". \t\r",
                                                   "\n",
                                                   "\r",
                                                   "\r\n",
                                                   " ",
                                                   "  ",
                                                   "\t",
                                                   ",",
                                                   "5",
                                                   "-5",
                                                   "+2.5",
                                                   "1e9",
                                                   "x",
                                                   "é",
                                                   "日本",
                                                   "😀",
                                                   "e\xCC\x81",
                                                   "\xE2\x80\xAE",
                                                   "\xFF",
                                                   "\xE2\x82",
                                                   "\x1B",
                                                   "v1.x",
                                                   "..",
                                                   "$ALL",
                                                   "a'b'",
                                                   "\xC2\xA0",
                                                   "\xEF\xBB\xBF",
                                                   "\xC2\x85",
                                                   "label",
                                                   "'a b'",
                                                   "\"c.\"",
                                                   std::string(1, '\0')};
  std::string text;
  const std::size_t pieces = Below(random, 40);
  for (std::size_t i = 0; i < pieces; ++i) {
    text += kPieces[Below(random, kPieces.size())];
    if (Below(random, 3) == 0) text += ' ';
  }
  return text;
}

std::string RandomBytes(Random& random) {
  std::string bytes(Below(random, 60), '\0');
  for (char& byte : bytes) byte = static_cast<char>(Below(random, 256));
  return bytes;
}

/// The lines of a text, split in the plainest way.
std::vector<std::string> LinesOf(std::string text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
  std::vector<std::string> lines(1);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n' || text[i] == '\r') {
      if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
      lines.emplace_back();
      continue;
    }
    lines.back() += text[i];
  }
  return lines;
}

/// The rest of a valid UTF-8 line from a column on.
std::string FromColumn(const std::string& line, int column) {
  std::size_t offset = 0;
  for (int at = 1; at < column; ++at) {
    if (offset >= line.size()) return "(past the end)";
    ++offset;
    while (offset < line.size() && (static_cast<unsigned char>(line[offset]) & 0xC0U) == 0x80U) ++offset;
  }
  return line.substr(offset);
}

void CheckCommand(const ReadCommand& command, const std::string& text, const std::vector<std::string>& lines) {
  ASSERT_FALSE(command.tokens().empty());
  ASSERT_NE(text.find(command.text()), std::string::npos);
  int line = 0;
  int column = 0;
  for (const TokenInfoObj& token : command.tokens()) {
    ASSERT_TRUE(token.line() > line || (token.line() == line && token.column() > column));
    line = token.line();
    column = token.column();
    ASSERT_LE(static_cast<std::size_t>(line), lines.size());
    const std::string& tokenLine = lines[static_cast<std::size_t>(line) - 1];
    ASSERT_LE(static_cast<std::size_t>(column), tokenLine.size());
    if (!command.error().empty()) continue;  // the plain count of columns is for valid text
    const std::string rest = FromColumn(tokenLine, column);
    if (token.kind() == Kind::Quoted) {
      ASSERT_TRUE(rest.starts_with('"') || rest.starts_with('\'')) << rest;
    } else {
      ASSERT_TRUE(rest.starts_with(token.getString())) << token.getString() << " at " << rest;
    }
  }
  ASSERT_TRUE(command.end().line == line && command.end().column > column);
}

void CheckMessages(const Parsed& parsed) {
  ASSERT_EQ(parsed.result == 0, parsed.messages.empty());
  for (const parsertest::Message& message : parsed.messages) {
    ASSERT_TRUE(message.isError);
    ASSERT_NE(message.text.find("(line "), std::string::npos);
    ASSERT_NE(message.text.find(" Expected "), std::string::npos) << message.text;
    ASSERT_EQ(message.text.back(), '^');
    for (const char byte : message.text) {
      ASSERT_TRUE(byte == '\n' || static_cast<unsigned char>(byte) >= 0x20) << message.text;
    }
    ASSERT_EQ(message.text.find("\xE2\x80\xAE"), std::string::npos);
    ASSERT_EQ(message.text.find("\xC2\x85"), std::string::npos);
  }
}

void CheckText(const std::string& text) {
  const std::vector<std::string> lines = LinesOf(text);
  for (const ReadCommand& command : ReadCommands(text)) {
    CheckCommand(command, text, lines);
    CheckMessages(ParseCommand(command));
    ASSERT_FALSE(runtime::parser::UnknownCommandMessage(command, {"CODEBOOK"}).empty());
    ASSERT_FALSE(testing::Test::HasFatalFailure());
  }
}

TEST(RandomText, isReadWithPlacesInsideTheText) {
  Random random(20240917);
  for (int round = 0; round < 20'000 && !HasFatalFailure(); ++round) {
    const std::string text = round % 4 == 0 ? RandomBytes(random) : RandomText(random);
    CheckText(text);
    if (HasFatalFailure()) ADD_FAILURE() << "round " << round << ": " << testing::PrintToString(text);
  }
}

TEST(RandomText, isReadFromTheCommandOn) {
  Random random(7);
  for (int round = 0; round < 20'000 && !HasFatalFailure(); ++round) {
    const std::string text = "CODEBOOK /OPTIONS " + RandomText(random);
    CheckText(text);
    if (HasFatalFailure()) ADD_FAILURE() << "round " << round << ": " << testing::PrintToString(text);
  }
}

/// Writes a token so that it is read back as it is.
std::string Written(const TokenInfoObj& token, Random& random) {
  if (token.kind() != Kind::Quoted) return token.getString();
  const char quote = Below(random, 2) == 0 ? '"' : '\'';
  std::string written(1, quote);
  for (const char byte : token.getString()) written.append(byte == quote ? 2 : 1, byte);
  return written + quote;
}

TEST(RandomTokens, areReadBackAsTheyWereWritten) {
  Random random(42);
  const std::vector<std::string> texts = {"x", "v1.x", "5", "-2.5", "$a", "日本", "a.", ".b"};
  const std::vector<std::string> quoted = {"", "it's", "say \"x\"", "a, b/[=]", "日本.", "''\"\"", "x. "};
  const std::vector<std::string> separators = {" ", ",", "\n", "\r\n", "\t, ", " \n\n "};
  for (int round = 0; round < 5'000; ++round) {
    std::vector<std::vector<std::string>> expected;
    std::string text;
    const std::size_t commands = Below(random, 4);
    for (std::size_t c = 0; c < commands; ++c) {
      std::vector<std::string> tokens = {"CODEBOOK"};
      text += "CODEBOOK";
      const std::size_t count = Below(random, 8);
      for (std::size_t i = 0; i < count; ++i) {
        TokenInfoObj token(quoted[Below(random, quoted.size())], Kind::Quoted, 1, 1);
        if (Below(random, 3) > 0) token = TokenInfoObj(texts[Below(random, texts.size())], Kind::Word, 1, 1);
        if (Below(random, 4) == 0)
          token = TokenInfoObj(std::string(1, "[]()=/"[Below(random, 6)]), Kind::Special, 1, 1);
        tokens.push_back(token.getString());
        // A word that ends in a period must not meet a line end.
        const bool endsInPeriod = token.getString() == "a.";
        text += separators[Below(random, separators.size())] + Written(token, random) + (endsInPeriod ? " z" : "");
        if (endsInPeriod) tokens.emplace_back("z");
      }
      text += Below(random, 2) == 0 ? ".\n" : " . \t\r\n";
      expected.push_back(tokens);
    }
    ASSERT_EQ(parsertest::ReadTexts(text), expected) << testing::PrintToString(text);
  }
}

}  // namespace
