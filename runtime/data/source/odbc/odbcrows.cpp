#include "runtime/data/source/odbc/odbcrows.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include <fmt/format.h>
#include <sqlucode.h>

#include "runtime/data/csv/encoding.h"
#include "runtime/data/open.h"
#include "runtime/data/source/odbc/odbccolumns.h"
#include "runtime/data/source/odbc/widetext.h"

namespace runtime::data {
namespace {

constexpr std::size_t kBlockBytes = std::size_t{2} << 20;
constexpr std::size_t kMostRowsOfBlock = 1000;
constexpr std::size_t kPieceBytes = std::size_t{1} << 16;

std::size_t UnitOf(SQLSMALLINT target) {
  if (target == SQL_C_WCHAR) return sizeof(char16_t);
  return 1;
}

/// Bytes that end a text in a buffer.
std::size_t TerminatorOf(SQLSMALLINT target) { return target == SQL_C_BINARY ? 0 : UnitOf(target); }

/// Bytes of a piece that has `room` for them and is not the last: drivers may end it before a character that would be
/// cut, at most three units earlier, with a terminator. A BLOB has none.
std::size_t GivenOf(const char* piece, std::size_t room, std::size_t unit, bool hasTerminator) {
  constexpr std::size_t kMostMissing = 3;
  if (!hasTerminator) return room;
  for (std::size_t given = room - kMostMissing * unit; given < room; given += unit)
    if (std::string_view(piece + given, unit) == std::string_view("\0\0", unit)) return given;
  return room;
}

void AppendHex(const char* bytes, std::size_t count, std::string& text) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  for (std::size_t i = 0; i < count; ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0xFU];
  }
}

}  // namespace

OdbcRows::OdbcRows(const OdbcSession& session, std::unique_ptr<OdbcHandle> statement, const OdbcRowsOptions& options)
    : fSession(session), fStatement(std::move(statement)), fIsBound(options.fetching != CellFetching::Pieces) {
  constexpr std::size_t kFewestCharacters = 32;
  std::size_t rowBytes = 1;
  for (const OdbcColumn& described : DescribeColumns(session, *fStatement)) {
    Column& column = fColumns.emplace_back();
    column.form = FormOf(described.type);
    const SQLSMALLINT target = TargetOf(column.form);
    std::size_t characters = std::max(described.size, kFewestCharacters);
    if (described.size == 0 || characters > options.mostCharacters) characters = options.mostCharacters;
    column.width = (characters + 1) * UnitOf(target);
    if (column.form == Form::Double || column.form == Form::Single) column.width = sizeof(double);
    rowBytes += column.width + sizeof(SQLLEN);
  }
  if (options.fetching == CellFetching::BoundBlock)
    fBlockRows = std::clamp<std::size_t>(kBlockBytes / rowBytes, 1, kMostRowsOfBlock);
  if (fIsBound) Bind();
}

OdbcRows::~OdbcRows() { SQLFreeStmt(fStatement->get(), SQL_CLOSE); }

SQLSMALLINT OdbcRows::TargetOf(Form form) {
  switch (form) {
    case Form::Wide:
      return SQL_C_WCHAR;
    case Form::Binary:
      return SQL_C_BINARY;
    case Form::Single:
      return SQL_C_FLOAT;
    case Form::Double:
      return SQL_C_DOUBLE;
    case Form::Bytes:
      break;
  }
  return SQL_C_CHAR;
}

OdbcRows::Form OdbcRows::FormOf(SQLSMALLINT type) const {
  if (IsBinaryType(type)) return Form::Binary;
  if (IsTextType(type)) return fSession.form() == TextForm::Wide ? Form::Wide : Form::Bytes;
  if (fSession.hasTextsOfNumbers()) return Form::Bytes;
  // A driver's own text of such a number may have fewer digits than it needs.
  if (type == SQL_REAL) return Form::Single;
  return type == SQL_DOUBLE || type == SQL_FLOAT ? Form::Double : Form::Bytes;
}

void OdbcRows::Bind() {
  const SQLHANDLE statement = fStatement->get();
  if (fBlockRows > 1 &&
      !SQL_SUCCEEDED(SQLSetStmtAttr(statement, SQL_ATTR_ROW_ARRAY_SIZE, OdbcNumber(fBlockRows), SQL_IS_UINTEGER)))
    fBlockRows = 1;
  fStates.resize(fBlockRows);
  if (fBlockRows > 1) {
    SQLSetStmtAttr(statement, SQL_ATTR_ROW_STATUS_PTR, fStates.data(), SQL_IS_POINTER);
    SQLSetStmtAttr(statement, SQL_ATTR_ROWS_FETCHED_PTR, &fFetched, SQL_IS_POINTER);
  }
  for (std::size_t i = 0; i < fColumns.size(); ++i) {
    Column& column = fColumns[i];
    column.buffer.resize(column.width * fBlockRows);
    column.lengths.resize(fBlockRows);
    if (!SQL_SUCCEEDED(SQLBindCol(statement, static_cast<SQLUSMALLINT>(i + 1), TargetOf(column.form),
                                  column.buffer.data(), static_cast<SQLLEN>(column.width), column.lengths.data())))
      fSession.Fail(*fStatement, OdbcStep::Asking);
  }
}

