#include "runtime/data/typing/typesteps.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/typing/inference.h"
#include "runtime/data/typing/missingentries.h"
#include "runtime/data/typing/quotedcell.h"
#include "runtime/data/typing/valuereader.h"

namespace runtime::data {

namespace {

constexpr std::size_t kColumnsNamed = 3;
constexpr std::size_t kOddTexts = 3;             // different ones that may stand among a column's values
constexpr std::int64_t kCellsForAnOddOne = 100;  // of a column, at least

constexpr std::array<std::string_view, 27> kMissingWords = {
    "NA",  "N/A",  "#N/A", "<NA>", "n/a",    "na",      "n.a.",    "N.A.",    "NaN",
    "nan", "null", "NULL", "Null", "#NULL!", "None",    "none",    "NONE",    "nil",
    "-",   "--",   ".",    "..",   "?",      "missing", "Missing", "MISSING", "(null)"};

bool IsNumeric(FieldType type) { return type == FieldType::Integer || type == FieldType::Number; }

bool IsBlank(std::string_view text) { return Trimmed(text).empty(); }

/// Calls `take` with the row (from 0) and the code of each cell until it gives false.
template <class Take>
void ForEachCode(const StoredColumn& column, Take take) {
  std::vector<std::byte> buffer;
  std::int64_t row = 0;
  for (std::size_t group = 0; group < column.groups->size(); ++group) {
    const ColumnView view = column.groups->View(group, column.groups->Load(group, buffer), column.column, 0);
    const auto* const codes = static_cast<const std::uint32_t*>(view.cells);
    for (std::size_t i = 0; i < column.groups->rowsOf(group); ++i)
      if (!take(row++, codes[i])) return;
  }
}

std::int64_t FirstRowOf(const StoredColumn& column, std::uint32_t code) {
  std::int64_t found = 0;
  ForEachCode(column, [&](std::int64_t row, std::uint32_t cell) {
    found = row;
    return cell != code;
  });
  return found;
}

std::vector<TypeStep> StepsToText(const StoredColumn& column, const ColumnPlan& plan) {
  const MissingEntries missing(plan.missing, plan.dialect);
  std::vector<TypeStep> steps;
  FieldType type = FieldType::Inferred;
  const auto add = [&](FieldType ruledOut, std::uint32_t code) {
    steps.push_back({ruledOut, FirstRowOf(column, code) + 1, "", std::string(column.strings->Text(code))});
  };
  // Codes count in the order in which the texts appear.
  for (std::uint32_t code = 0; code < column.strings->Size(); ++code) {
    const std::string_view text = column.strings->Text(code);
    if (IsBlank(text) || missing.Find(text) != nullptr) continue;
    const FieldType next = InferredTypeOf(Trimmed(text));
    if (next == type || (type == FieldType::Number && next == FieldType::Integer)) continue;
    if (type == FieldType::Integer && next == FieldType::Number) {
      add(type, code);
    } else if (type != FieldType::Inferred || next == FieldType::String) {
      add(type, code);
      return steps;
    } else if (next == FieldType::Number) {
      add(FieldType::Integer, code);
    }
    type = next;
  }
  return steps;
}

/// What stands among the values of a column that is text.
struct StrayTexts {
  FieldType type = FieldType::Inferred;  // of the values; Inferred: there are none, or they are of several types
  std::vector<std::uint32_t> words;      // codes of those that often mean missing
  std::vector<std::uint32_t> others;     // at most kOddTexts
};

StrayTexts FindStrayTexts(const StringTable& strings, const MissingEntries& missing) {
  StrayTexts stray;
  for (std::uint32_t code = 0; code < strings.Size(); ++code) {
    const std::string_view text = strings.Text(code);
    if (IsBlank(text) || missing.Find(text) != nullptr) continue;
    const FieldType type = InferredTypeOf(Trimmed(text));
    if (type == FieldType::String) {
      std::vector<std::uint32_t>& texts = OftenMeansMissing(Trimmed(text)) ? stray.words : stray.others;
      if (stray.others.size() == kOddTexts && &texts == &stray.others) return {};
      texts.push_back(code);
      continue;
    }
    if (stray.type == FieldType::Inferred || stray.type == type) {
      stray.type = type;
      continue;
    }
    if (!IsNumeric(stray.type) || !IsNumeric(type)) return {};
    stray.type = FieldType::Number;
  }
  return stray;
}

struct CountedTexts {
  std::int64_t cells = 0;
  std::int64_t firstRow = 0;  // from 1
  std::uint32_t firstCode = 0;
};

CountedTexts Count(const StoredColumn& column, const std::vector<std::uint32_t>& codes) {
  CountedTexts counted;
  ForEachCode(column, [&](std::int64_t row, std::uint32_t code) {
    if (std::find(codes.begin(), codes.end(), code) == codes.end()) return true;
    if (counted.cells++ == 0) {
      counted.firstRow = row + 1;
      counted.firstCode = code;
    }
    return true;
  });
  return counted;
}

const char* ValuesInWords(FieldType type) {
  switch (type) {
    case FieldType::Integer:
      return "whole numbers";
    case FieldType::Number:
      return "numbers";
    case FieldType::Boolean:
      return "truth values";
    case FieldType::Date:
      return "dates";
    case FieldType::DateTime:
      return "dates with time";
    default:
      return "times";
  }
}

std::string Cells(std::int64_t count) { return count == 1 ? "1 cell" : fmt::format("{} cells", count); }

bool LooksLikeLocalDate(std::string_view text) {
  std::size_t parts = 1;
  char separator = '\0';
  bool afterDigit = false;
  for (const char c : text) {
    if (IsDigit(c)) {
      afterDigit = true;
      continue;
    }
    if (!afterDigit || (c != '/' && c != '.' && c != '-') || (separator != '\0' && c != separator)) return false;
    separator = c;
    afterDigit = false;
    ++parts;
  }
  return parts == 3 && afterDigit;
}

/// Columns that stay text for the same reason: the first few, and how many more there are.
class StrayColumns {
 public:
  /// Whether the next column will be named; what there is to say of one that is not need not be found out.
  bool NamesNext() const { return fCount < kColumnsNamed; }
  void Add(const std::string& column, const std::string& holds) {
    if (NamesNext()) fText += fmt::format("{}{} (holds {})", fText.empty() ? "" : ", ", column, holds);
    ++fCount;
  }
  std::size_t count() const { return fCount; }
  void Report(const std::string& source, const std::string& advice, std::vector<Note>& notes) const {
    if (fCount == 0) return;
    std::string text = fCount == 1 ? fmt::format("{}: column {} stays text", source, fText)
                                   : fmt::format("{}: {} columns stay text: {}", source, fCount, fText);
    if (fCount > kColumnsNamed) text += fmt::format(" and {} more", fCount - kColumnsNamed);
    notes.push_back({false, text + "; " + advice});
  }

