// The rows of an answer, fetched through ODBC.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sql.h>
#include <sqlext.h>

#include "runtime/data/source/odbc/odbcsession.h"
#include "runtime/data/source/sql/sqlconnection.h"

namespace runtime::data {

struct OdbcRowsOptions {
  CellFetching fetching = CellFetching::Pieces;
  std::size_t mostCharacters = 256;  // of a cell's buffer; longer ones cost a call of their own
};

class OdbcRows : public SqlRows {
 public:
  /// Of a statement that has run. The session must outlive them.
  OdbcRows(const OdbcSession& session, std::unique_ptr<OdbcHandle> statement, const OdbcRowsOptions& options);
  ~OdbcRows() override;
  OdbcRows(const OdbcRows&) = delete;
  OdbcRows& operator=(const OdbcRows&) = delete;

  bool Next() override;
  std::optional<std::string_view> Text(std::size_t column) override;

  const OdbcHandle& statement() const { return *fStatement; }

 private:
  /// What a column's cells are fetched as.
  enum class Form { Bytes, Wide, Binary, Single, Double };
  struct Column {
    Form form = Form::Bytes;
    std::size_t width = 0;  // bytes of a cell's buffer
    std::vector<char> buffer;
    std::vector<SQLLEN> lengths;  // one a row of the block
    std::string text;
    bool isNull = false;  // of the cell that `text` is, when it came in pieces
  };

  static SQLSMALLINT TargetOf(Form form);
  Form FormOf(SQLSMALLINT type) const;
  void Bind();
  std::optional<std::string_view> BoundText(std::size_t place);
  /// Fetches a cell whatever its length as it comes, into fWhole. False for NULL.
  bool FetchWhole(std::size_t place);
  void Convert(Form form, const char* bytes, std::size_t length, std::string& text) const;
  void CheckBeginning(const Column& column, const char* buffered) const;

  const OdbcSession& fSession;
  std::unique_ptr<OdbcHandle> fStatement;
  bool fIsBound;
  std::vector<Column> fColumns;
  std::size_t fBlockRows = 1;
  std::vector<SQLUSMALLINT> fStates;  // of the block's rows
  SQLULEN fFetched = 0;
  std::size_t fRow = 0;           // in the block
  std::size_t fColumnsTaken = 0;  // of the row, where they come in pieces
  std::string fWhole;
};

}  // namespace runtime::data
