#include "runtime/data/store/textpart.h"

#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace runtime::data {
namespace {

TEST(TextPart, givesCodesInOrderOfFirstAppearance) {
  TextPart part;
  for (const char* text : {"b", "a", "b  ", "", "a", "   "}) part.Append(text);
  EXPECT_EQ(part.codes(), (std::vector<std::uint32_t>{0, 1, 0, 2, 1, 2}));
  ASSERT_EQ(part.texts().Size(), 3U);
  EXPECT_EQ(part.texts().Text(0), "b");
  EXPECT_EQ(part.texts().Text(2), "");
  EXPECT_EQ(part.texts().longestText(), 1U);
}

TEST(TextPart, joinedInOrderGivesTheCodesOfTheWholeColumn) {
  std::mt19937 random(3);
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < 30'000; ++i)
    texts.push_back("text " + std::to_string(random() % 9'000) + std::string(random() % 19, 'x'));
  texts.push_back(std::string(300'000, 'y'));
  texts.push_back(std::string("nul\0inside", 10));

  ArenaStringTable whole;
  ArenaStringTable joined;
  TextPart part;
  for (std::size_t first = 0; first < texts.size();) {
    const std::size_t count = std::min<std::size_t>(texts.size() - first, random() % 5'000);
    part.Clear();
    for (std::size_t i = 0; i < count; ++i) part.Append(texts[first + i]);
    std::vector<std::uint32_t> cells = part.codes();
    part.JoinTo(joined, cells.data());
    for (std::size_t i = 0; i < count; ++i) {
      ASSERT_EQ(cells[i], whole.Enter(texts[first + i]));
      ASSERT_EQ(joined.Text(cells[i]), texts[first + i]);
    }
    first += count;
  }
  EXPECT_EQ(joined.longestText(), 300'000U);
}

}  // namespace
}  // namespace runtime::data
