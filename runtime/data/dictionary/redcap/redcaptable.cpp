#include "runtime/data/dictionary/redcap/redcaptable.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include <fmt/format.h>

#include "runtime/data/csv/csvdialect.h"
#include "runtime/data/csv/inputtext.h"
#include "runtime/data/csv/recordscanner.h"
#include "runtime/data/lowerascii.h"

namespace runtime::data {
namespace {

/// How a header begins once it is letters and digits in lower case: as downloaded, and as the programming interface has
/// it. Of two that fit, the longer one is meant.
struct HeaderWord {
  std::string_view beginning;
  RedcapColumn column;
};
constexpr HeaderWord kHeaderWords[] = {{"variablefieldname", RedcapColumn::Name},
                                       {"fieldname", RedcapColumn::Name},
                                       {"formname", RedcapColumn::Form},
                                       {"sectionheader", RedcapColumn::Section},
                                       {"fieldtype", RedcapColumn::Type},
                                       {"fieldlabel", RedcapColumn::Label},
                                       {"choices", RedcapColumn::Choices},
                                       {"selectchoices", RedcapColumn::Choices},
                                       {"fieldnote", RedcapColumn::Note},
                                       {"textvalidationtype", RedcapColumn::Validation},
                                       {"textvalidationmin", RedcapColumn::Minimum},
                                       {"textvalidationmax", RedcapColumn::Maximum},
                                       {"identifier", RedcapColumn::Identifier},
                                       {"branchinglogic", RedcapColumn::Branching},
                                       {"requiredfield", RedcapColumn::Required},
                                       {"customalignment", RedcapColumn::Alignment},
                                       {"questionnumber", RedcapColumn::QuestionNumber},
                                       {"matrixgroupname", RedcapColumn::MatrixGroup},
                                       {"matrixranking", RedcapColumn::MatrixRanking},
                                       {"fieldannotation", RedcapColumn::Annotation}};

std::string LettersOf(std::string_view header) {
  std::string letters;
  for (const char byte : header) {
    const char lower = LowerAscii(byte);
    if ((lower >= 'a' && lower <= 'z') || (lower >= '0' && lower <= '9')) letters += lower;
  }
  return letters;
}

std::optional<RedcapColumn> ColumnOf(std::string_view header) {
  const std::string letters = LettersOf(header);
  for (const HeaderWord& word : kHeaderWords)
    if (letters.compare(0, word.beginning.size(), word.beginning) == 0) return word.column;
  return std::nullopt;
}

std::string WithoutBlanksAround(std::string_view cell) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = cell.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return std::string(cell.substr(first, cell.find_last_not_of(kBlanks) - first + 1));
}

}  // namespace

RedcapTable ReadRedcapTable(const std::string& path, std::vector<Note>& notes) {
  InputText input(path, std::nullopt, notes);
  if (input.mayBeInvalid()) input.Repair(notes);
  RecordScanner scanner(input.text(), FindDialect(input.text(), {}, path));
  std::vector<std::string_view> cells;
  RedcapTable table;
  if (!scanner.Next(cells)) return table;
  std::vector<std::optional<RedcapColumn>> columns;
  for (const std::string_view header : cells) columns.push_back(ColumnOf(header));
  const auto has = [&](RedcapColumn column) {
    return std::find(columns.begin(), columns.end(), column) != columns.end();
  };
  table.isDictionary = has(RedcapColumn::Name) && has(RedcapColumn::Type) && has(RedcapColumn::Label);
  if (!table.isDictionary) return table;
  while (true) {
    cells.clear();
    scanner.ReleaseTexts();
    if (!scanner.Next(cells)) break;
    RedcapRow row;
    row.line = scanner.line();
    for (std::size_t i = 0; i < std::min(cells.size(), columns.size()); ++i)
      if (columns[i]) row.cells[static_cast<std::size_t>(*columns[i])] = WithoutBlanksAround(cells[i]);
    const bool isEmpty = std::all_of(row.cells.begin(), row.cells.end(), [](const auto& cell) { return cell.empty(); });
    if (!isEmpty) table.rows.push_back(std::move(row));
  }
  if (const auto& quote = scanner.unclosedQuote())
    throw DataError(fmt::format("{}:{}: the quote that opens here is never closed; the file may have been cut off",
                                path, quote->line));
  return table;
}

}  // namespace runtime::data
