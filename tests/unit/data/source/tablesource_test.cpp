#include "runtime/data/source/tablesource.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/machine/threadpool.h"
#include "tests/unit/data/dictionary/described.h"
#ifdef CODEBOOK_HAVE_DUCKDB
#include "runtime/data/source/duckdbsession.h"
#include "runtime/data/source/duckdbtable.h"
#endif

namespace runtime::data {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(TableFile, isKnownByItsEnding) {
  for (const char* path : {"a.parquet", "A.PARQUET", "a.jsonl", "a.ndjson", "x/y.z.JsonL", "a.jsonl.gz", "a.ndjson.ZST",
                           "a.sqlite", "a.db"})
    EXPECT_TRUE(IsTableFile(path)) << path;
  for (const char* path : {"a.csv", "a.json", "parquet", "a.parquet.csv", "a.csv.gz", ""})
    EXPECT_FALSE(IsTableFile(path)) << path;
}

#ifdef CODEBOOK_HAVE_DUCKDB

std::string OpenProblem(const std::string& path) {
  try {
    OpenTableFile(path, 1);
  } catch (const DataError& error) {
    return error.what();
  }
  return {};
}

/// A column as it came: numbers as they print, NaN as "nan".
struct Cells {
  SourceColumn column;
  std::vector<std::string> cells;
};

class Collector : public ColumnSink {
 public:
  explicit Collector(Cells& column) : fColumn(column) {}
  void Bytes(const std::int8_t* values, std::size_t count) override {
    for (std::size_t i = 0; i < count; ++i)
      fColumn.cells.push_back(values[i] == kNoByte ? "nan" : std::to_string(values[i]));
  }
  void Integers(const std::int32_t* values, std::size_t count) override {
    for (std::size_t i = 0; i < count; ++i)
      fColumn.cells.push_back(values[i] == kNoInteger ? "nan" : std::to_string(values[i]));
  }
  void Numbers(const double* values, std::size_t count) override {
    for (std::size_t i = 0; i < count; ++i) fColumn.cells.push_back(fmt::format("{}", values[i]));
  }
  void Texts(const std::string_view* texts, std::size_t count) override {
    for (std::size_t i = 0; i < count; ++i) fColumn.cells.emplace_back(texts[i]);
  }

 private:
  Cells& fColumn;
};

/// All pieces are taken in two, of which the first has an odd number of rows.
std::vector<Cells> ReadFile(const std::string& path, bool asText = false) {
  const auto source = OpenTableFile(path, 2);
  std::vector<Cells> columns;
  std::vector<StreamColumn> wanted;
  for (const SourceColumn& column : source->columns()) {
    wanted.push_back({columns.size(), asText});
    columns.push_back({column, {}});
  }
  const auto stream = source->Open(wanted);
  while (const std::size_t rows = stream->Next()) {
    const std::size_t seam = rows / 3 | 1;
    for (std::size_t column = 0; column < columns.size(); ++column) {
      Collector collector(columns[column]);
      stream->Take(column, 0, std::min(seam, rows), collector);
      if (seam < rows) stream->Take(column, seam, rows - seam, collector);
    }
  }
  for (const Cells& column : columns) EXPECT_EQ(static_cast<std::int64_t>(column.cells.size()), source->rowCount());
  return columns;
}

/// Writes Parquet through DuckDB itself.
void WriteParquet(const std::string& path, const std::string& select) {
  const DuckDBSession session(path, 1);
  session.Run("COPY (" + select + ") TO $1 (FORMAT parquet)", [](const DuckDBChunk&) {});
}

class TableFiles : public testing::Test {
 protected:
  std::vector<Cells> ReadLines(const std::string& text, bool asText = false) {
    return ReadFile(fFolder.Write("x.jsonl", text), asText);
  }

