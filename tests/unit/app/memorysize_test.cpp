#include "app/memorysize.h"

#include <gtest/gtest.h>

namespace app {
namespace {

TEST(MemorySize, bareNumberIsBytes) {
  EXPECT_EQ(ReadMemorySize("123456789"), 123456789);
  EXPECT_EQ(ReadMemorySize("0"), 0);
  EXPECT_EQ(ReadMemorySize("64B"), 64);
}

TEST(MemorySize, unitsWithoutIArePowersOf1000) {
  EXPECT_EQ(ReadMemorySize("3KB"), 3'000);
  EXPECT_EQ(ReadMemorySize("256MB"), 256'000'000);
  EXPECT_EQ(ReadMemorySize("1GB"), 1'000'000'000);
  EXPECT_EQ(ReadMemorySize("2TB"), 2'000'000'000'000);
}

TEST(MemorySize, unitsWithIArePowersOf1024) {
  EXPECT_EQ(ReadMemorySize("3KiB"), 3'072);
  EXPECT_EQ(ReadMemorySize("512MiB"), 536'870'912);
  EXPECT_EQ(ReadMemorySize("1GiB"), 1'073'741'824);
  EXPECT_EQ(ReadMemorySize("1TiB"), 1'099'511'627'776);
}

TEST(MemorySize, takesDecimalsBlanksAndAnyCase) {
  EXPECT_EQ(ReadMemorySize("1.5GB"), 1'500'000'000);
  EXPECT_EQ(ReadMemorySize("256 mb"), 256'000'000);
  EXPECT_EQ(ReadMemorySize("1gib"), 1'073'741'824);
}

TEST(MemorySize, anythingElseIsNone) {
  for (const char* text :
       {"", "MB", "lots", "-1GB", "1G", "1XB", "1GB!", "1 GB x", " 1GB", "1e3MB", "nan", "inf", "0x10"})
    EXPECT_EQ(ReadMemorySize(text), std::nullopt) << text;
}

TEST(MemorySize, moreThanAnyMachineHasIsNone) {
  EXPECT_EQ(ReadMemorySize("1152921504606846976"), std::int64_t{1} << 60);
  EXPECT_EQ(ReadMemorySize("99999999TB"), std::nullopt);
  EXPECT_EQ(ReadMemorySize("99999999999999999999999999"), std::nullopt);
}

}  // namespace
}  // namespace app
