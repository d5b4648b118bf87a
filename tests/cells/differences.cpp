#include "tests/cells/differences.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include <fmt/format.h>

namespace cells {

namespace {

std::string Shown(std::string_view text) {
  constexpr std::size_t kMost = 60;
  std::string shown;
  for (const char byte : text.substr(0, kMost))
    shown += static_cast<unsigned char>(byte) < 0x20 ? fmt::format("\\x{:02x}", static_cast<unsigned>(byte))
                                                     : std::string(1, byte);
  return text.size() > kMost ? shown + "..." : shown;
}

std::string Shown(const Row& row) {
  std::string shown;
  for (const std::string& cell : row) shown += "[" + Shown(cell) + "]";
  return shown;
}

/// Cells of a record, made as many as there are columns.
std::vector<RawCell> Fitted(std::vector<RawCell> cells, std::size_t columns) {
  cells.resize(columns);
  return cells;
}

bool IsSame(const std::vector<RawCell>& cells, const Row& row) {
  return std::equal(cells.begin(), cells.end(), row.begin(), row.end(),
                    [](const RawCell& cell, const std::string& text) { return cell.text == text; });
}

class Walk {
 public:
  Walk(std::string_view text, const Table& ours, const Table& duckdb, const runtime::data::CsvDialect& dialect)
      : fText(text),
        fRecords(WithoutBlankLines(CutRecords(text, dialect))),
        fOurs(ours.rows),
        fTheirs(duckdb.rows),
        fDialect(dialect),
        fHasCrLf(text.find("\r\n") != std::string_view::npos) {}

  Comparison Run() {
    if (fRecords.size() != fOurs.size()) {
      fResult.unexplained = fmt::format("{} rows of ours, but {} records", fOurs.size(), fRecords.size());
      return fResult;
    }
    for (; fRow < fOurs.size() && fResult.unexplained.empty() && !fResult.ranOff; ++fRow) PassRow();
    if (fResult.unexplained.empty() && !fResult.ranOff && fTheirRow < fTheirs.size())
      fResult.unexplained = fmt::format("row {} of DuckDB's is none of ours: {}", fTheirRow, Shown(fTheirs[fTheirRow]));
    return fResult;
  }

 private:
  void Note(Difference difference) { ++fResult.count[static_cast<std::size_t>(difference)]; }

  void PassRow() {
    const Row& ours = fOurs[fRow];
    const std::vector<RawCell> cells = Fitted(fRecords[fRow].cells, ours.size());
    if (!IsSame(cells, ours)) {
      fMayHaveLostTrack = false;  // whatever DuckDB does
      return Unexplained("ours is not what the record says");
    }
    fMayHaveLostTrack = fMayHaveLostTrack || IsBehindLoneCr() ||
                        std::any_of(fRecords[fRow].cells.begin(), fRecords[fRow].cells.end(),
                                    [](const RawCell& cell) { return cell.quoteBehindBlanks; });
    if (fTheirRow < fTheirs.size() && fTheirs[fTheirRow] == ours) {
      ++fTheirRow;
      return;
    }
    if (ours.size() == 1 && ours[0].empty()) return Note(Difference::EmptyRecordOfOneColumn);
    if (fTheirRow == fTheirs.size()) return Unexplained("DuckDB has no such row");
    const std::optional<std::string> raw = WithoutCharacterBehindCr();
    if (raw && !AreOnlyOddCellsDifferent(cells))
      PassRowWithoutCharacter(*raw);
    else
      PassOddCells(cells);
    ++fTheirRow;
  }

  /// Of the record.
  std::string_view TextBefore() const {
    return fText.substr(0, static_cast<std::size_t>(fRecords[fRow].raw.data() - fText.data()));
  }

  bool IsBehindLoneCr() const { return fHasCrLf && (TextBefore().ends_with('\r') || TextBefore().ends_with("\r\r\n")); }

  /// What DuckDB takes for the record, the character behind a CR being left out: its own first one, or one of a line
  /// end, so that the next is not passed over as one. Nothing when there is no such CR.
  std::optional<std::string> WithoutCharacterBehindCr() const {
    const std::string_view raw = fRecords[fRow].raw;
    if (raw.empty() || !IsBehindLoneCr()) return std::nullopt;
    const std::string_view before = TextBefore();
    for (const std::string_view lineEnds : {"\r\r\n", "\r\r\r"})
      if (before.ends_with(lineEnds) && fTheirs[fTheirRow].front().starts_with(lineEnds.back()))
        return lineEnds.back() + std::string(raw);
    return std::string(raw.substr(1));
  }