  TemporaryFolder fFolder;
};

TEST_F(TableFiles, jsonValuesKeepTheirKind) {
  const auto columns = ReadLines(R"({"i":1,"d":1.5,"s":"007","b":true,"n":null}
{"i":-9,"d":2,"s":"x\"y","b":false}

{"s":"","extra":1}
)");
  ASSERT_EQ(columns.size(), 6U);
  EXPECT_EQ(columns[0].column.type, FieldType::Integer);
  EXPECT_THAT(columns[0].cells, ElementsAre("1", "-9", "nan"));
  EXPECT_EQ(columns[1].column.type, FieldType::Number);
  EXPECT_THAT(columns[1].cells, ElementsAre("1.5", "2", "nan"));
  EXPECT_THAT(columns[2].cells, ElementsAre("007", "x\"y", ""));
  EXPECT_EQ(columns[3].column.type, FieldType::Boolean);
  EXPECT_THAT(columns[3].cells, ElementsAre("1", "0", "nan"));
  EXPECT_EQ(columns[4].column.name, "n");
  EXPECT_THAT(columns[4].cells, ElementsAre("", "", ""));
  EXPECT_THAT(columns[5].cells, ElementsAre("nan", "nan", "1"));
}

TEST_F(TableFiles, wholeNumbersThatNoDoubleHoldsMakeAColumnText) {
  const auto columns = ReadLines(
      "{\"a\":9007199254740992,\"b\":9007199254740993,\"c\":12345678901234567890123}\n"
      "{\"a\":-9007199254740992,\"b\":1,\"c\":0}\n");
  EXPECT_EQ(columns[0].column.type, FieldType::Integer);
  EXPECT_THAT(columns[1].cells, ElementsAre("9007199254740993", "1"));
  EXPECT_THAT(columns[2].cells, ElementsAre("12345678901234567890123", "0"));
}

TEST_F(TableFiles, jsonColumnsOfMixedKindsAndNestedOnesAreTexts) {
  const auto columns = ReadLines("{\"a\":1,\"b\":[1,{\"c\":2}],\"t\":true}\n{\"a\":\"x\",\"b\":\"y\",\"t\":0}\n");
  EXPECT_THAT(columns[0].cells, ElementsAre("1", "x"));
  EXPECT_THAT(columns[1].cells, ElementsAre("[1,{\"c\":2}]", "y"));
  EXPECT_THAT(columns[2].cells, ElementsAre("true", "0"));
}

TEST_F(TableFiles, jsonDatesStayTexts) {
  const auto columns = ReadLines("{\"d\":\"1970-01-02\",\"u\":\"https://x\"}\n");
  EXPECT_EQ(columns[0].column.type, FieldType::String);
  EXPECT_THAT(columns[0].cells, ElementsAre("1970-01-02"));
}

TEST_F(TableFiles, giveTextsOfAllColumnsWhenAsked) {
  const auto lines = ReadLines("{\"i\":7,\"d\":-1.25,\"b\":false,\"s\":\"x\",\"e\":1e3}\n{}\n", true);
  EXPECT_THAT(lines[0].cells, ElementsAre("7", ""));
  EXPECT_THAT(lines[1].cells, ElementsAre("-1.25", ""));
  EXPECT_THAT(lines[2].cells, ElementsAre("false", ""));
  EXPECT_THAT(lines[3].cells, ElementsAre("x", ""));
  const std::string path = fFolder.Path("t.parquet");
  WriteParquet(path,
               "SELECT 7 AS n, TIMESTAMP '1970-01-02 03:00:00' AS ts, 1.5 AS f, DATE '1970-01-02' AS d, true AS b, "
               "TIME '01:02:03' AS t");
  const auto columns = ReadFile(path, true);
  std::vector<std::string> row;
  for (const Cells& column : columns) row.push_back(column.cells.at(0));
  EXPECT_THAT(row, ElementsAre("7", "1970-01-02T03:00:00", "1.5", "1970-01-02", "true", "01:02:03"));
}

TEST_F(TableFiles, rowsKeepTheirOrder) {
  std::string lines;
  for (int i = 0; i < 50000; ++i) lines += "{\"i\":" + std::to_string(i) + ",\"s\":\"" + std::to_string(i) + "\"}\n";
  const auto columns = ReadLines(lines);
  ASSERT_EQ(columns[0].cells.size(), 50000U);
  for (std::size_t row = 0; row < 50000; ++row) {
    ASSERT_EQ(columns[0].cells[row], std::to_string(row));
    ASSERT_EQ(columns[1].cells[row], std::to_string(row));
  }
}

TEST_F(TableFiles, damagedJsonNamesTheFile) {
  const std::pair<const char*, const char*> damaged[] = {{"{\"a\":1}\n{\"a\":", "line 2 is no JSON object"},
                                                         {"[1]\n", "line 1 is no JSON object: \"[1]\""},
                                                         {"1\n2\n", "line 1 is no JSON object: \"1\""},
                                                         {"\n\nno json\n", "line 3 is no JSON object: \"no json\""},
                                                         {"{\"a\":\"\xFF\"}\n", "line 1 is no JSON object"}};
  for (const auto& [text, problem] : damaged)
    EXPECT_THAT(OpenProblem(fFolder.Write("bad.jsonl", text)), HasSubstr(std::string("bad.jsonl: ") + problem)) << text;
  EXPECT_THAT(OpenProblem(fFolder.Write("[1].jsonl", "no json\n")), testing::Not(HasSubstr("/proc/")));
  EXPECT_THAT(OpenProblem(fFolder.Write("e.jsonl", "")), HasSubstr("e.jsonl: the file is empty"));
  EXPECT_THAT(OpenProblem(fFolder.Path("none.parquet")), HasSubstr("none.parquet: cannot open the file: No such file"));
  std::filesystem::create_directory(fFolder.Path("d.parquet"));
  EXPECT_THAT(OpenProblem(fFolder.Path("d.parquet")), HasSubstr("this is a directory"));
  EXPECT_THAT(OpenProblem(fFolder.Write("no.parquet", "PAR1 but no more")),
              HasSubstr("no.parquet: this is no whole Parquet file"));
}

TEST_F(TableFiles, namesWithQuotesAndPatternsAreOnlyNames) {
  fFolder.Write("other.jsonl", "{\"wrong\":1}\n");
  for (const char* name : {"*.jsonl", "it's.jsonl", "[o]ther.jsonl", "a?b.jsonl", "'); DROP TABLE x; --.jsonl",
                           "https:__example.org.jsonl", "year=2024.jsonl"}) {
    const auto columns = ReadFile(fFolder.Write(name, "{\"a\\\"b'c\":1}\n"));
    ASSERT_EQ(columns.size(), 1U) << name;
    EXPECT_EQ(columns[0].column.name, "a\"b'c") << name;
  }
}

TEST_F(TableFiles, parquetTypesBecomeNumbersOrTexts) {
  const std::string path = fFolder.Path("t.parquet");
  WriteParquet(path, R"(SELECT * FROM (VALUES
      (1::TINYINT, 5::BIGINT, 9007199254740993::BIGINT, 1.5::FLOAT, 0.25::DOUBLE, 12.34::DECIMAL(10,2),
       1234567890123456789.01::DECIMAL(30,2), 99.5::DECIMAL(30,1), 'x', DATE '1970-01-02', TIMESTAMP '1970-01-01 00:00:01.5',
       TIME '01:02:03', true, [1,2], {'a': 1}, TIMESTAMPTZ '1970-01-01 02:00:00+02'),
      (NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL))
      t(i8, i64, big, f, d, dec, wide, fits, s, dt, ts, t, b, l, st, tz))");
  const auto columns = ReadFile(path);
  ASSERT_EQ(columns.size(), 16U);
  std::vector<FieldType> types;
  std::vector<std::string> first;
  for (const Cells& column : columns) {
    types.push_back(column.column.type);
    first.push_back(column.cells[0]);
    EXPECT_EQ(column.cells[1], column.column.type == FieldType::String ? "" : "nan");
  }
  EXPECT_THAT(types, ElementsAre(FieldType::Integer, FieldType::Integer, FieldType::String, FieldType::Number,
                                 FieldType::Number, FieldType::Number, FieldType::String, FieldType::Number,
                                 FieldType::String, FieldType::Date, FieldType::DateTime, FieldType::Time,
                                 FieldType::Boolean, FieldType::String, FieldType::String, FieldType::DateTime));
  EXPECT_THAT(first, ElementsAre("1", "5", "9007199254740993", "1.5", "0.25", "12.34", "1234567890123456789.01", "99.5",
                                 "x", "86400", "1.5", "3723", "1", "[1,2]", "{\"a\":1}", "0"));
}

