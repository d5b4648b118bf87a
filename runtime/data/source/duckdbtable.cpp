#include "runtime/data/source/duckdbtable.h"

#ifdef CODEBOOK_HAVE_DUCKDB

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "runtime/data/open.h"
#include "runtime/data/source/duckdblibrary.h"
#include "runtime/data/source/duckdbsession.h"

namespace runtime::data {
namespace {

constexpr const char* kParquetTable = "read_parquet($1, hive_partitioning = false)";
// A column of the depth 1 is each value's own JSON, exactly as it is written.
constexpr const char* kJsonTable =
    "read_json($1, format = 'newline_delimited', records = 'true', maximum_depth = 1, sample_size = -1, "
    "hive_partitioning = false)";
constexpr int kDigitsOfDouble = 15;

std::string Identifier(const std::string& name) {
  std::string quoted = "\"";
  for (const char byte : name) quoted += byte == '"' ? "\"\"" : std::string(1, byte);
  return quoted + "\"";
}

/// How a column is asked for: one SQL expression for its numbers, one for its texts.
struct ColumnPlan {
  std::string asNumber;  // empty for texts
  std::string asText;
  bool mayNotFit = false;  // whole numbers or decimals that may need more digits than a double has
};

struct PlannedColumn {
  FieldType type;
  ColumnPlan plan;
};

PlannedColumn PlanParquet(const DuckDBColumn& column) {
  const std::string name = Identifier(column.name);
  const std::string text = name + "::VARCHAR";
  switch (column.type) {
    case DUCKDB_TYPE_BOOLEAN:
      return {FieldType::Boolean, {name + "::INTEGER::DOUBLE", text}};
    case DUCKDB_TYPE_TINYINT:
    case DUCKDB_TYPE_SMALLINT:
    case DUCKDB_TYPE_INTEGER:
    case DUCKDB_TYPE_UTINYINT:
    case DUCKDB_TYPE_USMALLINT:
    case DUCKDB_TYPE_UINTEGER:
      return {FieldType::Integer, {name + "::DOUBLE", text}};
    case DUCKDB_TYPE_BIGINT:
    case DUCKDB_TYPE_UBIGINT:
    case DUCKDB_TYPE_HUGEINT:
    case DUCKDB_TYPE_UHUGEINT:
      return {FieldType::Integer, {name + "::DOUBLE", text, true}};
    case DUCKDB_TYPE_FLOAT:
    case DUCKDB_TYPE_DOUBLE:
      return {FieldType::Number, {name + "::DOUBLE", text}};
    case DUCKDB_TYPE_DECIMAL:
      return {FieldType::Number, {name + "::DOUBLE", text, column.decimalWidth > kDigitsOfDouble}};
    case DUCKDB_TYPE_DATE:
      return {FieldType::Date, {"epoch(" + name + ")", text}};
    case DUCKDB_TYPE_TIMESTAMP:
    case DUCKDB_TYPE_TIMESTAMP_S:
    case DUCKDB_TYPE_TIMESTAMP_MS:
    case DUCKDB_TYPE_TIMESTAMP_NS:
    case DUCKDB_TYPE_TIMESTAMP_TZ:
      return {FieldType::DateTime, {"epoch(" + name + ")", "replace(" + text + ", ' ', 'T')"}};
    case DUCKDB_TYPE_TIME:
      return {FieldType::Time, {"epoch(" + name + ")", text}};
    case DUCKDB_TYPE_LIST:
    case DUCKDB_TYPE_ARRAY:
    case DUCKDB_TYPE_STRUCT:
    case DUCKDB_TYPE_MAP:
    case DUCKDB_TYPE_UNION:
      return {FieldType::String, {"", "to_json(" + name + ")::VARCHAR"}};
    default:
      return {FieldType::String, {"", text}};
  }
}

/// What the values of a JSON column have been so far.
struct JsonKinds {
  bool numbers = false;
  bool fractions = false;
  bool tooLong = false;  // whole numbers that a double cannot hold
  bool flags = false;
  bool texts = false;  // or lists and objects

  void Add(std::string_view json) {
    switch (json.empty() ? 'n' : json.front()) {
      case 'n':
        return;
      case 't':
      case 'f':
        flags = true;
        return;
      case '"':
      case '[':
      case '{':
        texts = true;
        return;
      default:
        break;
    }
    numbers = true;
    if (json.find_first_not_of("-0123456789") != std::string_view::npos)
      fractions = true;
    else if (!FitsDouble(json))
      tooLong = true;
  }

  FieldType Type() const {
    if (texts || tooLong || (flags && numbers)) return FieldType::String;
    if (flags) return FieldType::Boolean;
    if (numbers) return fractions ? FieldType::Number : FieldType::Integer;
    return FieldType::String;
  }
};

ColumnPlan PlanJson(const std::string& column, FieldType type) {
  const std::string text = "(" + Identifier(column) + " ->> '$')";
  if (type == FieldType::Boolean) return {"TRY_CAST(" + text + " AS BOOLEAN)::INTEGER::DOUBLE", text};
  if (type == FieldType::String) return {"", text};
  return {"TRY_CAST(" + text + " AS DOUBLE)", text};
}

class DuckDBTable : public TableSource {
 public:
  DuckDBTable(const std::string& path, TableFileKind kind, int threads)
      : fPath(path),
        fSession(std::filesystem::absolute(path).string(), threads),
        fTable(kind == TableFileKind::Parquet ? kParquetTable : kJsonTable) {
    const std::vector<DuckDBColumn> columns = fSession.Columns(fmt::format("SELECT * FROM {} LIMIT 0", fTable));
    if (columns.empty()) throw DataError(path + ": the file has no columns");
    if (kind == TableFileKind::Parquet)
      DescribeParquet(columns);
    else
      DescribeJson(columns);
  }

