// What DuckDB does with the file that our program describes, so that both can be timed on it:
//
//   duckdb_rival MODE FILE [--columns LIST] [--threads N] [--answers] [--output FILE]
//
// Modes: read           every column of every row, fetched and touched, nothing else
//        summarize      SUMMARIZE SELECT * FROM file
//        exact          what our command does: the values of each code or text with their counts; number, mean,
//        standard
//                       deviation and quartiles of each column of doubles
//        write-parquet  makes the Parquet file --output of the CSV
//
// LIST has a line "NAME TYPE" for each column, in the file's order; a CSV file is then read with its columns declared.
// Without it DuckDB finds the types itself. Standard output gets one JSON object: {"rows": N, "answers":
// {...}}, the answers by column and only with --answers (see bench/answers.py for their shape).
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <duckdb.h>
#include <fmt/format.h>

namespace {

struct Column {
  std::string name;
  std::string type;
  bool isDouble() const { return type == "DOUBLE" || type == "FLOAT"; }
};

struct Options {
  std::string mode;
  std::string file;
  std::string columns;
  std::string output;
  int threads = 1;
  bool answers = false;
};

/// Text between quotes of the given kind, those inside doubled: ' for SQL texts, " for SQL names.
std::string Quoted(std::string_view text, char quote) {
  std::string quoted(1, quote);
  for (const char byte : text) {
    if (byte == quote) quoted += quote;
    quoted += byte;
  }
  return quoted + quote;
}

std::string Name(const Column& column) { return Quoted(column.name, '"'); }

std::string JsonText(std::string_view text) {
  std::string json = "\"";
  for (const char byte : text) {
    if (byte == '"' || byte == '\\') json += '\\';
    if (static_cast<unsigned char>(byte) < 0x20)
      json += fmt::format("\\u{:04x}", static_cast<unsigned char>(byte));
    else
      json += byte;
  }
  return json + '"';
}

/// One connection to a database in memory that works with the given number of threads.
class Database {
 public:
  explicit Database(int threads) {
    if (duckdb_open(nullptr, &fDatabase) == DuckDBError || duckdb_connect(fDatabase, &fConnection) == DuckDBError)
      throw std::runtime_error("no database could be opened");
    Run(fmt::format("SET threads = {}", threads));
    // A stream's buffer of the usual 1 MB lets one thread work at a time.
    Run("SET streaming_buffer_size = '128MB'");
    Run("SET enable_progress_bar = false");
  }
  ~Database() {
    duckdb_disconnect(&fConnection);
    duckdb_close(&fDatabase);
  }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  void Run(const std::string& sql) {
    Rows(sql, [](const std::vector<const char*>&) {});
  }

  /// Calls `row` with the texts of each row, null for NULL; the query gives texts only. The whole answer is kept first.
  void Rows(const std::string& sql, const std::function<void(const std::vector<const char*>&)>& row) {
    Result result;
    if (duckdb_query(fConnection, sql.c_str(), &result.result) == DuckDBError) Fail(result.result, sql);
    const idx_t columns = duckdb_column_count(&result.result);
    std::vector<std::string> texts(columns);
    std::vector<const char*> cells(columns);
    while (Chunk chunk{duckdb_fetch_chunk(result.result)}) {
      const idx_t rows = duckdb_data_chunk_get_size(chunk.chunk);
      for (idx_t at = 0; at < rows; ++at) {
        for (idx_t column = 0; column < columns; ++column) {
          if (duckdb_column_type(&result.result, column) != DUCKDB_TYPE_VARCHAR)
            return;  // no answer: CREATE, COPY, SET
          const duckdb_vector vector = duckdb_data_chunk_get_vector(chunk.chunk, column);
          std::uint64_t* validity = duckdb_vector_get_validity(vector);
          cells[column] = nullptr;
          if (validity != nullptr && !duckdb_validity_row_is_valid(validity, at)) continue;
          duckdb_string_t text = static_cast<duckdb_string_t*>(duckdb_vector_get_data(vector))[at];
          texts[column].assign(duckdb_string_t_data(&text), duckdb_string_t_length(text));
          cells[column] = texts[column].c_str();
        }
        row(cells);
      }
    }
    if (const char* problem = duckdb_result_error(&result.result)) throw std::runtime_error(problem);
  }