TEST_F(TableFiles, parquetWithoutRowsHasColumns) {
  const std::string path = fFolder.Path("t.parquet");
  WriteParquet(path, "SELECT 1 AS a, 'x' AS b WHERE false");
  const auto columns = ReadFile(path);
  ASSERT_EQ(columns.size(), 2U);
  EXPECT_TRUE(columns[0].cells.empty());
  EXPECT_EQ(columns[0].column.type, FieldType::Integer);
}

TEST_F(TableFiles, wholeNumbersOfEveryWidthKeepTheirValues) {
  const std::string path = fFolder.Path("t.parquet");
  WriteParquet(path, R"(SELECT * FROM (VALUES
      ((-128)::TINYINT, 255::UTINYINT, (-32768)::SMALLINT, 65535::USMALLINT, (-2147483648)::INTEGER, 4294967295::UINTEGER,
       (-9007199254740992)::BIGINT, 9007199254740992::UBIGINT, 2147483648::BIGINT, 1.25::DECIMAL(4,2), 1.125::DECIMAL(9,3),
       123456789012.345::DECIMAL(15,3), 7::DECIMAL(18,0)),
      (127, 0, 32767, 0, 2147483647, 0, 9007199254740992, 0, -2147483648, -99.99, 0.001, 0.5, -7),
      (NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL)) t)");
  const auto columns = ReadFile(path);
  std::vector<std::vector<std::string>> cells;
  for (const Cells& column : columns) cells.push_back(column.cells);
  EXPECT_THAT(cells,
              ElementsAre(ElementsAre("-128", "127", "nan"), ElementsAre("255", "0", "nan"),
                          ElementsAre("-32768", "32767", "nan"), ElementsAre("65535", "0", "nan"),
                          ElementsAre("-2147483648", "2147483647", "nan"), ElementsAre("4294967295", "0", "nan"),
                          ElementsAre("-9007199254740992", "9007199254740992", "nan"),
                          ElementsAre("9007199254740992", "0", "nan"), ElementsAre("2147483648", "-2147483648", "nan"),
                          ElementsAre("1.25", "-99.99", "nan"), ElementsAre("1.125", "0.001", "nan"),
                          ElementsAre("123456789012.345", "0.5", "nan"), ElementsAre("7", "-7", "nan")));
}

