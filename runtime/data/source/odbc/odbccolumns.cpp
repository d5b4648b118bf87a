#include "runtime/data/source/odbc/odbccolumns.h"

#include <algorithm>
#include <string_view>

#include <sqlucode.h>

#include "runtime/data/lowerascii.h"
#include "runtime/data/source/odbc/widetext.h"

namespace runtime::data {
namespace {

constexpr SQLSMALLINT kLongestName = 4096;

std::string TypeName(const OdbcSession& session, const OdbcHandle& statement, std::size_t column) {
  return LowerAscii(ReadText(session.form(), [&](SQLPOINTER buffer, SQLSMALLINT bytes, SQLSMALLINT* length) {
    return (session.form() == TextForm::Narrow ? SQLColAttribute : SQLColAttributeW)(
        statement.get(), static_cast<SQLUSMALLINT>(column + 1), SQL_DESC_TYPE_NAME, buffer, bytes, length, nullptr);
  }));
}

SqlType TypeOf(SQLSMALLINT type) {
  switch (type) {
    case SQL_CHAR:
    case SQL_WCHAR:
      return SqlType::FixedText;
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER:
    case SQL_BIGINT:
      return SqlType::Whole;
    case SQL_DECIMAL:
    case SQL_NUMERIC:
      return SqlType::Decimal;
    case SQL_REAL:
      return SqlType::Single;
    case SQL_FLOAT:
    case SQL_DOUBLE:
      return SqlType::Double;
    case SQL_BIT:
      return SqlType::Boolean;
    case SQL_DATE:
    case SQL_TYPE_DATE:
      return SqlType::Date;
    case SQL_TIME:
    case SQL_TYPE_TIME:
      return SqlType::Time;
    case SQL_TIMESTAMP:
    case SQL_TYPE_TIMESTAMP:
      return SqlType::DateTime;
    default:
      return SqlType::Text;
  }
}

}  // namespace

bool IsTextType(SQLSMALLINT type) {
  switch (type) {
    case SQL_CHAR:
    case SQL_VARCHAR:
    case SQL_LONGVARCHAR:
    case SQL_WCHAR:
    case SQL_WVARCHAR:
    case SQL_WLONGVARCHAR:
      return true;
    default:
      // What a driver has beyond ODBC's types it turns into texts best; all of ODBC's own are known here.
      return TypeOf(type) == SqlType::Text && !IsBinaryType(type);
  }
}

bool IsBinaryType(SQLSMALLINT type) { return type == SQL_BINARY || type == SQL_VARBINARY || type == SQL_LONGVARBINARY; }

std::vector<OdbcColumn> DescribeColumns(const OdbcSession& session, const OdbcHandle& statement) {
  SQLSMALLINT count = 0;
  if (!SQL_SUCCEEDED(SQLNumResultCols(statement.get(), &count))) session.Fail(statement, OdbcStep::Asking);
  std::vector<OdbcColumn> columns(static_cast<std::size_t>(std::max<SQLSMALLINT>(count, 0)));
  std::string narrow(kLongestName, '\0');
  std::u16string wide(kLongestName, u'\0');
  for (std::size_t i = 0; i < columns.size(); ++i) {
    OdbcColumn& column = columns[i];
    const auto place = static_cast<SQLUSMALLINT>(i + 1);
    SQLSMALLINT length = 0;
    SQLULEN size = 0;
    SQLSMALLINT decimals = 0;
    SQLSMALLINT nullable = 0;
    const bool isNarrow = session.form() == TextForm::Narrow;
    const SQLRETURN result = isNarrow
                                 ? SQLDescribeCol(statement.get(), place, reinterpret_cast<SQLCHAR*>(narrow.data()),
                                                  kLongestName, &length, &column.type, &size, &decimals, &nullable)
                                 : SQLDescribeColW(statement.get(), place, reinterpret_cast<SQLWCHAR*>(wide.data()),
                                                   kLongestName, &length, &column.type, &size, &decimals, &nullable);
    if (!SQL_SUCCEEDED(result)) session.Fail(statement, OdbcStep::Asking);
    if (isNarrow)
      column.name = BeforeZero(narrow);
    else
      AppendUtf8(wide.data(), std::char_traits<char16_t>::length(wide.data()), column.name);
    column.size = static_cast<std::size_t>(size);
    column.decimals = decimals;
  }
  return columns;
}

SqlColumn SqlColumnOf(const OdbcSession& session, const OdbcHandle& statement, const OdbcColumn& described,
                      std::size_t column) {
  SqlColumn known;
  known.name = described.name;
  known.type = TypeOf(described.type);
  known.decimals = known.type == SqlType::Decimal ? described.decimals : 0;
  if (!session.isPostgres()) return known;
  const std::string type = TypeName(session, statement, column);
  if (type == "bool") known.type = SqlType::Boolean;
  if (type == "money") known.type = SqlType::Text;  // with its currency
  // What psqlODBC says of a numeric that was declared without digits.
  constexpr std::size_t kUndeclaredDigits = 28;
  constexpr int kUndeclaredDecimals = 6;
  if (known.type == SqlType::Decimal && described.size == kUndeclaredDigits &&
      described.decimals == kUndeclaredDecimals)
    known.decimals = -1;
  return known;
}

}  // namespace runtime::data
