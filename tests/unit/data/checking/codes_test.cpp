#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/checking/finding.h"

namespace runtime::data {
namespace {

TEST(CheckCodes, standInTheOrderOfTheEnumerationAndOfTheirIdentifiers) {
  const std::vector<CodeFacts>& codes = CheckCodes();
  for (std::size_t i = 0; i < codes.size(); ++i) {
    EXPECT_EQ(static_cast<std::size_t>(codes[i].code), i);
    EXPECT_EQ(FactsOf(codes[i].code).id, codes[i].id);
    const std::string before = i > 0 ? codes[i - 1].id : "";
    EXPECT_LT(before, codes[i].id);
  }
}

TEST(CheckCodes, areNamedOnce) {
  std::set<std::string> names;
  for (const CodeFacts& facts : CheckCodes()) EXPECT_TRUE(names.insert(facts.name).second) << facts.name;
}

TEST(CheckCodes, areDocumentedAsTheyAre) {
  std::ifstream file(CODEBOOK_SOURCE_DIR "/docs/reference/check.md");
  std::ostringstream text;
  text << file.rdbuf();
  std::size_t rows = 0;
  for (const CodeFacts& facts : CheckCodes())
    EXPECT_THAT(text.str(), testing::HasSubstr(fmt::format("| {} | `{}` | {} | {} | {} |", facts.id, facts.name,
                                                           SeverityWord(facts.severity), facts.meaning, facts.hint)));
  std::istringstream lines(text.str());
  for (std::string line; std::getline(lines, line);)
    if (line.rfind("| C", 0) == 0) ++rows;
  EXPECT_EQ(rows, CheckCodes().size());
}

}  // namespace
}  // namespace runtime::data
