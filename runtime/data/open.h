// Opening a dataset: data file + dictionary.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "runtime/data/dataset.h"
#include "runtime/data/typing/typedecision.h"
#include "runtime/machine/progress.h"
#include "runtime/machine/threadpool.h"

namespace runtime::data {

struct ReadingFacts;
struct TableDescriptor;
class SqlConnection;

/// The data or the dictionary cannot be read: what, where (file, line, column, variable) and what to do, in what().
class DataError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What a note is about, for who tells it in another way.
enum class NoteTopic {
  Other,
  Fields,  // fields without a column, columns without a field
  Names,   // headers that are empty or stand twice
  Cells    // cells that do not read as their type
};

/// Something that reading the data or the dictionary had to say, without stopping.
struct Note {
  bool isError = false;  // else a warning
  std::string text;
  NoteTopic topic = NoteTopic::Other;
};

struct OpenOptions {
  /// A data file, a pattern of such (* ? [...]) unless a file has that very name, a datapackage.json, "-" for
  /// standard input, or the address of a database ("sqlite:FILE", "odbc:DSN=...").
  std::string path;
  std::vector<std::string> furtherPaths;  // data files or patterns of them, read behind the first as one table with it
  std::optional<std::string> table;       // of a database or a SQLite file that holds several
  std::optional<std::string> query;       // of a database, instead of a table
  std::optional<std::string> dictionary;  // names the dictionary; otherwise it is looked for beside the data
  std::optional<std::string> resource;    // of a data package that holds several
  std::optional<std::string> schemas;     // a folder with copies of schemas that a package names by address
  std::optional<std::string> weight;      // overrides the dictionary's weight variable; empty: unweighted
  /// A database counts where the data are, and the cursor's cases are groups; else its rows are fetched.
  bool countInDatabase = false;
  /// Told of each statement that is sent to a database, with the name of the database. May be empty.
  std::function<void(const std::string& source, const std::string& query)> onQuery;
  /// Connects to the database of an address; empty: by what the address says.
  std::function<std::unique_ptr<SqlConnection>(const std::string& address)> connect;
  bool inference = true;       // else a column whose type nothing says is text
  bool explainTypes = false;   // gather the decisions about types
  bool strict = false;         // what does not fit the dictionary is an error
  std::int64_t chunkRows = 0;  // rows that a cursor hands out at once; 0: a whole block
  /// Threads that read; null: the calling one alone. Shared with the dataset.
  std::shared_ptr<machine::ThreadPool> pool;
  /// Bytes of memory that the columns may take; what is beyond goes to a temporary file. 0: no limit.
  std::int64_t columnMemory = 0;
  machine::ProgressListener onProgress;  // of reading
  std::size_t segmentBytes = 0;          // of text that is read at a time; 0: chosen; changes no result
  bool describe = false;                 // give a description of the dataset, too
  bool dictionaryBeside = true;          // look for a dictionary beside the data when none is named
  /// Give the facts of reading, and leave out members of sets that the data do not have instead of stopping there.
  bool forChecking = false;
};

struct OpenedDataset {
  std::shared_ptr<const Dataset> dataset;
  std::vector<Note> notes;          // in the order in which they arose
  std::vector<TypeDecision> types;  // of each column of the data, where they are asked for
  std::int64_t columnBytes = 0;     // of the cells of all columns as they are stored
  /// The dictionary of the dataset as a dictionary file would say it, see Describe; null unless it was asked for.
  std::shared_ptr<const TableDescriptor> description;
  std::shared_ptr<const ReadingFacts> reading;  // null unless it was opened for checking
};

/// Throws DataError.
OpenedDataset OpenDataset(const OpenOptions& options);

}  // namespace runtime::data
