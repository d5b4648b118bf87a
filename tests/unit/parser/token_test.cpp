#include "host/parser/token.h"

#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/parser/boundcommand.h"

namespace {

using parsertest::Bound;
using parsertest::Texts;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(TokenInfo, givesItsTextAsTypedAndInUpperCase) {
  const TokenInfoObj token("straße é ǆ日x1", TokenInfoObj::Kind::Word, 3, 7);
  EXPECT_EQ(token.getString(), "straße é ǆ日x1");
  EXPECT_EQ(token.getUpperString(), "STRAßE É Ǆ日X1");
  EXPECT_EQ(token.line(), 3);
  EXPECT_EQ(token.column(), 7);
}

TEST(TokenInfo, keepsIllFormedBytesInUpperCase) {
  EXPECT_EQ(TokenInfoObj("a\xFF\xE2\x82z", TokenInfoObj::Kind::Word, 1, 1).getUpperString(), "A\xFF\xE2\x82Z");
}

TEST(TokenSequence, bindsToTheCurrentCommand) {
  const auto commands = runtime::parser::ReadCommands("A x.\nB y.");
  {
    const Bound bound(&commands[1], nullptr);
    EXPECT_THAT(Texts(MAVO_TokenSequence(true).tokens()), ElementsAre("B", "y"));
    EXPECT_THAT(MAVO_TokenSequence(false).tokens(), IsEmpty());
  }
  EXPECT_THAT(MAVO_TokenSequence(true).tokens(), IsEmpty());
}

TEST(TokenSequence, isEmptyForABindingWithoutCommand) {
  const Bound bound(nullptr, nullptr);
  EXPECT_THAT(MAVO_TokenSequence(true).tokens(), IsEmpty());
}

TEST(TokenSequence, bindsEachThreadToItsOwnCommand) {
  const auto commands = runtime::parser::ReadCommands("A x.\nB y.");
  const Bound bound(&commands[0], nullptr);
  std::thread other([&commands] {
    EXPECT_THAT(MAVO_TokenSequence(true).tokens(), IsEmpty());
    const Bound otherBound(&commands[1], nullptr);
    EXPECT_THAT(Texts(MAVO_TokenSequence(true).tokens()), ElementsAre("B", "y"));
  });
  other.join();
  EXPECT_THAT(Texts(MAVO_TokenSequence(true).tokens()), ElementsAre("A", "x"));
}

}  // namespace
