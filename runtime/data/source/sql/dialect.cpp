#include "runtime/data/source/sql/dialect.h"

#include <fmt/format.h>

#include "runtime/data/lowerascii.h"

namespace runtime::data {

namespace {

SqlDialect PostgreSql() {
  SqlDialect dialect;
  dialect.name = "PostgreSQL";
  dialect.textType = "text";
  dialect.decimalType = "numeric";
  dialect.writtenDecimals = "SCALE({})";
  dialect.edgesBelow = "WIDTH_BUCKET({0}, CAST('{{{1}}}' AS double precision[]))";
  dialect.binaryText = "({} COLLATE \"C\")";
  dialect.encoding = "SHOW server_encoding";
  dialect.convertedLength = "OCTET_LENGTH(CONVERT_TO({}, 'UTF8'))";
  dialect.mergingCollations = "SELECT COUNT(*) FROM pg_collation WHERE NOT collisdeterministic";
  dialect.castsKeys = true;
  dialect.hasGroupingSets = true;
  dialect.sumsAreWide = true;
  dialect.nanIsGreatest = true;
  // With a number instead of a text the planner would not see that nothing is left out, and plan without parallelism.
  dialect.fence = " OFFSET '0'";
  dialect.hasPartitions = true;
  // The whole answer is wanted, not its first rows soon: without the first setting, the plan of a cursor is made for a
  // tenth of the rows. Compiling statements with hundreds of expressions takes longer than running them. The others fix
  // how values are written.
  dialect.settings = {"SET LOCAL cursor_tuple_fraction = 1", "SET LOCAL jit = off",
                      "SET LOCAL extra_float_digits = 1",    "SET LOCAL DateStyle = ISO",
                      "SET LOCAL TimeZone = 'UTC'",          "SET LOCAL IntervalStyle = iso_8601",
                      "SET LOCAL bytea_output = hex"};
  return dialect;
}

/// Those that speak PostgreSQL's protocol and language, but know neither its partitions nor its settings.
/// `hasLongDecimals`: with exact arithmetic on decimals of any length.
SqlDialect OfPostgreSqlFamily(std::string name, bool hasLongDecimals) {
  SqlDialect dialect = PostgreSql();
  dialect.name = std::move(name);
  dialect.hasPartitions = false;
  dialect.encoding = nullptr;
  dialect.writtenDecimals = nullptr;  // since PostgreSQL 9.6, which not all of them follow
  dialect.settings.clear();
  if (!hasLongDecimals) {
    dialect.decimalType = nullptr;
    dialect.edgesBelow = nullptr;
    dialect.sumsAreWide = false;
  }
  return dialect;
}

SqlDialect Sqlite() {
  SqlDialect dialect;
  dialect.name = "SQLite";
  dialect.textType = nullptr;
  dialect.doubleType = "REAL";
  dialect.wholeType = "INTEGER";
  dialect.byteLength = "LENGTH(CAST({} AS BLOB))";
  dialect.binaryText = "({} COLLATE BINARY)";
  dialect.comparesBytes = false;
  return dialect;
}

SqlDialect ClickHouse() {
  SqlDialect dialect;
  dialect.name = "ClickHouse";
  dialect.countRows = "count()";
  dialect.textType = "Nullable(String)";
  dialect.doubleType = "Nullable(Float64)";
  dialect.wholeType = "Nullable(Int64)";
  dialect.byteLength = "length({})";
  dialect.withoutBlanks = "replaceRegexpOne({}, ' +$', '')";
  return dialect;
}

SqlDialect SqlServer() {
  SqlDialect dialect;
  dialect.name = "Microsoft SQL Server";
  dialect.firstRows = SqlDialect::FirstRows::Top;
  dialect.countRows = "COUNT_BIG(*)";
  dialect.textType = "NVARCHAR(MAX)";
  dialect.doubleType = "FLOAT(53)";
  dialect.byteLength = "DATALENGTH({})";
  dialect.binaryText = "({} COLLATE Latin1_General_100_BIN2)";
  dialect.comparesBytes = false;
  dialect.preciseDouble = "CONVERT(VARCHAR(40), {}, 3)";
  dialect.hasGroupingSets = true;
  return dialect;
}

SqlDialect Snowflake() {
  SqlDialect dialect;
  dialect.name = "Snowflake";
  dialect.decimalType = nullptr;
  dialect.hasGroupingSets = true;
  return dialect;
}

SqlDialect Trino() {
  SqlDialect dialect;
  dialect.name = "Trino";
  dialect.textType = "VARCHAR";
  dialect.doubleType = "DOUBLE";
  dialect.byteLength = "LENGTH(TO_UTF8({}))";
  dialect.hasGroupingSets = true;
  return dialect;
}

SqlDialect Spark() {
  SqlDialect dialect;
  dialect.name = "Spark SQL";
  dialect.textType = "STRING";
  dialect.doubleType = "DOUBLE";
  dialect.hasGroupingSets = true;
  return dialect;
}

SqlDialect BigQuery() {
  SqlDialect dialect;
  dialect.name = "BigQuery";
  dialect.textType = "STRING";
  dialect.doubleType = "FLOAT64";
  dialect.wholeType = "INT64";
  dialect.byteLength = "BYTE_LENGTH({})";
  dialect.hasGroupingSets = true;
  return dialect;
}

SqlDialect MySql(std::string name) {
  SqlDialect dialect;
  dialect.name = std::move(name);
  dialect.textType = "CHAR";
  dialect.doubleType = "DOUBLE";
  dialect.wholeType = "SIGNED";
  dialect.binaryText = "(BINARY {})";
  dialect.comparesBytes = false;
  return dialect;
}

SqlDialect Unknown() {
  SqlDialect dialect;
  dialect.name = "another engine";
  dialect.isKnown = false;
  dialect.firstRows = SqlDialect::FirstRows::FetchFirst;
  return dialect;
}

struct KnownEngine {
  const char* begin;  // of what the engine calls itself, in lower case
  SqlDialect dialect;
};

const std::vector<KnownEngine>& KnownEngines() {
  static const std::vector<KnownEngine> engines = {
      {"postgresql", PostgreSql()},
      {"sqlite", Sqlite()},
      {"clickhouse", ClickHouse()},
      {"microsoft sql server", SqlServer()},
      {"snowflake", Snowflake()},
      {"trino", Trino()},
      {"starburst", Trino()},
      {"spark", Spark()},
      {"databricks", Spark()},
      {"google bigquery", BigQuery()},
      {"bigquery", BigQuery()},
      {"mysql", MySql("MySQL")},
      {"mariadb", MySql("MariaDB")},
      {"redshift", OfPostgreSqlFamily("Redshift", false)},
      {"amazon redshift", OfPostgreSqlFamily("Redshift", false)},
      {"cockroachdb", OfPostgreSqlFamily("CockroachDB", false)},
      {"greenplum", OfPostgreSqlFamily("Greenplum", true)},
      {"yugabytedb", OfPostgreSqlFamily("YugabyteDB", true)},
  };
  return engines;
}

}  // namespace

std::string SqlDialect::CastToText(const std::string& expression, SqlType type) const {
  const bool isFloating = type == SqlType::Single || type == SqlType::Double;
  if (isFloating && preciseDouble != nullptr) return fmt::format(fmt::runtime(preciseDouble), expression);
  return textType == nullptr ? expression : fmt::format("CAST({} AS {})", expression, textType);
}

std::string SqlDialect::CastToDouble(const std::string& expression) const {
  return fmt::format("CAST({} AS {})", expression, doubleType);
}

std::string SqlDialect::CastToWhole(const std::string& expression) const {
  return fmt::format("CAST({} AS {})", expression, wholeType);
}

std::string SqlDialect::FirstRowsOf(const std::string& list, const std::string& rest, std::int64_t rows) const {
  switch (firstRows) {
    case FirstRows::Limit:
      return fmt::format("SELECT {} {} LIMIT {}", list, rest, rows);
    case FirstRows::FetchFirst:
      return fmt::format("SELECT {} {} FETCH FIRST {} ROWS ONLY", list, rest, rows);
    case FirstRows::Top:
      return fmt::format("SELECT TOP ({}) {} {}", rows, list, rest);
  }
  return {};
}

const SqlDialect& DialectOf(std::string_view engine) {
  static const SqlDialect unknown = Unknown();
  const std::string lower = LowerAscii(std::string(engine));
  for (const KnownEngine& known : KnownEngines())
    if (lower.rfind(known.begin, 0) == 0) return known.dialect;
  return unknown;
}

std::string NumberLiteral(double number) { return fmt::format("{}", number); }

std::string TextLiteral(std::string_view text) {
  std::string literal = "'";
  for (const char byte : text) literal += byte == '\'' ? "''" : std::string(1, byte);
  return literal + "'";
}

}  // namespace runtime::data
