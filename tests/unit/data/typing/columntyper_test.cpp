#include "runtime/data/typing/columntyper.h"

#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/store/blanktexts.h"
#include "runtime/data/store/numericpart.h"
#include "runtime/data/typing/inference.h"
#include "runtime/data/typing/numbertext.h"
#include "runtime/data/typing/unreadablecells.h"
#include "tests/unit/data/support/storedcells.h"

namespace runtime::data {
namespace {

using testing::HasSubstr;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

ColumnPlan Plan(FieldType type, const std::vector<std::string>& missing = {""}) {
  ColumnPlan plan;
  plan.dialect.type = type;
  for (const std::string& text : missing) plan.missing.push_back({text, false, std::nullopt});
  plan.place = "x.schema.json: field \"v\"";
  return plan;
}

/// Reads cells first, first + 1, ... up to the end in blocks of that many rows.
void Append(ColumnPiece& piece, const std::vector<std::string>& cells, std::size_t first, std::size_t end,
            std::size_t blockRows) {
  std::string text;
  for (const std::string& cell : cells) text += cell;
  text.append(CellBlock::kReadAhead, '9');
  std::size_t at = 0;
  std::vector<Cell> places;
  for (const std::string& cell : cells) {
    places.push_back({static_cast<std::uint32_t>(at), static_cast<std::uint32_t>(cell.size())});
    at += cell.size();
  }
  for (std::size_t begin = first; begin < end; begin += blockRows) {
    std::vector<std::int64_t> lines;
    for (std::size_t i = begin; i < std::min(end, begin + blockRows); ++i)
      lines.push_back(static_cast<std::int64_t>(i - first));
    CellBlock block;
    block.text = text.data();
    block.cells = places.data() + begin;
    block.columns = 1;
    block.stride = 1;
    block.rows = lines.size();
    block.firstRow = static_cast<std::int64_t>(begin - first);
    block.lines = lines.data();
    piece.Append(block, 0);
  }
}

/// Joins pieces of that many rows.
StoredColumn ReadPieces(ColumnTyper& typer, const std::vector<std::string>& cells, std::size_t pieceRows,
                        std::size_t blockRows) {
  const auto groups = std::make_shared<RowGroups>(std::make_shared<ColumnMemory>());
  const std::unique_ptr<ColumnPiece> piece = typer.NewPiece();
  for (std::size_t first = 0; first < cells.size(); first += pieceRows) {
    const std::size_t end = std::min(cells.size(), first + pieceRows);
    piece->Clear();
    Append(*piece, cells, first, end, blockRows);
    piece->End();
    RowGroup group(end - first, 1);
    group.AddColumn(piece->storage());
    group.Allocate();
    if (piece->rows() > 0) std::memcpy(group.Cells(0), piece->cells(), piece->rows() * BytesPerCell(piece->storage()));
    // A line stands before the first row.
    typer.Join(*piece, {static_cast<std::int64_t>(first), static_cast<std::int64_t>(first) + 1}, group.Cells(0));
    groups->Append(std::move(group));
  }
  return {groups, 0, typer.strings()};
}

/// How a column is cut up and how many rows are looked at before; no result depends on it.
struct Manner {
  std::size_t blockRows = 3;
  std::size_t pieceRows = 7;
  std::size_t lookedAt = 2;
};

constexpr Manner kManners[] = {{1, 1, 0}, {1, 1, 1}, {2, 3, 0}, {2, 3, 2}, {3, 2, 100}, {100, 100, 0}, {100, 100, 100}};

/// Reads the cells, a second time where that is needed.
TypedColumn Read(const ColumnPlan& plan, const std::vector<std::string>& cells, Manner manner = {}) {
  auto typer = MakeColumnTyper(plan, "v");
  if (manner.lookedAt > 0) {
    std::vector<std::string_view> texts(cells.begin(), cells.end());
    std::vector<Cell> places;
    for (std::uint32_t cell = 0; cell < texts.size(); ++cell) places.push_back({cell, Cell::kOwnText});
    CellBlock block;
    block.cells = places.data();
    block.ownTexts = texts.data();
    block.columns = block.stride = 1;
    block.rows = std::min(manner.lookedAt, texts.size());
    typer->LookAt(block, 0);
  }
  StoredColumn column = ReadPieces(*typer, cells, manner.pieceRows, manner.blockRows);
  if (typer->NeedsSecondReading()) {
    typer = MakeTextTyper("v");
    column = ReadPieces(*typer, cells, manner.pieceRows, manner.blockRows);
  }
  BlankTexts blanks(*column.groups, std::make_shared<ColumnMemory>());
  if (typer->isBlankText()) column = blanks.Column();
  return {column, typer->Finish()};
}

std::vector<double> Numbers(const TypedColumn& column) { return test::Numbers(column.column); }
std::vector<std::string> Texts(const TypedColumn& column) { return test::Texts(column.column); }

MATCHER_P(AreSame, expected, "") {
  if (arg.size() != expected.size()) return false;
  for (std::size_t i = 0; i < arg.size(); ++i)
    if (arg[i] != expected[i] && !(std::isnan(arg[i]) && std::isnan(expected[i]))) return false;
  return true;
}

using Values = std::vector<double>;

TEST(DeclaredColumn, keepsAMissingEntryThatReadsAsANumber) {
  const TypedColumn column = Read(Plan(FieldType::Integer, {"", "-9", "NA"}), {"1", "-9", "NA", "", "2"});
  EXPECT_THAT(Numbers(column), AreSame(Values{1, -9, kNaN, kNaN, 2}));
  EXPECT_EQ(column.facts.unreadableCells, 0);
  EXPECT_EQ(column.facts.blankCells, 1);
  EXPECT_EQ(column.facts.values.DistinctIntegers(), (Values{-9, 1, 2}));
}

TEST(DeclaredColumn, readsACodeThatIsNoDateAsItsNumber) {
  const TypedColumn column = Read(Plan(FieldType::Date, {"9999", "unknown"}), {"1970-01-02", "9999", "unknown"});
  EXPECT_THAT(Numbers(column), AreSame(Values{86'400, 9999, kNaN}));
  EXPECT_EQ(column.facts.unreadableCells, 0);
}

TEST(DeclaredColumn, looksForMissingEntriesFirstWhereTheyWouldReadAsValues) {
  // "1900-01-01" reads as a date, but is no number: the cell is system-missing.
  const TypedColumn column = Read(Plan(FieldType::Date, {"1900-01-01"}), {"1970-01-01", "1900-01-01", "1900-01-02"});
  EXPECT_THAT(Numbers(column), AreSame(Values{0, kNaN, -70 * 365.0 * 86'400 - 17 * 86'400 + 86'400}));
}

TEST(DeclaredColumn, keepsEveryEntryOfAStringAsItsText) {
  const TypedColumn column = Read(Plan(FieldType::String, {"", "NA", "-9"}), {"a  ", "NA", "", "-9", " b"});
  EXPECT_EQ(Texts(column), (std::vector<std::string>{"a", "NA", "", "-9", " b"}));
  EXPECT_EQ(column.facts.longestValue, 2U);
  EXPECT_EQ(column.facts.blankCells, 1);
}

TEST(DeclaredColumn, countsCellsThatDoNotRead) {
  const TypedColumn column = Read(Plan(FieldType::Integer), {"1", "4O", "x", "2", "y", "z"});
  EXPECT_THAT(Numbers(column), AreSame(Values{1, kNaN, kNaN, 2, kNaN, kNaN}));
  EXPECT_EQ(column.facts.unreadableCells, 4);
  ASSERT_EQ(column.facts.unreadable.size(), ColumnFacts::kCellsKept);
  EXPECT_EQ(column.facts.unreadable[0].text, "4O");
  EXPECT_EQ(column.facts.unreadable[0].row, 2);
  EXPECT_EQ(column.facts.unreadable[0].line, 3);
}

TEST(DeclaredColumn, doesNotReadAnEmptyCellThatIsNoMissingEntry) {
  const TypedColumn column = Read(Plan(FieldType::Number, {"-9"}), {"1", "", "-9"});
  EXPECT_EQ(column.facts.unreadableCells, 1);
  EXPECT_EQ(column.facts.blankCells, 1);
}

TEST(DeclaredColumn, findsMissingEntriesBetweenBlanks) {
  const TypedColumn column = Read(Plan(FieldType::Number, {"", "NA"}), {" NA ", "   ", " 1.5 "});
  EXPECT_THAT(Numbers(column), AreSame(Values{kNaN, kNaN, 1.5}));
  EXPECT_EQ(column.facts.unreadableCells, 0);
  EXPECT_EQ(column.facts.decimals, 1);
}

TEST(DeclaredColumn, countsWholeNumbersThatHadToBeRounded) {
  const TypedColumn column =
      Read(Plan(FieldType::Integer), {"9007199254740993", " 9007199254740993", "9007199254740992"});
  EXPECT_EQ(column.facts.roundedCells, 2);
}

TEST(DeclaredColumn, refusesAPatternThatCannotBeUsed) {
  ColumnPlan plan = Plan(FieldType::Date);
  plan.dialect.format = "%Q";
  try {
    MakeColumnTyper(plan, "v");
    FAIL();
  } catch (const DataError& error) {
    EXPECT_THAT(error.what(), HasSubstr("x.schema.json: field \"v\": the format \"%Q\" cannot be used"));
  }
}

struct Inference {
  std::vector<std::string> cells;
  FieldType type;
};

TEST(InferredColumn, takesTheTypeThatAllCellsHave) {
  const Inference cases[] = {
      {{"1", "2", "3", "4"}, FieldType::Integer},
      {{"1", "", "", "2.5", "3"}, FieldType::Number},
      {{"1.5", "2", "3"}, FieldType::Number},
      {{"1", "2", "3", "4", "1e5"}, FieldType::Number},
      {{"1", "2", "3", "4", "NA"}, FieldType::String},
      {{"1", "2", "3", "007"}, FieldType::String},
      {{"007", "1"}, FieldType::String},
      {{"1.5", "2", "3", "9007199254740993"}, FieldType::String},
      {{"true", "FALSE", "", "true"}, FieldType::Boolean},
      {{"true", "false", "", "1"}, FieldType::String},
      {{"2024-01-01", "", "2024-02-01"}, FieldType::Date},
      {{"2024-01-01", "2", "3", "2024-01-01 10:00:00"}, FieldType::String},
      {{"2024-01-01T10:00:00", "2024-01-01 10:00:00"}, FieldType::DateTime},
      {{"10:00:00", "11:00:00"}, FieldType::Time},
      {{" 1", "2 "}, FieldType::Integer},
      {{"", "", "", "", "x"}, FieldType::String},
      {{"", "  ", ""}, FieldType::String},
      {{}, FieldType::String},
  };
  for (const Inference& inference : cases) {
    for (const Manner manner : kManners) {
      const TypedColumn column = Read(Plan(FieldType::Inferred), inference.cells, manner);
      EXPECT_EQ(column.facts.type, inference.type) << testing::PrintToString(inference.cells) << manner.pieceRows;
      EXPECT_TRUE(column.facts.inferred);
      EXPECT_EQ(column.facts.rows, static_cast<std::int64_t>(inference.cells.size()));
      EXPECT_EQ(column.column.groups->rows(), static_cast<std::int64_t>(inference.cells.size()));
      EXPECT_EQ(column.column.isString(), inference.type == FieldType::String);
    }
  }
}

TEST(InferredColumn, keepsEveryTextWhenItTurnsOutToBeAString) {
  const std::vector<std::string> cells = {"1", "007", "", "2.50", "NA"};
  for (const Manner manner : kManners) {
    const TypedColumn column = Read(Plan(FieldType::Inferred), cells, manner);
    EXPECT_EQ(Texts(column), cells);
    EXPECT_EQ(column.facts.blankCells, 1);
    EXPECT_EQ(column.facts.longestValue, 4U);
  }
}

TEST(InferredColumn, isNotDecidedByMissingEntries) {
  const ColumnPlan plan = Plan(FieldType::Inferred, {"", "NA", "-9", "1900-01-01"});
  for (const Manner manner : kManners) {
    const TypedColumn numbers = Read(plan, {"NA", "-9", "2.5", "NA", "1"}, manner);
    EXPECT_EQ(numbers.facts.type, FieldType::Number);
    EXPECT_THAT(Numbers(numbers), AreSame(Values{kNaN, -9, 2.5, kNaN, 1}));
    const TypedColumn dates = Read(plan, {"1900-01-01", "1970-01-02", "-9", "1900-01-01"}, manner);
    EXPECT_EQ(dates.facts.type, FieldType::Date);
    EXPECT_THAT(Numbers(dates), AreSame(Values{kNaN, 86'400, -9, kNaN}));
    const TypedColumn texts = Read(plan, {"NA", "-9", "x"}, manner);
    EXPECT_EQ(Texts(texts), (std::vector<std::string>{"NA", "-9", "x"}));
  }
}

TEST(InferredColumn, ofNothingButMissingCodesIsNumeric) {
  const TypedColumn codes = Read(Plan(FieldType::Inferred, {"", "-9"}), {"-9", "", "-9"});
  EXPECT_EQ(codes.facts.type, FieldType::Integer);
  EXPECT_THAT(Numbers(codes), AreSame(Values{-9, kNaN, -9}));
  const TypedColumn words = Read(Plan(FieldType::Inferred, {"", "NA", "-9"}), {"NA", "", "-9"});
  EXPECT_EQ(words.facts.type, FieldType::String);
  EXPECT_EQ(Texts(words), (std::vector<std::string>{"NA", "", "-9"}));
}

/// The type by the whole column at once, from the types of its cells.
FieldType TypeOfAll(const std::vector<std::string>& cells) {
  std::set<FieldType> types;
  for (const std::string& cell : cells)
    if (!Trimmed(cell).empty()) types.insert(InferredTypeOf(Trimmed(cell)));
  if (types == std::set<FieldType>{FieldType::Integer, FieldType::Number}) return FieldType::Number;
  return types.size() == 1 ? *types.begin() : FieldType::String;
}

TEST(InferredColumn, doesNotDependOnTheOrderOfCellsOrTheBlocks) {
  const std::vector<std::string> pools[] = {{"1", "2", "-3", "40", ""},
                                            {"1", "2.5", "1e3", "  ", "-0.25"},
                                            {"", " ", "   "},
                                            {"true", "FALSE", ""},
                                            {"2024-01-01", "1999-12-31", ""},
                                            {"10:00:00", "", "23:59:59"},
                                            {"2024-01-01T10:00:00Z", "2024-01-01 10:00"}};
  const std::vector<std::string> spoilers = {"007", "NA", "x", "1.5", "true", "2024-01-01", "", "+1"};
  std::mt19937 random(5);
  std::map<FieldType, int> met;
  for (int round = 0; round < 5'000; ++round) {
    const auto& pool = pools[random() % std::size(pools)];
    std::vector<std::string> cells(random() % 12);
    for (std::string& cell : cells) cell = pool[random() % pool.size()];
    if (!cells.empty() && random() % 3 == 0) cells[random() % cells.size()] = spoilers[random() % spoilers.size()];
    const FieldType expected = TypeOfAll(cells);
    const TypedColumn column =
        Read(Plan(FieldType::Inferred), cells, {random() % 5 + 1, random() % 12 + 1, random() % 6});
    ASSERT_EQ(column.facts.type, expected) << testing::PrintToString(cells);
    ++met[expected];
    for (std::size_t row = 0; row < cells.size(); ++row) {
      const std::string text(Trimmed(cells[row]));
      if (expected == FieldType::String) {
        ASSERT_EQ(Texts(column)[row], text.empty() ? "" : cells[row]);
      } else if (text.empty()) {
        ASSERT_TRUE(std::isnan(Numbers(column)[row]));
      } else if (expected == FieldType::Integer || expected == FieldType::Number) {
        ASSERT_EQ(Numbers(column)[row], std::stod(text));
      }
    }
  }
  EXPECT_EQ(met.size(), 7U) << "every type is met";
}

TEST(UnreadableCells, areReportedOnceAColumn) {
  ColumnPlan plan = Plan(FieldType::Integer);
  const TypedColumn one = Read(plan, {"1", "4O", "2"});
  const TypedColumn many = Read(plan, {"a\x1b[31m\n", "b", "c", "d"});
  const TypedColumn none = Read(plan, {"1"});
  std::vector<Note> notes;
  ReportUnreadableCells("x.csv", {&one.facts, &many.facts, &none.facts}, false, notes);
  ASSERT_EQ(notes.size(), 2U);
  EXPECT_EQ(notes[0].text,
            "x.csv:3: column \"v\", row 2: \"4O\" does not read as an integer; the cell is system-missing");
  EXPECT_EQ(
      notes[1].text,
      "x.csv:2: column \"v\", row 1: \"a\\u001b[31m\\n\" does not read as an integer; it is one of 4 such cells of "
      "the column, all system-missing");
}

TEST(UnreadableCells, areAnErrorWhenStrictTheFirstOfTheFileGoingFirst) {
  const TypedColumn later = Read(Plan(FieldType::Integer), {"1", "x"});
  const TypedColumn earlier = Read(Plan(FieldType::Date), {"y", "z"});
  std::vector<Note> notes;
  try {
    ReportUnreadableCells("x.csv", {&later.facts, &earlier.facts}, true, notes);
    FAIL();
  } catch (const DataError& error) {
    EXPECT_STREQ(error.what(), "x.csv:2: column \"v\", row 1: \"y\" does not read as a date");
  }
}

}  // namespace
}  // namespace runtime::data