TEST_F(TableFiles, momentsOfEveryUnitAreSecondsAndInfiniteOnesNoValues) {
  const std::string path = fFolder.Path("t.parquet");
  WriteParquet(path, R"(SELECT * FROM (VALUES
      (TIMESTAMP '1969-12-31 23:59:58.5', TIMESTAMP_S '1970-01-01 00:00:02', TIMESTAMP_MS '1970-01-01 00:00:00.25',
       TIMESTAMP_NS '1970-01-01 00:00:00.000000125', DATE '1969-12-31'),
      (TIMESTAMP 'infinity', NULL, NULL, NULL, DATE 'infinity'),
      (TIMESTAMP '-infinity', NULL, NULL, NULL, DATE '-infinity')) t(u, s, m, n, d))");
  const auto columns = ReadFile(path);
  std::vector<std::vector<std::string>> cells;
  for (const Cells& column : columns) cells.push_back(column.cells);
  EXPECT_THAT(cells, ElementsAre(ElementsAre("-1.5", "nan", "nan"), ElementsAre("2", "nan", "nan"),
                                 ElementsAre("0.25", "nan", "nan"), ElementsAre("1.25e-07", "nan", "nan"),
                                 ElementsAre("-86400", "nan", "nan")));
}

TEST_F(TableFiles, nullsStandWhereTheyStoodInEveryPiece) {
  const std::string path = fFolder.Path("t.parquet");
  WriteParquet(path,
               "SELECT CASE WHEN hash(i) % 3 = 0 THEN NULL ELSE i END AS n, CASE WHEN hash(i) % 5 = 0 THEN NULL ELSE i "
               "/ 4 END AS d, i AS row, hash(i) % 3 = 0 AS noN, hash(i) % 5 = 0 AS noD FROM range(10000) t(i)");
  const auto columns = ReadFile(path);
  ASSERT_EQ(columns[0].cells.size(), 10000U);
  for (std::size_t row = 0; row < 10000; ++row) {
    ASSERT_EQ(columns[0].cells[row], columns[3].cells[row] == "1" ? "nan" : columns[2].cells[row]) << row;
    ASSERT_EQ(columns[1].cells[row],
              columns[4].cells[row] == "1" ? "nan" : fmt::format("{}", static_cast<double>(row) / 4))
        << row;
  }
}