 private:
  std::size_t fCount = 0;
  std::string fText;
};

/// A column without a header is known by its number.
std::string NameOf(const std::string& header, std::size_t column) {
  return header.empty() ? fmt::format("number {}", column + 1) : QuotedCell(header);
}

/// The columns that only words for a missing value make texts.
class WordColumns {
 public:
  void Add(const TypedColumn& column, const std::string& name, const StrayTexts& stray) {
    for (const std::uint32_t code : stray.words) {
      const std::string word(Trimmed(column.column.strings->Text(code)));
      if (std::find(fWords.begin(), fWords.end(), word) == fWords.end()) fWords.push_back(word);
    }
    std::string holds;
    if (fColumns.NamesNext()) {
      const CountedTexts counted = Count(column.column, stray.words);
      holds = fmt::format("{} and {} in {}, first in row {}", ValuesInWords(stray.type),
                          QuotedCell(column.column.strings->Text(counted.firstCode)), Cells(counted.cells),
                          counted.firstRow);
    }
    fColumns.Add(name, holds);
  }

  void Report(const std::string& source, std::vector<Note>& notes) const {
    std::string list = "\"\"";
    for (const std::string& word : fWords) list += ", " + QuotedCell(word);
    fColumns.Report(source,
                    fmt::format("if {} that a value is missing, say so in a dictionary: \"missingValues\": [{}]",
                                fWords.size() == 1 ? "this means" : "these mean", list),
                    notes);
  }

