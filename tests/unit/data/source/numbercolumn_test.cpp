#include "runtime/data/source/numbercolumn.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <random>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace runtime::data {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

int DecimalsOf(const std::vector<double>& values, int decimals = 0) {
  return WithDecimalsOf(values.data(), values.size(), decimals);
}

/// Counted in the shortest text, written without an exponent.
int DecimalsOfText(double value) {
  char text[400];
  const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed).ptr;
  const std::string_view shortest(text, static_cast<std::size_t>(end - text));
  const std::size_t point = shortest.find('.');
  return point == std::string_view::npos ? 0 : static_cast<int>(std::min<std::size_t>(16, shortest.size() - point - 1));
}

TEST(WithDecimalsOf, isThatOfTheLongest) {
  EXPECT_EQ(DecimalsOf({1, 2.5, 3.25, 4}), 2);
  EXPECT_EQ(DecimalsOf({1, 2}, 3), 3);
  EXPECT_EQ(DecimalsOf({}), 0);
  EXPECT_EQ(DecimalsOf({0.1, 0.30000000000000004}), 16);
  EXPECT_EQ(DecimalsOf({1e-300}), 16);
}

TEST(WithDecimalsOf, missesNoValueWhereverItStands) {
  for (std::size_t place = 0; place < 200; ++place) {
    std::vector<double> values(200, 12.5);
    values[place] = 0.125;
    EXPECT_EQ(DecimalsOf(values), 3) << place;
  }
}

TEST(WithDecimalsOf, passesOverWhatIsNoNumber) {
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(DecimalsOf({kNaN, infinity, -infinity, 0.5}), 1);
}

TEST(WithDecimalsOf, countsNoneInLargeNumbers) {
  EXPECT_EQ(DecimalsOf({1e300, -4503599627370496.0, 9007199254740993.0, 123456789012345678.0}), 0);
}

TEST(WithDecimalsOf, agreesWithTheShortestTextOfAnyNumber) {
  std::mt19937_64 random(20240229);
  for (int round = 0; round < 20000; ++round) {
    const auto digits = static_cast<double>(static_cast<std::int64_t>(random() >> (random() % 60 + 3)));
    const double value = (random() % 2 ? 1 : -1) * digits / std::pow(10.0, static_cast<double>(random() % 12));
    EXPECT_EQ(DecimalsOf({value}), DecimalsOfText(value)) << value;
  }
}

TEST(NumberColumn, keepsTheDecimalsThatNumbersAreWrittenWith) {
  const std::vector<double> values = {1.5, 2.25};
  NumberColumn numbers({"n", FieldType::Number}, FieldType::Number, true);
  numbers.WrittenDecimals(1);
  numbers.Append(values.data(), values.size());
  EXPECT_EQ(numbers.facts().decimals, 2);
  numbers.WrittenDecimals(4);
  numbers.WrittenDecimals(3);
  EXPECT_EQ(numbers.facts().decimals, 4);
  NumberColumn whole({"n", FieldType::Number}, FieldType::Integer, false);
  whole.WrittenDecimals(4);
  EXPECT_EQ(whole.facts().decimals, 0);
}

TEST(NumberColumn, tellsOfFractionsInAColumnDeclaredWhole) {
  NumberColumn column({"n", FieldType::Number}, FieldType::Integer, false);
  const std::vector<double> values = {1.0, 2.5, kNaN, 3.0};
  column.Append(values.data(), values.size());
  column.EndPart();
  EXPECT_EQ(column.facts().unreadableCells, 1);
  ASSERT_EQ(column.facts().unreadable.size(), 1U);
  EXPECT_EQ(column.facts().unreadable[0].row, 2);
  EXPECT_EQ(column.facts().unreadable[0].text, "2.5");
  EXPECT_EQ(column.facts().blankCells, 1);
  EXPECT_EQ(column.facts().rows, 4);
}

TEST(NumberColumn, countsWhatIsMissingAmongIntegersAndNumbers) {
  NumberColumn column({"n", FieldType::Integer}, FieldType::Integer, true);
  const std::vector<std::int32_t> integers = {1, ColumnSink::kNoInteger, 3};
  const std::vector<double> numbers = {kNaN, 5e9};
  column.Append(integers.data(), integers.size());
  column.Append(numbers.data(), numbers.size());
  EXPECT_EQ(column.part().rows(), 5U);
  column.EndPart();
  EXPECT_EQ(column.facts().blankCells, 2);
  EXPECT_EQ(column.facts().rows, 5);
  EXPECT_EQ(column.facts().values.maximum(), 5e9);
  EXPECT_EQ(column.facts().values.minimum(), 1.0);
}

}  // namespace
}  // namespace runtime::data
