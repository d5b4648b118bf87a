#include "runtime/data/typing/valuereader.h"

#include <cmath>
#include <optional>

#include <gtest/gtest.h>

namespace runtime::data {
namespace {

FieldDialect Of(FieldType type) {
  FieldDialect dialect;
  dialect.type = type;
  return dialect;
}

std::optional<double> Read(const FieldDialect& dialect, std::string_view text) {
  const ValueReader reader(dialect);
  EXPECT_EQ(reader.problem(), "");
  NumberReading reading;
  if (!reader.Read(text, reading)) return std::nullopt;
  return reading.value;
}

bool IsSystemMissing(const FieldDialect& dialect, std::string_view text) {
  const auto value = Read(dialect, text);
  return value && std::isnan(*value);
}

TEST(ValueReader, passesOverBlanksAroundAText) {
  EXPECT_EQ(Read(Of(FieldType::Integer), " 5\t"), 5);
  EXPECT_EQ(Read(Of(FieldType::Date), " 1970-01-02 "), 86'400);
  EXPECT_EQ(Read(Of(FieldType::Integer), "  "), std::nullopt);
}

TEST(ValueReader, readsIntegersAsDeclared) {
  EXPECT_EQ(Read(Of(FieldType::Integer), "007"), 7);
  EXPECT_EQ(Read(Of(FieldType::Integer), "+5"), 5);
  for (const char* text : {"5.0", "4O", "1e3", "NaN", "true"})
    EXPECT_EQ(Read(Of(FieldType::Integer), text), std::nullopt);
}

TEST(ValueReader, readsInfiniteAndNoNumbersAsSystemMissing) {
  for (const char* text : {"NaN", "INF", "-INF", "nan", "inf", "1e999"})
    EXPECT_TRUE(IsSystemMissing(Of(FieldType::Number), text)) << text;
  EXPECT_EQ(Read(Of(FieldType::Number), "NA"), std::nullopt);
}

TEST(ValueReader, readsTheFieldsMarksOfDecimalsAndGroups) {
  FieldDialect dialect = Of(FieldType::Number);
  dialect.decimalChar = ",";
  dialect.groupChar = ".";
  EXPECT_EQ(Read(dialect, "3.000.000,25"), 3'000'000.25);
  EXPECT_EQ(Read(dialect, "-1,5"), -1.5);
  EXPECT_EQ(Read(dialect, "1.000"), 1'000);
  EXPECT_EQ(Read(dialect, "1,5.0"), std::nullopt);
  EXPECT_EQ(Read(dialect, "1..5"), std::nullopt);
  EXPECT_EQ(Read(dialect, "1."), std::nullopt);
  dialect.groupChar = "\xC2\xA0";
  EXPECT_EQ(Read(dialect,
                 "1\xC2\xA0"
                 "234,5"),
            1'234.5);
  EXPECT_EQ(Read(dialect, "1.5"), std::nullopt);

  FieldDialect grouped = Of(FieldType::Integer);
  grouped.groupChar = ",";
  EXPECT_EQ(Read(grouped, "1,234,567"), 1'234'567);
  EXPECT_EQ(Read(grouped, "1,234.5"), std::nullopt);
}

TEST(ValueReader, findsTheNumberInATextThatIsNotBare) {
  FieldDialect dialect = Of(FieldType::Number);
  dialect.bareNumber = false;
  EXPECT_EQ(Read(dialect, "95%"), 95);
  EXPECT_EQ(Read(dialect, "$ -3.1 or so"), -3.1);
  EXPECT_EQ(Read(dialect, "EUR .5"), .5);
  EXPECT_EQ(Read(dialect, "none"), std::nullopt);
}

TEST(ValueReader, refusesTheSameMarkForDecimalsAndGroups) {
  FieldDialect dialect = Of(FieldType::Number);
  dialect.groupChar = ".";
  EXPECT_NE(ValueReader(dialect).problem(), "");
}

TEST(ValueReader, readsTheWordsOfABoolean) {
  for (const char* text : {"true", "True", "TRUE", "1"}) EXPECT_EQ(Read(Of(FieldType::Boolean), text), 1);
  for (const char* text : {"false", "False", "FALSE", "0"}) EXPECT_EQ(Read(Of(FieldType::Boolean), text), 0);
  EXPECT_EQ(Read(Of(FieldType::Boolean), "yes"), std::nullopt);
  FieldDialect dialect = Of(FieldType::Boolean);
  dialect.trueValues = {"ja"};
  dialect.falseValues = {"nein"};
  EXPECT_EQ(Read(dialect, "ja"), 1);
  EXPECT_EQ(Read(dialect, "nein"), 0);
  EXPECT_EQ(Read(dialect, "true"), std::nullopt);
}

TEST(ValueReader, readsMomentsByDefaultPatternOrAnyForm) {
  EXPECT_EQ(Read(Of(FieldType::Date), "1970-01-02"), 86'400);
  EXPECT_EQ(Read(Of(FieldType::DateTime), "1970-01-01T02:00:00+02:00"), 0);
  EXPECT_EQ(Read(Of(FieldType::Time), "08:30:00"), 30'600);
  EXPECT_EQ(Read(Of(FieldType::YearMonth), "1970-02"), 31 * 86'400);
  EXPECT_EQ(Read(Of(FieldType::Year), "1984"), 1984);
  EXPECT_EQ(Read(Of(FieldType::Duration), "PT1M"), 60);

  FieldDialect pattern = Of(FieldType::Date);
  pattern.format = "%d.%m.%Y";
  EXPECT_EQ(Read(pattern, "02.01.1970"), 86'400);
  pattern.format = "fmt:%d.%m.%Y";
  EXPECT_EQ(Read(pattern, "02.01.1970"), 86'400);

  FieldDialect any = Of(FieldType::Date);
  any.format = "any";
  EXPECT_EQ(Read(any, "2 January 1970"), 86'400);
  EXPECT_EQ(Read(any, "2 January 1970 10:00"), std::nullopt) << "a time is too much for a date";
  any.type = FieldType::DateTime;
  EXPECT_EQ(Read(any, "2 January 1970 0:01"), 86'460);
  any.type = FieldType::Time;
  EXPECT_EQ(Read(any, "0:01"), 60);
  EXPECT_EQ(Read(any, "1970-01-02"), std::nullopt);
}

TEST(ValueReader, tellsThatAPatternCannotBeUsed) {
  FieldDialect dialect = Of(FieldType::Date);
  dialect.format = "%Q";
  EXPECT_NE(ValueReader(dialect).problem(), "");
}

}  // namespace
}  // namespace runtime::data
