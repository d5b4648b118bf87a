#include "runtime/data/typing/inference.h"

#include <gtest/gtest.h>

namespace runtime::data {
namespace {

TEST(InferredType, isTheNarrowestThatATextReadsAsBeyondDoubt) {
  for (const char* text : {"true", "False", "TRUE"}) EXPECT_EQ(InferredTypeOf(text), FieldType::Boolean) << text;
  for (const char* text : {"0", "1", "-1", "123456789012345680", "-0", "9007199254740992"})
    EXPECT_EQ(InferredTypeOf(text), FieldType::Integer) << text;
  for (const char* text : {"1.5", "-0.5", ".5", "1e5", "1.0", "2E-3", "12345678901234567890.5"})
    EXPECT_EQ(InferredTypeOf(text), FieldType::Number) << text;
  EXPECT_EQ(InferredTypeOf("2024-01-31"), FieldType::Date);
  for (const char* text : {"2024-01-31T10:00:00", "2024-01-31 10:00", "2024-01-31T10:00:00.5Z"})
    EXPECT_EQ(InferredTypeOf(text), FieldType::DateTime) << text;
  EXPECT_EQ(InferredTypeOf("10:00:00"), FieldType::Time);
}

TEST(InferredType, leavesDoubtfulTextsAsTheyAre) {
  for (const char* text : {"007",
                           "00",
                           "-01",
                           "01.5",
                           "+1",
                           "+1.5",
                           "5.",
                           "1,5",
                           "NA",
                           "NaN",
                           "INF",
                           "inf",
                           "1e400",
                           "yes",
                           "tRUE",
                           "9007199254740993",
                           "12345678901234567891",
                           "2024-1-1",
                           "2024-02-30",
                           "10:00",
                           "2024-01",
                           "2024-01-31T10:00:00+01:00",
                           "P1D",
                           "0x1F",
                           "1_000",
                           "-",
                           "."})
    EXPECT_EQ(InferredTypeOf(text), FieldType::String) << text;
}

}  // namespace
}  // namespace runtime::data