TEST_F(TableFiles, oneLargeNumberAnywhereMakesAColumnTextAlsoBesideColumnsOfParts) {
  const std::string select =
      "CASE WHEN i = 150000 THEN 9007199254740993 ELSE i END AS large, i AS small FROM range(300000) t(i)";
  const std::string flat = fFolder.Path("flat.parquet");
  WriteParquet(flat, "SELECT " + select);
  const std::string nested = fFolder.Path("nested.parquet");
  WriteParquet(nested, "SELECT {'a': 1, 'b': 9007199254740993} AS parts, " + select);
  for (const std::string& path : {flat, nested}) {
    const auto source = OpenTableFile(path, 1);
    const std::size_t columns = source->columns().size();
    EXPECT_EQ(source->columns()[columns - 2].type, FieldType::String) << path;
    EXPECT_EQ(source->columns()[columns - 1].type, FieldType::Integer) << path;
  }
}

TEST_F(TableFiles, streamsOfOneFileMayBeReadAtTheSameTime) {
  const std::string path = fFolder.Path("t.parquet");
  WriteParquet(path, "SELECT i AS a, i::VARCHAR AS b, -i AS c, i / 2 AS d FROM range(200000) t(i)");
  const auto whole = ReadFile(path);
  const auto source = OpenTableFile(path, 2);
  std::vector<Cells> columns(4);
  machine::ThreadPool pool(2);
  pool.ForEach(4, [&](std::size_t column) {
    const auto stream = source->Open({{column, false}});
    Collector collector(columns[column]);
    while (const std::size_t rows = stream->Next()) stream->Take(0, 0, rows, collector);
  });
  for (std::size_t column = 0; column < 4; ++column) EXPECT_EQ(columns[column].cells, whole[column].cells);
}

TEST_F(TableFiles, damagedParquetStopsWithAnError) {
  const std::string path = fFolder.Path("t.parquet");
  WriteParquet(path, "SELECT i, md5(i::VARCHAR) AS s FROM range(100000) t(i)");
  std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
  file.seekp(4000);
  file << std::string(20000, '\x5A');
  file.close();
  EXPECT_THROW(ReadFile(path), DataError);
}

