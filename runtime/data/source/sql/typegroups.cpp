#include "runtime/data/source/sql/typegroups.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include "runtime/data/source/sql/sqlcell.h"
#include "runtime/data/store/numericpart.h"
#include "runtime/data/typing/readcolumn.h"

namespace runtime::data {

namespace {

constexpr std::size_t kAtOnce = 2048;

SourceColumn SourceOf(const SqlColumn& column, FieldType type) { return {column.name, type, column.isMixed}; }

/// The text of a cell in the form in which files have it: dates with times with a T between them.
std::string TextOf(SqlType type, const std::string& text) {
  constexpr std::size_t kBehindDate = 10;
  std::string changed = text;
  if (type == SqlType::DateTime && changed.size() > kBehindDate && changed[kBehindDate] == ' ')
    changed[kBehindDate] = 'T';
  return changed;
}

void Take(ReadColumn& reading, const SqlColumn& column, const RawGroups& groups, std::size_t first, std::size_t count) {
  if (!reading.isText()) {
    std::vector<double> numbers;
    for (std::size_t i = first; i < first + count; ++i)
      numbers.push_back(groups.isNull(i) ? std::numeric_limits<double>::quiet_NaN()
                                         : NumberOfCell(column.type, groups.text(i)));
    reading.Numbers(numbers.data(), count);
    for (std::size_t i = 0; i < count; ++i)
      if (IsUnreadable(column.type, groups.text(first + i), numbers[i])) reading.Unreadable(groups.text(first + i));
    return;
  }
  std::vector<std::string> texts;
  std::vector<std::string_view> views;
  for (std::size_t i = first; i < first + count; ++i) texts.push_back(TextOf(column.type, groups.text(i)));
  for (const std::string& text : texts) views.emplace_back(text);
  reading.Texts(views.data(), count);
}

/// What a column of one piece is read to.
TypedColumn ReadGroups(const SqlColumn& column, FieldType type, const ColumnPlan& plan, const RawGroups& groups,
                       std::size_t first, std::size_t count) {
  ReadColumn reading(SourceOf(column, type), plan);
  for (std::size_t at = first; at < first + count; at += kAtOnce)
    Take(reading, column, groups, at, std::min(kAtOnce, first + count - at));
  reading.EndGroup();
  auto stored = std::make_shared<RowGroups>(std::make_shared<ColumnMemory>());
  if (count > 0) {
    RowGroup group(count, 1);
    group.AddColumn(reading.storage());
    group.Allocate();
    reading.Store(group.Cells(0), count, 0);
    stored->Append(std::move(group));
  }
  return {{std::move(stored), 0, reading.strings()}, reading.Finish()};
}

/// The facts that count cells are those of cells, not of groups.
void CountCells(ColumnFacts& facts, const SqlColumn& column, FieldType type, const ColumnPlan& plan,
                const RawGroups& groups) {
  const bool hasOdd = facts.unreadableCells > 0 || facts.zeroPaddedCells > 0 || facts.roundedCells > 0;
  const bool hasBlank = facts.blankCells > 0;
  facts.rows = groups.allCases();
  facts.unreadableCells = facts.zeroPaddedCells = facts.roundedCells = facts.blankCells = 0;
  for (UnreadableCell& cell : facts.unreadable) cell.row = 0;
  if (!hasOdd && !hasBlank) return;
  for (std::size_t i = 0; i < groups.size(); ++i) {
    const std::int64_t cases = groups.cases(i);
    if (!hasOdd) {
      if (groups.text(i).find_first_not_of(' ') == std::string::npos) facts.blankCells += cases;
      continue;
    }
    const ColumnFacts ofOne = ReadGroups(column, type, plan, groups, i, 1).facts;
    facts.blankCells += ofOne.blankCells * cases;
    facts.unreadableCells += ofOne.unreadableCells * cases;
    facts.zeroPaddedCells += ofOne.zeroPaddedCells * cases;
    facts.roundedCells += ofOne.roundedCells * cases;
  }
}

}  // namespace

bool HasWholesBeyondDoubles(SqlType type, const RawGroups& groups) {
  if (type != SqlType::Whole && type != SqlType::Decimal) return false;
  for (std::size_t i = 0; i < groups.size(); ++i)
    if (std::abs(NumberOfCell(type, groups.text(i))) > kLargestWhole) return true;
  // 2^53 + 1 reads as 2^53.
  for (std::size_t i = 0; i < groups.size(); ++i)
    if (std::abs(NumberOfCell(type, groups.text(i))) == kLargestWhole &&
        groups.text(i).find("9007199254740992") == std::string::npos)
      return true;
  return false;
}

TypedColumn TypeGroups(const SqlColumn& column, FieldType type, const ColumnPlan& plan, const RawGroups& groups) {
  TypedColumn typed = ReadGroups(column, type, plan, groups, 0, groups.size());
  // Decimal fractions keep the zeros that they are written with.
  if (column.type == SqlType::Decimal && typed.facts.type == FieldType::Number)
    for (std::size_t i = 0; i < groups.size(); ++i)
      typed.facts.decimals = std::max(typed.facts.decimals, WrittenDecimals(groups.text(i)));
  CountCells(typed.facts, column, type, plan, groups);
  return typed;
}

StoredColumn Gather(const StoredColumn& column, const std::vector<std::uint32_t>& groups) {
  auto gathered = std::make_shared<RowGroups>(std::make_shared<ColumnMemory>());
  if (!groups.empty()) {
    std::vector<std::byte> buffer;
    const ColumnView view = column.groups->View(0, column.groups->Load(0, buffer), column.column, 0);
    const std::size_t bytes = BytesPerCell(view.storage);
    RowGroup group(groups.size(), 1);
    group.AddColumn(view.storage);
    group.Allocate();
    const auto* const from = static_cast<const std::byte*>(view.cells);
    std::byte* const to = group.Cells(0);
    for (std::size_t row = 0; row < groups.size(); ++row)
      std::memcpy(to + row * bytes, from + groups[row] * bytes, bytes);
    gathered->Append(std::move(group));
  }
  return {std::move(gathered), 0, column.strings};
}

std::vector<double> NumbersOf(const StoredColumn& column) {
  std::vector<double> numbers;
  if (column.groups->size() == 0) return numbers;
  std::vector<std::byte> buffer;
  const ColumnView view = column.groups->View(0, column.groups->Load(0, buffer), column.column, 0);
  const std::size_t rows = column.groups->rowsOf(0);
  const auto append = [&](const auto* cells, auto systemMissing) {
    for (std::size_t row = 0; row < rows; ++row)
      numbers.push_back(cells[row] == systemMissing ? std::numeric_limits<double>::quiet_NaN()
                                                    : static_cast<double>(cells[row]));
  };
  switch (view.storage) {
    case ColumnStorage::Int8:
      append(static_cast<const std::int8_t*>(view.cells), kInt8SystemMissing);
      break;
    case ColumnStorage::Int16:
      append(static_cast<const std::int16_t*>(view.cells), kInt16SystemMissing);
      break;
    case ColumnStorage::Int32:
      append(static_cast<const std::int32_t*>(view.cells), kInt32SystemMissing);
      break;
    default:
      append(static_cast<const double*>(view.cells), std::numeric_limits<double>::quiet_NaN());
  }
  return numbers;
}

StoredColumn NumbersColumn(const std::vector<double>& numbers) {
  auto stored = std::make_shared<RowGroups>(std::make_shared<ColumnMemory>());
  if (!numbers.empty()) {
    RowGroup group(numbers.size(), 1);
    group.AddColumn(ColumnStorage::Float64);
    group.Allocate();
    std::memcpy(group.Cells(0), numbers.data(), numbers.size() * sizeof(double));
    stored->Append(std::move(group));
  }
  return {std::move(stored), 0, nullptr};
}

}  // namespace runtime::data