  /// Fetches the whole answer piece by piece and touches every column of every piece. Returns the number of rows.
  std::uint64_t Fetch(const std::string& sql) {
    Statement statement;
    if (duckdb_prepare(fConnection, sql.c_str(), &statement.statement) == DuckDBError)
      throw std::runtime_error(duckdb_prepare_error(statement.statement));
    Result result;
    if (duckdb_execute_prepared_streaming(statement.statement, &result.result) == DuckDBError) Fail(result.result, sql);
    std::uint64_t rows = 0;
    volatile unsigned char touched = 0;
    while (Chunk chunk{duckdb_fetch_chunk(result.result)}) {
      rows += duckdb_data_chunk_get_size(chunk.chunk);
      const idx_t columns = duckdb_data_chunk_get_column_count(chunk.chunk);
      for (idx_t column = 0; column < columns; ++column) {
        const duckdb_vector vector = duckdb_data_chunk_get_vector(chunk.chunk, column);
        touched = *static_cast<const unsigned char*>(duckdb_vector_get_data(vector));
      }
    }
    static_cast<void>(touched);
    // A failure ends the pieces as the end does; only the result knows of it.
    if (const char* problem = duckdb_result_error(&result.result)) throw std::runtime_error(problem);
    return rows;
  }

 private:
  struct Result {
    Result() { std::memset(&result, 0, sizeof result); }
    ~Result() { duckdb_destroy_result(&result); }
    Result(const Result&) = delete;
    Result& operator=(const Result&) = delete;
    duckdb_result result;
  };
  struct Statement {
    Statement() = default;
    ~Statement() { duckdb_destroy_prepare(&statement); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    duckdb_prepared_statement statement = nullptr;
  };
  struct Chunk {
    explicit Chunk(duckdb_data_chunk fetched) : chunk(fetched) {}
    ~Chunk() { duckdb_destroy_data_chunk(&chunk); }
    Chunk(const Chunk&) = delete;
    Chunk& operator=(const Chunk&) = delete;
    explicit operator bool() const { return chunk != nullptr; }
    duckdb_data_chunk chunk;
  };

  [[noreturn]] static void Fail(duckdb_result& result, const std::string& sql) {
    const char* problem = duckdb_result_error(&result);
    throw std::runtime_error(fmt::format("{}\n  in: {:.200}", problem ? problem : "no reason was given", sql));
  }

