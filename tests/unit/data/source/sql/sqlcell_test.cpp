#include "runtime/data/source/sql/sqlcell.h"

#include <gtest/gtest.h>

namespace runtime::data {
namespace {

TEST(WrittenDecimals, areTheDigitsBehindThePointAndAtMost16) {
  EXPECT_EQ(WrittenDecimals(""), 0);
  EXPECT_EQ(WrittenDecimals("1"), 0);
  EXPECT_EQ(WrittenDecimals("Infinity"), 0);
  EXPECT_EQ(WrittenDecimals("-1.5"), 1);
  EXPECT_EQ(WrittenDecimals("2.0000"), 4);
  EXPECT_EQ(WrittenDecimals("0.12345678901234567890"), 16);
}

}  // namespace
}  // namespace runtime::data