TEST_F(TableFiles, severalParquetFilesAreOneTable) {
  const std::string first = fFolder.Path("p1.parquet");
  const std::string second = fFolder.Path("p'2 [x].parquet");
  WriteParquet(first, "SELECT i::INTEGER AS a, 'x' AS s FROM range(3000) t(i)");
  WriteParquet(fFolder.Path("p2"), "SELECT (3000 + i)::BIGINT AS a, 'y' AS s FROM range(10) t(i)");
  std::filesystem::rename(fFolder.Path("p2"), second);
  const auto source = OpenTableFiles({first, second}, std::nullopt, 2);
  EXPECT_EQ(source->rowCount(), 3010);
  EXPECT_EQ(source->columns()[0].type, FieldType::Integer) << "the wider of two types";
  Cells cells;
  const auto stream = source->Open({{0, false}});
  Collector collector(cells);
  while (const std::size_t rows = stream->Next()) stream->Take(0, 0, rows, collector);
  ASSERT_EQ(cells.cells.size(), 3010U);
  for (std::size_t row = 0; row < cells.cells.size(); ++row) ASSERT_EQ(cells.cells[row], std::to_string(row));
}

TEST_F(TableFiles, severalFilesWithOtherColumnsAreRefused) {
  const std::string first = fFolder.Path("p1.parquet");
  const std::string second = fFolder.Path("p2.parquet");
  WriteParquet(first, "SELECT 1 AS a, 2 AS b");
  WriteParquet(second, "SELECT 1 AS a, 2 AS c");
  try {
    OpenTableFiles({first, second}, std::nullopt, 1);
    FAIL();
  } catch (const DataError& error) {
    EXPECT_THAT(error.what(), HasSubstr("p2.parquet: its column 2 is \"c\", and that of"));
  }
}

TEST_F(TableFiles, aWholeNumberTooLargeInALaterFileMakesTheColumnText) {
  const std::string first = fFolder.Path("p1.parquet");
  const std::string second = fFolder.Path("p2.parquet");
  WriteParquet(first, "SELECT 1::BIGINT AS a");
  WriteParquet(second, "SELECT 9007199254740993 AS a");
  EXPECT_EQ(OpenTableFiles({first, second}, std::nullopt, 1)->columns()[0].type, FieldType::String);
}

TEST_F(TableFiles, aColumnMayBeNamedLikeAParameter) {
  const std::string path = fFolder.Path("p.parquet");
  const DuckDBSession session(path, 1);
  session.Run("COPY (SELECT 5 AS \"price in ($1\") TO $1 (FORMAT parquet)", [](const DuckDBChunk&) {});
  EXPECT_THAT(ReadFile(path)[0].cells, ElementsAre("5"));
}

class EmbeddedDictionary : public TableFiles {
 protected:
  OpenedDataset Open(const std::string& metadata) {
    fOptions.path = fFolder.Path("p.parquet");
    std::filesystem::remove(fOptions.path);  // or it would be written beside it first, which is not allowed
    const DuckDBSession session(fOptions.path, 1);
    session.Run("COPY (SELECT 1 AS sex, 9 AS q) TO $1 (FORMAT parquet, KV_METADATA {" + metadata + "})",
                [](const DuckDBChunk&) {});
    return OpenDataset(fOptions);
  }
  static std::string LabelOf(const OpenedDataset& opened) {
    return opened.dataset->dictionary().variables[0]->label.value_or("");
  }

  OpenOptions fOptions;
};

TEST_F(EmbeddedDictionary, ofAParquetFileIsUsed) {
  const auto schema =
      Open(R"('codebook.schema': '{"fields": [{"name": "sex", "type": "integer", "title": "Gëschlecht"},)"
           R"( {"name": "q", "type": "integer"}]}')");
  EXPECT_TRUE(schema.notes.empty());
  EXPECT_EQ(LabelOf(schema), "G\xC3\xABschlecht");
  EXPECT_EQ(LabelOf(Open(R"('datapackage': '{"resources": [{"name": "r", "path": "elsewhere.csv", "schema": )"
                         R"({"fields": [{"name": "sex", "title": "Sex"}, {"name": "q"}]}}]}')")),
            "Sex");
}

