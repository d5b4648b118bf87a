// Opening a dataset: data file + dictionary.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "runtime/data/dataset.h"
#include "runtime/machine/progress.h"
#include "runtime/machine/threadpool.h"

namespace runtime::data {

/// The data or the dictionary cannot be read: what, where (file, line, column, variable) and what to do, in what().
class DataError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Something that reading the data or the dictionary had to say, without stopping.
struct Note {
  bool isError = false;  // else a warning
  std::string text;
};

struct OpenOptions {
  std::string path;                       // a data file, a datapackage.json, or "-" for standard input
  std::optional<std::string> dictionary;  // names the dictionary; otherwise it is looked for beside the data
  std::optional<std::string> resource;    // of a data package that holds several
  std::optional<std::string> schemas;     // a folder with copies of schemas that a package names by address
  std::optional<std::string> weight;      // overrides the dictionary's weight variable; empty: unweighted
  bool strict = false;                    // what does not fit the dictionary is an error
  std::int64_t chunkRows = 0;             // rows that a cursor hands out at once; 0: a whole block
  /// Threads that read; null: the calling one alone. Shared with the dataset.
  std::shared_ptr<machine::ThreadPool> pool;
  /// Bytes of memory that the columns may take; what is beyond goes to a temporary file. 0: no limit.
  std::int64_t columnMemory = 0;
  machine::ProgressListener onProgress;  // of reading
  std::size_t segmentBytes = 0;          // of text that is read at a time; 0: chosen; changes no result
};

struct OpenedDataset {
  std::shared_ptr<const Dataset> dataset;
  std::vector<Note> notes;       // in the order in which they arose
  std::int64_t columnBytes = 0;  // of the cells of all columns as they are stored
};

/// Throws DataError.
OpenedDataset OpenDataset(const OpenOptions& options);

}  // namespace runtime::data
