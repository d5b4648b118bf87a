#include "host/parser/message.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/parser/boundcommand.h"

namespace {

using parsertest::Bound;
using parsertest::Message;
using parsertest::RecordingSink;
using testing::ElementsAre;

TEST(ParserMessage, fillsThePlaceholdersFromTheArguments) {
  RecordingSink sink;
  const Bound bound(nullptr, &sink);
  ParserMessage().GenericError("^2 ^1 ^5^4^3 ^1.", "a", "b", "c", "d", "e");
  EXPECT_THAT(sink.messages, ElementsAre(Message{true, "b a edc a."}));
}

TEST(ParserMessage, leavesAPlaceholderInsideAnArgument) {
  RecordingSink sink;
  const Bound bound(nullptr, &sink);
  ParserMessage().GenericWarning("^1 and ^2", "^2", "^1^", nullptr, nullptr, nullptr);
  EXPECT_THAT(sink.messages, ElementsAre(Message{false, "^2 and ^1^"}));
}

TEST(ParserMessage, fillsNothingForANullArgument) {
  RecordingSink sink;
  const Bound bound(nullptr, &sink);
  ParserMessage().GenericWarning("<^1>", nullptr, nullptr, nullptr, nullptr, nullptr);
  ParserMessage().GenericWarning(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
  EXPECT_THAT(sink.messages, ElementsAre(Message{false, "<>"}, Message{false, ""}));
}

TEST(ParserMessage, leavesACaretThatIsNoPlaceholder) {
  RecordingSink sink;
  const Bound bound(nullptr, &sink);
  ParserMessage().GenericError("^0 ^6 ^x ^^1 ^", "a", nullptr, nullptr, nullptr, nullptr);
  EXPECT_THAT(sink.messages, ElementsAre(Message{true, "^0 ^6 ^x ^a ^"}));
}

TEST(ParserMessage, saysThatAKeywordExcludesAnyOther) {
  RecordingSink sink;
  const Bound bound(nullptr, &sink);
  ParserMessage().ParamExclAnyOther("NONE", "STATISTICS");
  EXPECT_THAT(
      sink.messages,
      ElementsAre(Message{true, "Keyword NONE of subcommand STATISTICS cannot be combined with any other keyword."}));
}

TEST(ParserMessage, saysThatAKeywordIsMisplacedInTheList) {
  RecordingSink sink;
  const Bound bound(nullptr, &sink);
  ParserMessage().KeywordImproperVarList("TO", "x", nullptr);
  EXPECT_THAT(sink.messages, ElementsAre(Message{true, "Keyword TO is misplaced in the variable list."}));
}

TEST(ParserMessage, doesNothingWithoutABindingOrASink) {
  ParserMessage().GenericError("x", nullptr, nullptr, nullptr, nullptr, nullptr);
  const Bound bound(nullptr, nullptr);
  ParserMessage().GenericError("x", nullptr, nullptr, nullptr, nullptr, nullptr);
}

}  // namespace