TEST_F(EmbeddedDictionary, yieldsToOneBesideTheFile) {
  fFolder.Write("p.schema.json", R"({"fields": [{"name": "sex", "title": "Beside"}, {"name": "q"}]})");
  EXPECT_EQ(LabelOf(Open(R"('codebook.schema': '{"fields": [{"name": "sex", "title": "Within"}, {"name": "q"}]}')")),
            "Beside");
}

TEST_F(EmbeddedDictionary, thatIsNoneIsLeftOut) {
  const auto other = Open(R"('schema': '{"fields": ["sex", "q"]}')");
  EXPECT_TRUE(other.notes.empty()) << "another program's";
  const auto faulty = Open(R"('codebook.schema': '{"fields": [')");
  ASSERT_EQ(faulty.notes.size(), 1U);
  EXPECT_THAT(faulty.notes[0].text, HasSubstr("p.parquet (metadata codebook.schema)"));
  EXPECT_THAT(faulty.notes[0].text, HasSubstr("is not used"));
  fOptions.strict = true;
  EXPECT_THROW(Open(R"('codebook.schema': '{"fields": [')"), DataError);
}

TEST(DuckDBSession, readsNoOtherFile) {
  const TemporaryFolder folder;
  const std::string allowed = folder.Write("a.jsonl", "{\"a\":1}\n");
  const std::string other = folder.Write("b.jsonl", "{\"a\":2}\n");
  const DuckDBSession session(allowed, 1);
  int rows = 0;
  session.Run("SELECT 1 FROM read_json($1)", [&](const DuckDBChunk& chunk) { rows += static_cast<int>(chunk.rows()); });
  EXPECT_EQ(rows, 1);
  for (const std::string& sql :
       {"SELECT * FROM read_json('" + other + "')", "COPY (SELECT 1) TO '" + folder.Path("c.csv") + "'",
        std::string("SELECT * FROM read_json('https://example.org/a.json')"), std::string("INSTALL httpfs"),
        std::string("SET enable_external_access = true")})
    EXPECT_THROW(session.Run(sql, [](const DuckDBChunk&) {}), DataError) << sql;
  EXPECT_FALSE(std::filesystem::exists(folder.Path("c.csv")));
}

TEST(DuckDBSession, keepsTheSettingsThatKeepItOffline) {
  const TemporaryFolder folder;
  const DuckDBSession session(folder.Write("a.jsonl", "{}"), 1);
  const auto setting = [&](const std::string& name) {
    std::string value;
    session.Run("SELECT current_setting('" + name + "')::VARCHAR", [&](const DuckDBChunk& chunk) {
      std::string_view text;
      chunk.Texts(0, 0, 1, &text);
      value = text;
    });
    return value;
  };
  EXPECT_EQ(setting("autoinstall_known_extensions"), "false");
  EXPECT_EQ(setting("autoload_known_extensions"), "false");
  EXPECT_EQ(setting("enable_external_access"), "false");
  EXPECT_EQ(setting("preserve_insertion_order"), "true");
  EXPECT_EQ(setting("threads"), "1");
  EXPECT_EQ(setting("temp_directory"), "");
}

TEST(DuckDBSession, anErrorInTheMiddleOfAResultIsNoEnd) {
  const TemporaryFolder folder;
  const DuckDBSession session(folder.Write("a.jsonl", "{}"), 1);
  EXPECT_THROW(
      session.Run("SELECT CASE WHEN i = 50000 THEN error('in the middle') ELSE i::VARCHAR END FROM range(100000) "
                  "t(i)",
                  [](const DuckDBChunk&) {}),
      DataError);
}

TEST(FitsDouble, holdsUpTo2ToThe53) {
  EXPECT_TRUE(FitsDouble("9007199254740992"));
  EXPECT_TRUE(FitsDouble("-90071992547409.92"));
  EXPECT_FALSE(FitsDouble("9007199254740993"));
  EXPECT_FALSE(FitsDouble("-12345678901234567890"));
  EXPECT_TRUE(FitsDouble(""));
}

#endif

}  // namespace
}  // namespace runtime::data