 private:
  StrayColumns fColumns;
  std::vector<std::string> fWords;
};

/// The columns that a few cells make texts.
class OddColumns {
 public:
  void Add(const TypedColumn& column, const std::string& name, const StrayTexts& stray) {
    const CountedTexts counted = Count(column.column, stray.others);
    if (counted.cells * kCellsForAnOddOne > column.facts.rows - column.facts.blankCells) return;
    fColumns.Add(name, fmt::format("{} but for {}: {} in row {}", ValuesInWords(stray.type), Cells(counted.cells),
                                   QuotedCell(column.column.strings->Text(counted.firstCode)), counted.firstRow));
    fAllInFirstRow = fAllInFirstRow && counted.firstRow == 1 && counted.cells == 1;
  }

  void Report(const std::string& source, std::vector<Note>& notes) const {
    const bool mayBeHeader = fAllInFirstRow && fColumns.count() > 1;
    fColumns.Report(source,
                    mayBeHeader
                        ? "if row 1 belongs to the header, say so in a dictionary's dialect: \"headerRows\": [1, 2]"
                        : "mend what does not fit, or declare the type in a dictionary, which makes it missing "
                          "and says so",
                    notes);
  }

 private:
  StrayColumns fColumns;
  bool fAllInFirstRow = true;
};

}  // namespace

std::vector<TypeStep> StepsToType(const TypedColumn& column, const ColumnPlan& plan) {
  const ColumnFacts& facts = column.facts;
  if (!facts.inferred) return {};
  if (facts.type == FieldType::Number && facts.firstFractionRow > 0)
    return {{FieldType::Integer, facts.firstFractionRow, "", facts.firstFraction}};
  if (!facts.isString() || facts.blankCells == facts.rows) return {};
  return StepsToText(column.column, plan);
}

std::string WhyNot(std::string_view cell) {
  cell = Trimmed(cell);
  if (OftenMeansMissing(cell)) return "a word that often stands for a missing value";
  NumberReading reading;
  NumberShape shape;
  if (ReadNumberText(cell, reading, shape)) {
    if (shape.leadingZero) return "a zero at its front, which a number would not keep";
    if (shape.hasPlus) return "a plus sign, which a number would not keep";
    if (shape.hasPoint && shape.fractionDigits == 0) return "a point with no digits behind it";
    if (!shape.hasPoint && !shape.hasExponent && !reading.isExact) return "more digits than a number keeps";
    return "";
  }
  if (LooksLikeLocalDate(cell) && !ReadAsInferred(FieldType::Date, cell, reading))
    return "perhaps a date, but in no order that is certain";
  std::string withPoint(cell);
  std::replace(withPoint.begin(), withPoint.end(), ',', '.');
  if (withPoint != cell && ReadNumberText(withPoint, reading, shape))
    return "a comma, which may stand before decimals or between thousands";
  return "";
}

bool OftenMeansMissing(std::string_view cell) {
  return std::find(kMissingWords.begin(), kMissingWords.end(), cell) != kMissingWords.end();
}

void NoteStrayCells(const std::string& source, const std::vector<TypedColumn>& columns,
                    const std::vector<ColumnPlan>& plans, std::vector<Note>& notes,
                    const std::function<bool(std::size_t column)>& isLookedAt) {
  WordColumns ofWords;
  OddColumns ofOthers;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const TypedColumn& column = columns[i];
    if (isLookedAt && !isLookedAt(i)) continue;
    if (!column.facts.inferred || !column.facts.isString() || column.facts.blankCells == column.facts.rows) continue;
    const StrayTexts stray = FindStrayTexts(*column.column.strings, MissingEntries(plans[i].missing, plans[i].dialect));
    if (stray.type == FieldType::Inferred) continue;
    if (!stray.others.empty())
      ofOthers.Add(column, NameOf(column.facts.header, i), stray);
    else if (!stray.words.empty())
      ofWords.Add(column, NameOf(column.facts.header, i), stray);
  }
  ofWords.Report(source, notes);
  ofOthers.Report(source, notes);
}

}  // namespace runtime::data