  void PassRowWithoutCharacter(const std::string& raw) {
    Note(Difference::LoneCarriageReturn);
    // A quote that has come to the front, or is there no more, turns what is in quotes and what is not.
    if (fRecords[fRow].raw.front() == fDialect.quote || raw.starts_with(fDialect.quote)) {
      fResult.ranOff = true;
      return;
    }
    if (raw.empty()) return PassRowThatIsBlankNow();
    if (raw.front() != '\n' && raw.front() != '\r')
      return PassOddCells(Fitted(CutRecords(raw, fDialect).front().cells, fOurs[fRow].size()));
    std::vector<RawCell> cells = Fitted(fRecords[fRow].cells, fOurs[fRow].size());
    cells.front().text.insert(0, 1, raw.front());
    PassOddCells(cells);
  }

  /// DuckDB left the blank line out, or made it a row.
  void PassRowThatIsBlankNow() {
    const Row& theirs = fTheirs[fTheirRow];
    const bool isRow = std::all_of(theirs.begin(), theirs.end(), [](const std::string& text) { return text.empty(); });
    if (!isRow) --fTheirRow;
  }

  bool AreOnlyOddCellsDifferent(const std::vector<RawCell>& cells) const {
    for (std::size_t column = 0; column < cells.size(); ++column)
      if (cells[column].text != fTheirs[fTheirRow][column])
        return cells[column].textBehindQuote || cells[column].quoteBehindBlanks;
    return true;
  }

  void PassOddCells(const std::vector<RawCell>& cells) {
    const Row& theirs = fTheirs[fTheirRow];
    for (std::size_t column = 0; column < cells.size(); ++column) {
      const RawCell& cell = cells[column];
      if (cell.text == theirs[column]) continue;
      if (cell.textBehindQuote) {
        Note(Difference::TextBehindQuote);
        fResult.ranOff = cell.quoteBehindQuote;
        if (fResult.ranOff) return;
      } else if (cell.quoteBehindBlanks) {
        Note(Difference::QuoteBehindBlanks);
        if (IsWholeWithoutBlanks(cell, theirs[column])) continue;
        fResult.ranOff = true;
        return;
      } else if (IsWithoutStrayQuotes(cell, theirs[column])) {
        Note(Difference::StrayQuote);
      } else {
        return Unexplained(fmt::format("column {} differs", column));
      }
    }
  }

  /// Whether the cell, its leading blanks left out, is a quoted cell of that text and no more.
  bool IsWholeWithoutBlanks(const RawCell& cell, const std::string& text) const {
    const std::vector<RawRecord> cut = CutRecords(cell.raw.substr(cell.raw.find_first_not_of(' ')), fDialect);
    return cut.size() == 1 && cut[0].cells.size() == 1 &&
           (cut[0].cells[0].textBehindQuote || cut[0].cells[0].text == text);
  }

  bool IsWithoutStrayQuotes(const RawCell& cell, std::string_view text) const {
    std::string without = cell.text;
    std::erase(without, fDialect.quote);
    return cell.raw.front() != fDialect.quote && without == text;
  }

  void Unexplained(const std::string& what) {
    if (fMayHaveLostTrack) {
      fResult.ranOff = true;
      return;
    }
    fResult.unexplained =
        fmt::format("row {}: {}\n  record {}\n  ours   {}\n  DuckDB {}", fRow, what, Shown(fRecords[fRow].raw),
                    Shown(fOurs[fRow]), fTheirRow < fTheirs.size() ? Shown(fTheirs[fTheirRow]) : "-");
  }

  std::string_view fText;
  const std::vector<RawRecord> fRecords;
  const std::vector<Row>& fOurs;
  const std::vector<Row>& fTheirs;
  const runtime::data::CsvDialect& fDialect;
  bool fHasCrLf;
  bool fMayHaveLostTrack = false;  // DuckDB: behind a CR alone or a quote behind blanks
  std::size_t fRow = 0;
  std::size_t fTheirRow = 0;
  Comparison fResult;
};

}  // namespace

bool Comparison::isEqual() const {
  return unexplained.empty() && std::all_of(count.begin(), count.end(), [](std::size_t rows) { return rows == 0; });
}

Comparison Compare(std::string_view text, const Table& ours, const Table& duckdb,
                   const runtime::data::CsvDialect& dialect) {
  return Walk(text, ours, duckdb, dialect).Run();
}

}  // namespace cells
