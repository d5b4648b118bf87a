#include "runtime/data/typing/quotedcell.h"

#include <string>

#include <gtest/gtest.h>

namespace runtime::data {
namespace {

TEST(QuotedCell, writesControlsAndDirectionMarksAsEscapes) {
  EXPECT_EQ(QuotedCell("a\tb\r\n"), "\"a\\tb\\r\\n\"");
  EXPECT_EQ(QuotedCell("\x1b[2J"), "\"\\u001b[2J\"");
  EXPECT_EQ(QuotedCell(std::string("\0\x7f", 2)), "\"\\u0000\\u007f\"");
  EXPECT_EQ(QuotedCell("\xE2\x80\xAE"
                       "evil"),
            "\"\\u202eevil\"");
  EXPECT_EQ(QuotedCell("\xC2\x9B"
                       "31m"),
            "\"\\u009b31m\"");
  EXPECT_EQ(QuotedCell("\xFF"), "\"\\xff\"");
  EXPECT_EQ(QuotedCell("\xC3\xA9\xE4\xB8\xAD"), "\"\xC3\xA9\xE4\xB8\xAD\"");
}

TEST(QuotedCell, shortensLongTexts) {
  EXPECT_EQ(QuotedCell(std::string(40, 'x')), "\"" + std::string(40, 'x') + "\"");
  EXPECT_EQ(QuotedCell(std::string(41, 'x')), "\"" + std::string(40, 'x') + "...\"");
}

}  // namespace
}  // namespace runtime::data
