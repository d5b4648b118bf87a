#include "runtime/data/source/sql/tablename.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace runtime::data {
namespace {

using testing::ElementsAre;

/// The parts with a Q before those in quotes; "none" for no name.
std::vector<std::string> PartsOf(std::string_view text) {
  const auto parts = SplitTableName(text);
  if (!parts) return {"none"};
  std::vector<std::string> words;
  for (const NamePart& part : *parts) words.push_back((part.isQuoted ? "Q" : "") + part.name);
  return words;
}

TEST(TableNames, areCutAtTheirPeriods) {
  EXPECT_THAT(PartsOf("survey"), ElementsAre("survey"));
  EXPECT_THAT(PartsOf("wave 1.survey; x"), ElementsAre("wave 1", "survey; x"));
  EXPECT_THAT(PartsOf("a.b.c"), ElementsAre("a", "b", "c"));
}

TEST(TableNames, quotesKeepPeriodsAndThemselves) {
  EXPECT_THAT(PartsOf(R"("a.b".c)"), ElementsAre("Qa.b", "c"));
  EXPECT_THAT(PartsOf(R"("a ""b""")"), ElementsAre(R"(Qa "b")"));
  EXPECT_THAT(PartsOf("`a``.b`.[c]].d]"), ElementsAre("Qa`.b", "Qc].d"));
}

TEST(TableNames, whatIsNoNameIsNone) {
  for (const char* text : {"", ".", "a.", ".a", "\"a", "\"a\"b", "\"\"", "[a", "a..b"})
    EXPECT_THAT(PartsOf(text), ElementsAre("none")) << text;
}

}  // namespace
}  // namespace runtime::data
