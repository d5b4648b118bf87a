#include "runtime/data/csv/segmentedreading.h"

#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "runtime/data/csv/readcsv.h"
#include "tests/unit/data/open/datafolder.h"
#include "tests/unit/data/support/storedcells.h"

namespace runtime::data {
namespace {

/// All that reading a table gives, as text.
std::string Described(const TypedTable& table, const std::vector<Note>& notes) {
  std::string text = std::to_string(table.rows) + " rows\n";
  for (const TypedColumn& column : table.columns) {
    const ColumnFacts& facts = column.facts;
    text += facts.header + " " + std::to_string(static_cast<int>(facts.type)) + " " + std::to_string(facts.rows) + " " +
            std::to_string(facts.blankCells) + " " + std::to_string(facts.unreadableCells) + " " +
            std::to_string(facts.decimals) + " " + std::to_string(facts.longestValue) + ":";
    for (const double value : facts.values.DistinctIntegers()) text += " " + std::to_string(value);
    text += "\n";
    if (column.column.isString()) {
      for (const std::string& cell : test::Texts(column.column)) text += "[" + cell + "]";
      for (std::uint32_t code = 0; code < column.column.strings->Size(); ++code)
        text += "(" + std::string(column.column.strings->Text(code)) + ")";
    } else {
      for (const double cell : test::Numbers(column.column))
        text += std::isnan(cell) ? "." : std::to_string(cell) + " ";
    }
    text += "\n";
  }
  for (const Note& note : notes) text += note.text + "\n";
  return text;
}

class SegmentedReadingTest : public testing::Test {
 protected:
  /// The table, or the error.
  std::string Read(const std::vector<std::string>& paths, const std::vector<ColumnPlan>& plans,
                   ReadingOptions options) {
    std::vector<Note> notes;
    const PlanColumns plan = [&](const std::vector<std::string>& headers, std::vector<Note>& planNotes) {
      planNotes.push_back({false, "planned"});
      std::vector<ColumnPlan> all = plans;
      all.resize(headers.size(), plans.front());
      return all;
    };
    try {
      const TypedTable table = ReadCsv(paths, {}, plan, options, notes);
      return Described(table, notes);
    } catch (const DataError& error) {
      return error.what();
    }
  }