bool OdbcRows::Next() {
  if (fRow + 1 < fFetched) {
    ++fRow;
    return true;
  }
  const SQLRETURN result = SQLFetch(fStatement->get());
  if (result == SQL_NO_DATA) {
    fFetched = 0;
    return false;
  }
  if (!SQL_SUCCEEDED(result)) fSession.Fail(*fStatement, OdbcStep::Reading);
  if (fBlockRows == 1) fFetched = 1;
  if (fFetched == 0) return false;
  for (std::size_t row = 0; row < fFetched && fBlockRows > 1; ++row)
    if (fStates[row] == SQL_ROW_ERROR) fSession.Fail(*fStatement, OdbcStep::Reading);
  fRow = 0;
  fColumnsTaken = 0;
  return true;
}

std::optional<std::string_view> OdbcRows::Text(std::size_t column) {
  if (fIsBound) return BoundText(column);
  for (; fColumnsTaken <= column; ++fColumnsTaken) {
    Column& next = fColumns[fColumnsTaken];
    next.isNull = !FetchWhole(fColumnsTaken);
    next.text.clear();
    if (!next.isNull) Convert(next.form, fWhole.data(), fWhole.size(), next.text);
  }
  if (fColumns[column].isNull) return std::nullopt;
  return fColumns[column].text;
}

std::optional<std::string_view> OdbcRows::BoundText(std::size_t place) {
  Column& column = fColumns[place];
  const SQLLEN length = column.lengths[fRow];
  if (length == SQL_NULL_DATA) return std::nullopt;
  const char* const bytes = column.buffer.data() + fRow * column.width;
  const std::size_t room = column.width - TerminatorOf(TargetOf(column.form));
  column.text.clear();
  if (column.form == Form::Single || column.form == Form::Double) {
    Convert(column.form, bytes, column.width, column.text);
  } else if (length >= 0 && static_cast<std::size_t>(length) <= room) {
    // The commonest cell needs no copy.
    const std::string_view text(bytes, static_cast<std::size_t>(length));
    if (column.form == Form::Bytes && FirstInvalidUtf8(text) == std::string_view::npos) return text;
    Convert(column.form, bytes, text.size(), column.text);
  } else {
    if (fBlockRows > 1 && !SQL_SUCCEEDED(SQLSetPos(fStatement->get(), static_cast<SQLSETPOSIROW>(fRow + 1),
                                                   SQL_POSITION, SQL_LOCK_NO_CHANGE)))
      fSession.Fail(*fStatement, OdbcStep::Reading);
    if (!FetchWhole(place)) fWhole.clear();
    CheckBeginning(column, bytes);
    Convert(column.form, fWhole.data(), fWhole.size(), column.text);
  }
  return column.text;
}

/// A driver that gives another cell than it began to give must not go unnoticed.
void OdbcRows::CheckBeginning(const Column& column, const char* buffered) const {
  const std::size_t unit = UnitOf(TargetOf(column.form));
  const std::size_t room = column.width - TerminatorOf(TargetOf(column.form));
  std::size_t given = 0;
  if (column.form == Form::Binary)
    given = room;
  else
    while (given + unit <= room && std::string_view(buffered + given, unit) != std::string_view("\0\0", unit))
      given += unit;
  if (fWhole.size() < given || std::memcmp(fWhole.data(), buffered, given) != 0)
    throw DataError(
        fmt::format("{}: the driver gives two values for one cell of row; it cannot be relied on", fSession.name()));
}

bool OdbcRows::FetchWhole(std::size_t place) {
  const Column& column = fColumns[place];
  const SQLSMALLINT target = TargetOf(column.form);
  const bool isNumber = column.form == Form::Single || column.form == Form::Double;
  fWhole.clear();
  while (true) {
    const std::size_t before = fWhole.size();
    fWhole.resize(before + kPieceBytes);
    SQLLEN length = 0;
    const SQLRETURN result = SQLGetData(fStatement->get(), static_cast<SQLUSMALLINT>(place + 1), target,
                                        fWhole.data() + before, static_cast<SQLLEN>(kPieceBytes), &length);
    if (result == SQL_NO_DATA) {  // the pieces ended with the last one's room
      fWhole.resize(before);
      return true;
    }
    if (!SQL_SUCCEEDED(result)) fSession.Fail(*fStatement, OdbcStep::Reading);
    if (length == SQL_NULL_DATA) return false;
    if (isNumber) {
      fWhole.resize(sizeof(double));
      return true;
    }
    const std::size_t room = kPieceBytes - TerminatorOf(target);
    const bool hasMore = length == SQL_NO_TOTAL || static_cast<std::size_t>(length) > room;
    fWhole.resize(before + (hasMore ? GivenOf(fWhole.data() + before, room, UnitOf(target), TerminatorOf(target) > 0)
                                    : static_cast<std::size_t>(length)));
    if (!hasMore) return true;
  }
}

void OdbcRows::Convert(Form form, const char* bytes, std::size_t length, std::string& text) const {
  switch (form) {
    case Form::Bytes: {
      const std::string_view given(bytes, length);
      Replacements unused;
      if (FirstInvalidUtf8(given) == std::string_view::npos)
        text += given;
      else
        text += RepairedUtf8(given, unused);
      return;
    }
    case Form::Wide: {
      // Buffers of cells begin at even places.
      AppendUtf8(reinterpret_cast<const char16_t*>(bytes), length / sizeof(char16_t), text);
      return;
    }
    case Form::Binary:
      AppendHex(bytes, length, text);
      return;
    case Form::Single: {
      float number = 0.0F;
      std::memcpy(&number, bytes, sizeof number);
      text += fmt::format("{}", number);
      return;
    }
    case Form::Double: {
      double number = 0.0;
      std::memcpy(&number, bytes, sizeof number);
      text += fmt::format("{}", number);
    }
  }
}

}  // namespace runtime::data