  duckdb_database fDatabase = nullptr;
  duckdb_connection fConnection = nullptr;
};

std::vector<Column> ReadColumns(const std::string& path) {
  std::ifstream in(path);
  if (!in) throw std::runtime_error("cannot read " + path);
  std::vector<Column> columns;
  Column column;
  while (in >> column.name >> column.type) columns.push_back(column);
  return columns;
}

bool IsParquet(const std::string& path) { return path.size() > 8 && path.substr(path.size() - 8) == ".parquet"; }

/// The table function that reads the file.
std::string Source(const Options& options, const std::vector<Column>& declared) {
  const std::string file = Quoted(options.file, '\'');
  if (IsParquet(options.file)) return fmt::format("read_parquet({})", file);
  if (declared.empty()) return fmt::format("read_csv({}, header = true, nullstr = '')", file);
  std::string columns;
  for (const Column& column : declared)
    columns +=
        fmt::format("{}{}: {}", columns.empty() ? "" : ", ", Quoted(column.name, '\''), Quoted(column.type, '\''));
  return fmt::format(
      "read_csv({}, columns = {{{}}}, header = true, nullstr = '', auto_detect = false, delim = ',', quote = '\"')",
      file, columns);
}

/// The columns as DuckDB sees them: the declared ones, or those that it finds itself.
std::vector<Column> ColumnsOf(Database& database, const std::string& source) {
  std::vector<Column> columns;
  database.Rows(fmt::format("SELECT column_name, column_type FROM (DESCRIBE SELECT * FROM {})", source),
                [&columns](const std::vector<const char*>& row) {
                  columns.push_back({row[0], row[1]});
                });
  return columns;
}

std::string NumberOrNull(const char* text) { return text == nullptr ? "null" : text; }

/// The answers of SUMMARIZE: {"NAME": {"count", "blank" (percent), "mean", "sd", "quartiles" (approximate)}}.
/// `rows` receives the number of rows.
std::string Summarize(Database& database, const std::string& source, std::uint64_t& rows) {
  std::string answers;
  database.Rows(
      fmt::format("SELECT column_name, \"count\"::VARCHAR, null_percentage::VARCHAR, avg, std, q25, q50, q75 FROM "
                  "(SUMMARIZE SELECT * FROM {})",
                  source),
      [&answers, &rows](const std::vector<const char*>& row) {
        std::from_chars(row[1], row[1] + std::strlen(row[1]), rows);
        if (!answers.empty()) answers += ",\n";
        const bool isText = row[3] == nullptr;
        answers +=
            fmt::format(R"({}: {{"count": {}, "blankPercent": {}, "mean": {}, "sd": {}, "quartiles": [{}, {}, {}]}})",
                        JsonText(row[0]), NumberOrNull(row[1]), NumberOrNull(row[2]), NumberOrNull(row[3]),
                        NumberOrNull(row[4]), isText ? "null" : NumberOrNull(row[5]),
                        isText ? "null" : NumberOrNull(row[6]), isText ? "null" : NumberOrNull(row[7]));
      });
  return answers;
}

/// Works out the exact answers, each a column of the one row of the table `answers`. One query that reads the file
/// once: measured against a table in memory and a query a column (GROUP BY), it takes 0.8 times its CPU time on 500
/// columns, the same on 20 and a fifth on 5,000.
void WorkOutExactly(Database& database, const std::string& source, const std::vector<Column>& columns) {
  constexpr std::string_view kMoments =
      "{{'count': count({0}), 'mean': avg({0}), 'sd': stddev_samp({0}), 'quartiles': "
      "quantile_cont({0}, [0.25, 0.5, 0.75])}} AS {0}";
  constexpr std::string_view kCounts = "{{'counts': histogram({0}), 'blank': count(*) - count({0})}} AS {0}";
  std::string sql = "CREATE TABLE answers AS SELECT count(*) AS \"number of rows\"";
  for (const Column& column : columns)
    sql += ", " + fmt::format(fmt::runtime(column.isDouble() ? kMoments : kCounts), Name(column));
  database.Run(sql + " FROM " + source);
}

/// {"NAME": {"counts": {"VALUE": N, ...}, "blank": N}} or {"NAME": {"count", "mean", "sd", "quartiles"}}.
std::string ExactAnswers(Database& database, const std::vector<Column>& columns) {
  std::string sql;
  for (const Column& column : columns)
    sql += fmt::format("{} to_json({})::VARCHAR", sql.empty() ? "SELECT" : ",", Name(column));
  std::string answers;
  database.Rows(sql + " FROM answers", [&](const std::vector<const char*>& row) {
    for (std::size_t at = 0; at < columns.size(); ++at)
      answers += fmt::format("{}{}: {}", at == 0 ? "" : ",\n", JsonText(columns[at].name), row[at]);
  });
  return answers;
}

/// The number in the one cell of the answer.
std::uint64_t Number(Database& database, const std::string& sql) {
  std::uint64_t number = 0;
  database.Rows(sql, [&number](const std::vector<const char*>& row) {
    std::from_chars(row[0], row[0] + std::strlen(row[0]), number);
  });
  return number;
}

void Run(const Options& options) {
  Database database(options.threads);
  const std::string source =
      Source(options, options.columns.empty() ? std::vector<Column>() : ReadColumns(options.columns));
  std::uint64_t rows = 0;
  std::string answers;
  if (options.mode == "read") {
    rows = database.Fetch("SELECT * FROM " + source);
  } else if (options.mode == "summarize") {
    answers = Summarize(database, source, rows);
  } else if (options.mode == "exact") {
    const std::vector<Column> columns = ColumnsOf(database, source);
    WorkOutExactly(database, source, columns);
    rows = Number(database, "SELECT \"number of rows\"::VARCHAR FROM answers");
    if (options.answers) answers = ExactAnswers(database, columns);
  } else if (options.mode == "write-parquet") {
    database.Run(fmt::format("COPY (SELECT * FROM {}) TO {} (FORMAT parquet)", source, Quoted(options.output, '\'')));
    rows =
        Number(database, fmt::format("SELECT count(*)::VARCHAR FROM read_parquet({})", Quoted(options.output, '\'')));
  }
  std::cout << "{\"rows\": " << rows;
  if (options.answers) std::cout << ", \"answers\": {\n" << answers << "}";
  std::cout << "}\n";
}

Options ReadOptions(int argc, char** argv) {
  Options options;
  std::vector<std::string> words;
  for (int at = 1; at < argc; ++at) {
    const std::string_view word = argv[at];
    const auto value = [&]() -> std::string {
      if (at + 1 >= argc) throw std::invalid_argument(fmt::format("{} needs a value", word));
      return argv[++at];
    };
    if (word == "--columns")
      options.columns = value();
    else if (word == "--output")
      options.output = value();
    else if (word == "--threads")
      options.threads = std::stoi(value());
    else if (word == "--answers")
      options.answers = true;
    else
      words.emplace_back(word);
  }
  if (words.size() != 2) throw std::invalid_argument("MODE and FILE are needed");
  options.mode = words[0];
  options.file = words[1];
  if (options.mode != "read" && options.mode != "summarize" && options.mode != "exact" &&
      options.mode != "write-parquet")
    throw std::invalid_argument("there is no mode " + options.mode);
  if (options.mode == "write-parquet" && options.output.empty())
    throw std::invalid_argument("write-parquet needs --output");
  return options;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  try {
    options = ReadOptions(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr,
                 "duckdb_rival: %s\nusage: duckdb_rival read|summarize|exact|write-parquet FILE [--columns LIST] "
                 "[--threads N] [--answers] [--output FILE]\n",
                 error.what());
    return 2;
  }
  try {
    Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "duckdb_rival: %s\n", error.what());
    return 1;
  }
  return 0;
}