  DataFolder fFolder;
};

/// Rows of three columns, some with what is hard to cut or to read.
std::string RandomRows(std::mt19937& random, int nastiness) {
  static const std::vector<std::string> kPlain = {"1", "2", "-9", "", "14", "3.25", "1000", "x", "yes"};
  static const std::vector<std::string> kNasty = {
      "\"a,b\"",    "\"two\nlines\"", "\"a\"\"b\"",          "5\" pipe", "\"tail\"x",
      "\"\r\n\n\"", "M\xC3\xBCller",  "\"1\n2\n3\n4\"",      "007",      "1e300",
      "70000",      "-2147483648",    "12345678901234567890"};
  std::string text;
  const std::size_t rows = random() % 60;
  const std::size_t numbers = random() % 2 == 0 ? 7 : kPlain.size();
  for (std::size_t row = 0; row < rows; ++row) {
    const std::size_t cells = nastiness > 1 && random() % 20 == 0 ? random() % 5 : 3;
    for (std::size_t cell = 0; cell < cells; ++cell) {
      if (cell > 0) text += ",";
      text += nastiness > 0 && random() % 12 == 0 ? kNasty[random() % kNasty.size()] : kPlain[random() % numbers];
    }
    text += random() % 4 == 0 ? "\r\n" : "\n";
    if (nastiness > 1 && random() % 40 == 0) text += "\n";
  }
  if (nastiness > 1 && random() % 15 == 0) text += "\"never closed\n1,2\n";
  if (nastiness > 1 && random() % 15 == 0) text += "bad \xFF byte,\xC3,1\n";
  return text;
}

TEST_F(SegmentedReadingTest, givesTheSameHoweverTheTextIsCut) {
  std::mt19937 random(20261121);
  std::vector<std::shared_ptr<machine::ThreadPool>> pools;
  for (const int threads : {1, 2, 4}) pools.push_back(std::make_shared<machine::ThreadPool>(threads));
  for (int round = 0; round < 600; ++round) {
    std::vector<std::string> paths;
    for (std::size_t part = 0; part < 1 + random() % 2; ++part)
      paths.push_back(fFolder.Write("part" + std::to_string(part) + ".csv",
                                    "first,second,third\n" + RandomRows(random, round % 3)));
    std::vector<ColumnPlan> plans(3);
    for (ColumnPlan& plan : plans) {
      plan.missing = {{"", false, std::nullopt}, {"-9", false, std::nullopt}};
      const FieldType types[] = {FieldType::Inferred, FieldType::Integer, FieldType::Number, FieldType::String};
      plan.dialect.type = types[random() % (round % 2 == 0 ? 1 : 4)];
    }
    ReadingOptions whole;
    whole.strict = random() % 4 == 0;
    whole.manner.segmentBytes = std::size_t{1} << 30;
    const std::string expected = Read(paths, plans, whole);
    for (const std::size_t segmentBytes : {std::size_t{1}, std::size_t{2}, random() % 40 + 3, random() % 400 + 40}) {
      ReadingOptions cut = whole;
      cut.manner.segmentBytes = segmentBytes;
      cut.manner.pool = pools[random() % pools.size()].get();
      cut.memory = std::make_shared<ColumnMemory>();
      if (random() % 2 == 0) cut.memory->left = static_cast<std::int64_t>(random() % 2000);
      ASSERT_EQ(Read(paths, plans, cut), expected)
          << "segments of " << segmentBytes << " bytes, " << cut.manner.pool->threads() << " threads, round " << round;
    }
  }
}

TEST_F(SegmentedReadingTest, readsAColumnAgainWhoseTypeFallsLate) {
  std::string text = "code,late,number\n";
  for (int row = 0; row < 3'000; ++row) text += "1," + std::to_string(row) + ",2\n";
  text += "1,word,2.5\n";
  std::vector<ColumnPlan> plans(3);
  for (ColumnPlan& plan : plans) plan.missing = {LabelledValue{}};
  ReadingOptions options;
  options.manner.segmentBytes = 5'000;
  std::vector<Note> notes;
  const std::string path = fFolder.Write("late.csv", text);
  const TypedTable table = ReadCsv(
      {path}, {}, [&](const std::vector<std::string>&, std::vector<Note>&) { return plans; }, options, notes);
  ASSERT_EQ(table.rows, 3'001);
  EXPECT_EQ(table.columns[0].facts.type, FieldType::Integer);
  ASSERT_TRUE(table.columns[1].column.isString());
  EXPECT_EQ(test::Texts(table.columns[1].column)[2'999], "2999");
  EXPECT_EQ(test::Texts(table.columns[1].column)[3'000], "word");
  EXPECT_EQ(table.columns[2].facts.type, FieldType::Number);
  EXPECT_EQ(test::Numbers(table.columns[2].column)[3'000], 2.5);
}

TEST_F(SegmentedReadingTest, tellsItsProgressInRisingShares) {
  std::string text = "a,b\n";
  for (int row = 0; row < 1'000; ++row) text += "1,2\n";
  const std::string path = fFolder.Write("progress.csv", text);
  machine::ThreadPool pool(3);
  ReadingOptions options;
  options.manner.pool = &pool;
  options.manner.segmentBytes = 100;
  std::vector<machine::Progress> told;
  options.manner.onProgress = [&](const machine::Progress& progress) { told.push_back(progress); };
  std::vector<Note> notes;
  ReadCsv(
      {path}, {}, [](const std::vector<std::string>&, std::vector<Note>&) { return std::vector<ColumnPlan>(2); },
      options, notes);
  ASSERT_GT(told.size(), 30U);
  for (std::size_t i = 1; i < told.size(); ++i) {
    EXPECT_GE(told[i].share, told[i - 1].share);
    EXPECT_GE(told[i].cases, told[i - 1].cases);
  }
  EXPECT_EQ(told.back().cases, 1'000);
  EXPECT_LE(told.back().share, 1.0);
  EXPECT_GT(told.back().share, 0.99);
}

}  // namespace
}  // namespace runtime::data