  void Read(const std::vector<bool>& asText, ColumnSink& sink) override;

 private:
  void DescribeParquet(const std::vector<DuckDBColumn>& columns);
  void DescribeJson(const std::vector<DuckDBColumn>& columns);
  void MakeTextOfWhatDoesNotFit();

  std::string fPath;
  DuckDBSession fSession;
  std::string fTable;
  std::vector<ColumnPlan> fPlans;
};

void DuckDBTable::DescribeParquet(const std::vector<DuckDBColumn>& columns) {
  for (const DuckDBColumn& column : columns) {
    PlannedColumn planned = PlanParquet(column);
    fColumns.push_back({column.name, planned.type});
    fPlans.push_back(std::move(planned.plan));
  }
  fSession.Run(fmt::format("SELECT count(*)::DOUBLE FROM {}", fTable), [&](const DuckDBChunk& chunk) {
    double count = 0;
    chunk.Doubles(0, &count);
    fRowCount = static_cast<std::int64_t>(count);
  });
  MakeTextOfWhatDoesNotFit();
}

void DuckDBTable::MakeTextOfWhatDoesNotFit() {
  std::vector<std::size_t> doubtful;
  std::vector<std::string> bounds;
  for (std::size_t column = 0; column < fPlans.size(); ++column) {
    if (!fPlans[column].mayNotFit) continue;
    doubtful.push_back(column);
    const std::string name = Identifier(fColumns[column].name);
    bounds.push_back(fmt::format("min({0})::VARCHAR, max({0})::VARCHAR", name));
  }
  if (doubtful.empty()) return;
  fSession.Run(fmt::format("SELECT {} FROM {}", fmt::join(bounds, ", "), fTable), [&](const DuckDBChunk& chunk) {
    for (std::size_t i = 0; i < doubtful.size(); ++i) {
      std::string_view least;
      std::string_view greatest;
      chunk.Texts(2 * i, &least);
      chunk.Texts(2 * i + 1, &greatest);
      if (FitsDouble(least) && FitsDouble(greatest)) continue;
      fColumns[doubtful[i]].type = FieldType::String;
      fPlans[doubtful[i]].asNumber.clear();
    }
  });
}

void DuckDBTable::DescribeJson(const std::vector<DuckDBColumn>& columns) {
  std::vector<JsonKinds> kinds(columns.size());
  std::vector<std::string> expressions;
  for (const DuckDBColumn& column : columns) expressions.push_back(Identifier(column.name) + "::VARCHAR");
  std::vector<std::string_view> texts;
  fSession.Run(fmt::format("SELECT {} FROM {}", fmt::join(expressions, ", "), fTable), [&](const DuckDBChunk& chunk) {
    texts.resize(chunk.rows());
    fRowCount += static_cast<std::int64_t>(chunk.rows());
    for (std::size_t column = 0; column < kinds.size(); ++column) {
      chunk.Texts(column, texts.data());
      for (const std::string_view json : texts) kinds[column].Add(json);
    }
  });
  for (std::size_t column = 0; column < columns.size(); ++column) {
    fColumns.push_back({columns[column].name, kinds[column].Type()});
    fPlans.push_back(PlanJson(columns[column].name, kinds[column].Type()));
  }
}

void DuckDBTable::Read(const std::vector<bool>& asText, ColumnSink& sink) {
  std::vector<std::string> expressions;
  std::vector<bool> isText(fPlans.size());
  for (std::size_t column = 0; column < fPlans.size(); ++column) {
    isText[column] = asText[column] || fPlans[column].asNumber.empty();
    expressions.push_back(isText[column] ? fPlans[column].asText : fPlans[column].asNumber);
  }
  std::vector<double> numbers;
  std::vector<std::string_view> texts;
  std::int64_t rows = 0;
  fSession.Run(fmt::format("SELECT {} FROM {}", fmt::join(expressions, ", "), fTable), [&](const DuckDBChunk& chunk) {
    const std::size_t count = chunk.rows();
    rows += static_cast<std::int64_t>(count);
    numbers.resize(count);
    texts.resize(count);
    for (std::size_t column = 0; column < fPlans.size(); ++column) {
      if (isText[column]) {
        chunk.Texts(column, texts.data());
        sink.Texts(column, texts.data(), count);
      } else {
        chunk.Doubles(column, numbers.data());
        sink.Numbers(column, numbers.data(), count);
      }
    }
    sink.EndRows(count);
  });
  if (rows != fRowCount)
    throw DataError(fmt::format("{}: {} rows were read of {}; the file changed or is damaged", fPath, rows, fRowCount));
}

}  // namespace

std::unique_ptr<TableSource> OpenDuckDBTable(const std::string& path, TableFileKind kind, int threads) {
  return std::make_unique<DuckDBTable>(path, kind, threads);
}

bool FitsDouble(std::string_view digits) {
  constexpr std::uint64_t kLargest = std::uint64_t{1} << 53;
  std::uint64_t number = 0;
  for (const char digit : digits) {
    if (digit < '0' || digit > '9') continue;
    number = number * 10 + static_cast<std::uint64_t>(digit - '0');
    if (number > kLargest) return false;
  }
  return true;
}

}  // namespace runtime::data

#endif
