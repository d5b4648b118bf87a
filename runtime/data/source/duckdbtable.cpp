#include "runtime/data/source/duckdbtable.h"

#ifdef CODEBOOK_HAVE_DUCKDB

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "runtime/data/compression/packing.h"
#include "runtime/data/csv/inputtext.h"
#include "runtime/data/dictionary/embeddeddictionary.h"
#include "runtime/data/open.h"
#include "runtime/data/source/duckdblibrary.h"
#include "runtime/data/source/duckdbsession.h"
#include "runtime/data/source/nativecells.h"
#include "runtime/data/typing/quotedcell.h"
#include "runtime/machine/spillfile.h"

namespace runtime::data {
namespace {

constexpr const char* kParquetTable = "read_parquet({}, hive_partitioning = false, union_by_name = {})";
// A column of the depth 1 is each value's own JSON, exactly as it is written.
constexpr const char* kJsonTable =
    "read_json({}, format = 'newline_delimited', records = 'true', maximum_depth = 1, sample_size = -1, "
    "hive_partitioning = false, union_by_name = {})";
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
  NativeNumbers native{.type = DUCKDB_TYPE_DOUBLE};  // of asNumber
  bool mayNotFit = false;  // whole numbers or decimals that may need more digits than a double has
};

struct PlannedColumn {
  FieldType type;
  ColumnPlan plan;
};

/// Of dates and moments: so many units make a second, and two numbers stand for infinity.
NativeNumbers Moments(double unitsOfSecond) {
  return {.type = DUCKDB_TYPE_BIGINT, .divisor = unitsOfSecond, .hasInfinity = true};
}

/// A DECIMAL is a whole number, in the smallest type of its digits, over a power of ten.
PlannedColumn PlanDecimal(const DuckDBColumn& column, const std::string& name, const std::string& text) {
  constexpr int kDigits16 = 4;
  constexpr int kDigits32 = 9;
  constexpr int kDigits64 = 18;
  const bool mayNotFit = column.decimalWidth > kDigitsOfDouble;
  if (column.decimalWidth > kDigits64)
    return {FieldType::Number, {name + "::DOUBLE", text, {.type = DUCKDB_TYPE_DOUBLE}, mayNotFit}};
  NativeNumbers native{.type = DUCKDB_TYPE_BIGINT};
  if (column.decimalWidth <= kDigits32) native.type = DUCKDB_TYPE_INTEGER;
  if (column.decimalWidth <= kDigits16) native.type = DUCKDB_TYPE_SMALLINT;
  for (int digit = 0; digit < column.decimalScale; ++digit) native.divisor *= 10.0;
  return {FieldType::Number, {name, text, native, mayNotFit}};
}

PlannedColumn PlanParquet(const DuckDBColumn& column) {
  constexpr double kSecondsOfDay = 86'400.0;
  const std::string name = Identifier(column.name);
  const std::string text = name + "::VARCHAR";
  const std::string momentText = "replace(" + text + ", ' ', 'T')";
  const NativeNumbers asItIs{.type = column.type};
  switch (column.type) {
    case DUCKDB_TYPE_BOOLEAN:
      return {FieldType::Boolean, {name, text, asItIs}};
    case DUCKDB_TYPE_TINYINT:
    case DUCKDB_TYPE_SMALLINT:
    case DUCKDB_TYPE_INTEGER:
    case DUCKDB_TYPE_UTINYINT:
    case DUCKDB_TYPE_USMALLINT:
    case DUCKDB_TYPE_UINTEGER:
      return {FieldType::Integer, {name, text, asItIs}};
    case DUCKDB_TYPE_BIGINT:
    case DUCKDB_TYPE_UBIGINT:
      return {FieldType::Integer, {name, text, asItIs, true}};
    case DUCKDB_TYPE_HUGEINT:
    case DUCKDB_TYPE_UHUGEINT:
      return {FieldType::Integer, {name + "::DOUBLE", text, {.type = DUCKDB_TYPE_DOUBLE}, true}};
    case DUCKDB_TYPE_FLOAT:
    case DUCKDB_TYPE_DOUBLE:
      return {FieldType::Number, {name, text, asItIs}};
    case DUCKDB_TYPE_DECIMAL:
      return PlanDecimal(column, name, text);
    case DUCKDB_TYPE_DATE:
      return {FieldType::Date,
              {name, text, {.type = DUCKDB_TYPE_INTEGER, .factor = kSecondsOfDay, .hasInfinity = true}}};
    case DUCKDB_TYPE_TIMESTAMP_S:
      return {FieldType::DateTime, {name, momentText, Moments(1.0)}};
    case DUCKDB_TYPE_TIMESTAMP_MS:
      return {FieldType::DateTime, {name, momentText, Moments(1e3)}};
    case DUCKDB_TYPE_TIMESTAMP:
    case DUCKDB_TYPE_TIMESTAMP_TZ:
      return {FieldType::DateTime, {name, momentText, Moments(1e6)}};
    case DUCKDB_TYPE_TIMESTAMP_NS:
      return {FieldType::DateTime, {name, momentText, Moments(1e9)}};
    case DUCKDB_TYPE_TIME:
      return {FieldType::Time, {name, text, {.type = DUCKDB_TYPE_BIGINT, .divisor = 1e6}}};
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
  if (type == FieldType::Boolean) return {"TRY_CAST(" + text + " AS BOOLEAN)", text, {.type = DUCKDB_TYPE_BOOLEAN}};
  if (type == FieldType::String) return {"", text};
  return {"TRY_CAST(" + text + " AS DOUBLE)", text};
}

/// A column of a stream: its numbers, or its texts.
struct FetchedColumn {
  bool isText = false;
  NativeNumbers native;
  std::string name;
};

/// A query under way, whose columns are those asked for.
class DuckDBTableStream : public TableStream {
 public:
  DuckDBTableStream(std::string path, std::unique_ptr<DuckDBStream> rows, std::vector<FetchedColumn> columns,
                    std::int64_t rowCount)
      : fPath(std::move(path)), fRows(std::move(rows)), fColumns(std::move(columns)), fRowCount(rowCount) {}

  std::size_t Next() override {
    fChunk = fRows->Next();
    const std::size_t count = fChunk ? fChunk->rows() : 0;
    fRowsRead += static_cast<std::int64_t>(count);
    if (fRowsRead > fRowCount || (count == 0 && fRowsRead < fRowCount))
      throw DataError(
          fmt::format("{}: {} rows were read of {}; the file changed or is damaged", fPath, fRowsRead, fRowCount));
    return count;
  }

  void Take(std::size_t column, std::size_t first, std::size_t count, ColumnSink& sink) override {
    const FetchedColumn& fetched = fColumns[column];
    if (fetched.isText) {
      fTexts.resize(std::max(fTexts.size(), count));
      fChunk->Texts(column, first, count, fTexts.data());
      sink.Texts(fTexts.data(), count);
    } else if (!TakeNumbers(fChunk->Vector(column), fetched.native, first, count, sink)) {
      throw DataError(
          fmt::format("{}: column {} has a whole number beyond 2^53, which its least and greatest values in the file "
                      "deny; the file is damaged",
                      fPath, QuotedCell(fetched.name)));
    }
  }

 private:
  std::string fPath;
  std::unique_ptr<DuckDBStream> fRows;
  std::vector<FetchedColumn> fColumns;
  std::int64_t fRowCount;
  std::int64_t fRowsRead = 0;
  const DuckDBChunk* fChunk = nullptr;
  std::vector<std::string_view> fTexts;
};

/// What is compressed is unpacked into a file without a name.
std::vector<DuckDBFile> FilesOf(const std::vector<std::string>& paths, TableFileKind kind) {
  std::vector<DuckDBFile> files;
  for (const std::string& path : paths) {
    DuckDBFile& file = files.emplace_back();
    file.name = std::filesystem::absolute(path).string();
    char begin[4] = {};
    std::ifstream(path, std::ios::binary).read(begin, sizeof begin);
    if (PackingOf({begin, sizeof begin}) == Packing::None) continue;
    if (kind == TableFileKind::Parquet)
      throw DataError(fmt::format("{}: a compressed Parquet file is not read; unpack it", path));
    const FileBytes unpacked(path);
    file.descriptor = machine::OpenNamelessFile();
    machine::WriteAll(file.descriptor, unpacked.bytes().data(), unpacked.bytes().size());
  }
  return files;
}

class DuckDBTable : public TableSource {
 public:
  // A Parquet file is read by a stream a thread, JSON lines by one stream on which all threads work.
  DuckDBTable(const std::vector<std::string>& paths, TableFileKind kind, int threads)
      : fPath(paths.size() == 1 ? paths.front() : fmt::format("{} and {} more", paths.front(), paths.size() - 1)),
        fKind(kind),
        fSession(FilesOf(paths, kind), kind == TableFileKind::Parquet ? 1 : threads),
        fTable(TableOf(fSession.files(), paths.size() > 1)) {
    CheckThatColumnsAreTheSame(paths);
    const std::vector<DuckDBColumn> columns = fSession.Columns(fmt::format("SELECT * FROM {} LIMIT 0", fTable));
    if (columns.empty()) throw DataError(fPath + ": the file has no columns");
    if (kind == TableFileKind::Parquet)
      DescribeParquet(columns);
    else
      DescribeJson(columns);
  }

  std::size_t ColumnsOfStream(int threads) const override;
  std::unique_ptr<TableStream> Open(const std::vector<StreamColumn>& columns) override;

 private:
  std::string TableOf(const std::string& files, bool areSeveral) const {
    return fKind == TableFileKind::Parquet ? fmt::format(kParquetTable, files, areSeveral)
                                           : fmt::format(kJsonTable, files, areSeveral);
  }
  void CheckThatColumnsAreTheSame(const std::vector<std::string>& paths) const;
  void DescribeParquet(const std::vector<DuckDBColumn>& columns);
  void DescribeJson(const std::vector<DuckDBColumn>& columns);
  void ReadMetadata();
  void MakeTextOfWhatDoesNotFit();
  std::vector<bool> ColumnsProvenToFit() const;

  std::string fPath;
  TableFileKind fKind;
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
  fSession.Run(fmt::format("SELECT count(*)::DOUBLE FROM {}", fTable),
               [&](const DuckDBChunk& chunk) { fRowCount = static_cast<std::int64_t>(chunk.Number(0, 0)); });
  MakeTextOfWhatDoesNotFit();
  ReadMetadata();
}

/// Keys and values are bytes; in hexadecimal digits nothing of them is lost on the way.
void DuckDBTable::ReadMetadata() {
  const auto bytesOf = [](std::string_view digits) {
    const auto valueOf = [](char digit) { return digit <= '9' ? digit - '0' : digit - 'A' + 10; };
    std::string bytes;
    for (std::size_t at = 0; at + 1 < digits.size(); at += 2)
      bytes.push_back(static_cast<char>(valueOf(digits[at]) * 16 + valueOf(digits[at + 1])));
    return bytes;
  };
  std::vector<std::string> keys;
  for (const std::string& key : DictionaryKeys()) keys.push_back("'" + key + "'::BLOB");
  fSession.Run(fmt::format("SELECT hex(key), hex(value) FROM parquet_kv_metadata({}) WHERE key IN ({})",
                           fSession.file(0), fmt::join(keys, ", ")),
               [&](const DuckDBChunk& chunk) {
                 std::vector<std::string_view> texts(2 * chunk.rows());
                 chunk.Texts(0, 0, chunk.rows(), texts.data());
                 chunk.Texts(1, 0, chunk.rows(), texts.data() + chunk.rows());
                 for (std::size_t row = 0; row < chunk.rows(); ++row)
                   fMetadata.emplace_back(bytesOf(texts[row]), bytesOf(texts[chunk.rows() + row]));
               });
}

void DuckDBTable::CheckThatColumnsAreTheSame(const std::vector<std::string>& paths) const {
  if (paths.size() == 1) return;
  std::vector<std::string> expected;
  for (std::size_t file = 0; file < paths.size(); ++file) {
    std::vector<std::string> names;
    for (const DuckDBColumn& column :
         fSession.Columns(fmt::format("SELECT * FROM {} LIMIT 0", TableOf(fSession.file(file), false))))
      names.push_back(column.name);
    if (file == 0) expected = names;
    if (names == expected) continue;
    const auto [mine, theirs] = std::mismatch(names.begin(), names.end(), expected.begin(), expected.end());
    throw DataError(
        fmt::format("{}: its column {} is {}, and that of {} is {}; the files of one table must have the same columns",
                    paths[file], mine - names.begin() + 1, mine == names.end() ? "not there" : QuotedCell(*mine),
                    paths.front(), theirs == expected.end() ? "not there" : QuotedCell(*theirs)));
  }
}

/// The columns of whose values the file itself says that they fit; none when columns have parts of their own, for the
/// file counts the parts.
std::vector<bool> DuckDBTable::ColumnsProvenToFit() const {
  std::vector<bool> proven(fPlans.size(), true);
  std::vector<std::string_view> least;
  std::vector<std::string_view> greatest;
  bool isFlat = true;
  // A group of rows without any value needs no bounds.
  fSession.Run(
      "SELECT column_id::DOUBLE, stats_min_value, stats_max_value, coalesce(stats_null_count = num_values, "
      "false)::INTEGER::DOUBLE FROM parquet_metadata(" +
          fSession.files() + ")",
      [&](const DuckDBChunk& chunk) {
        const std::size_t count = chunk.rows();
        least.resize(count);
        greatest.resize(count);
        chunk.Texts(1, 0, count, least.data());
        chunk.Texts(2, 0, count, greatest.data());
        for (std::size_t row = 0; row < count; ++row) {
          const auto column = static_cast<std::size_t>(chunk.Number(0, row));
          isFlat = isFlat && column < proven.size();
          if (!isFlat || chunk.Number(3, row) != 0.0) continue;
          if (least[row].empty() || greatest[row].empty() || !FitsDouble(least[row]) || !FitsDouble(greatest[row]))
            proven[column] = false;
        }
      });
  return isFlat ? proven : std::vector<bool>(fPlans.size(), false);
}

void DuckDBTable::MakeTextOfWhatDoesNotFit() {
  if (std::none_of(fPlans.begin(), fPlans.end(), [](const ColumnPlan& plan) { return plan.mayNotFit; })) return;
  const std::vector<bool> proven = ColumnsProvenToFit();
  std::vector<std::size_t> doubtful;
  std::vector<std::string> bounds;
  for (std::size_t column = 0; column < fPlans.size(); ++column) {
    if (!fPlans[column].mayNotFit || proven[column]) continue;
    doubtful.push_back(column);
    const std::string name = Identifier(fColumns[column].name);
    bounds.push_back(fmt::format("min({0})::VARCHAR, max({0})::VARCHAR", name));
  }
  if (doubtful.empty()) return;
  fSession.Run(fmt::format("SELECT {} FROM {}", fmt::join(bounds, ", "), fTable), [&](const DuckDBChunk& chunk) {
    for (std::size_t i = 0; i < doubtful.size(); ++i) {
      std::string_view least;
      std::string_view greatest;
      chunk.Texts(2 * i, 0, 1, &least);
      chunk.Texts(2 * i + 1, 0, 1, &greatest);
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
      chunk.Texts(column, 0, texts.size(), texts.data());
      for (const std::string_view json : texts) kinds[column].Add(json);
    }
  });
  for (std::size_t column = 0; column < columns.size(); ++column) {
    fColumns.push_back({columns[column].name, kinds[column].Type(), kinds[column].numbers && kinds[column].texts});
    fPlans.push_back(PlanJson(columns[column].name, kinds[column].Type()));
  }
}

std::size_t DuckDBTable::ColumnsOfStream(int threads) const {
  // Each stream parses all of every line.
  if (fKind == TableFileKind::JsonLines) return fPlans.size();
  // Each stream looks at all names of columns, but the cells of some hundred columns at a time stay in the cache.
  constexpr std::size_t kStreams = 8;
  constexpr std::size_t kFewest = 4;
  const std::size_t streams = std::max(kStreams, 2 * static_cast<std::size_t>(threads));
  return std::max(kFewest, (fPlans.size() + streams - 1) / streams);
}

std::unique_ptr<TableStream> DuckDBTable::Open(const std::vector<StreamColumn>& columns) {
  std::vector<std::string> expressions;
  std::vector<FetchedColumn> fetched;
  for (const StreamColumn& wanted : columns) {
    const ColumnPlan& plan = fPlans[wanted.column];
    const bool isText = wanted.asText || plan.asNumber.empty();
    expressions.push_back(isText ? plan.asText : plan.asNumber);
    fetched.push_back({isText, plan.native, fColumns[wanted.column].name});
  }
  return std::make_unique<DuckDBTableStream>(
      fPath, fSession.Open(fmt::format("SELECT {} FROM {}", fmt::join(expressions, ", "), fTable)), std::move(fetched),
      fRowCount);
}

}  // namespace

std::unique_ptr<TableSource> OpenDuckDBTable(const std::vector<std::string>& paths, TableFileKind kind, int threads) {
  return std::make_unique<DuckDBTable>(paths, kind, threads);
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
