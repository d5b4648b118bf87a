// Reading a table from files of delimited text: scan, type, store.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/open.h"
#include "runtime/data/store/readingoptions.h"
#include "runtime/data/typing/columntyper.h"

namespace runtime::data {

/// Says how each column is to be read, from the headers as they stand in the file (all empty without a header); what
/// there is to tell goes into `notes`. May be called more than once.
using PlanColumns =
    std::function<std::vector<ColumnPlan>(const std::vector<std::string>& headers, std::vector<Note>& notes)>;

/// A text to read: a file, "-" for standard input, or one that is at hand.
struct CsvInput {
  std::string name;                 // the path; of a text, what messages name it
  std::optional<std::string> text;  // in UTF-8
};

/// Reads the inputs, one behind the other, as one table; all must have the same headers. What there is to tell goes
/// into `notes`. Throws DataError and SpillError. REQUIRES: at least one input.
TypedTable ReadCsvInputs(std::vector<CsvInput> inputs, const TextDialect& dialect, const PlanColumns& plan,
                         const ReadingOptions& options, std::vector<Note>& notes);

/// Reads the files, one behind the other, as one table; all must have the same headers. "-" is standard input. What
/// there is to tell goes into `notes`. Throws DataError and SpillError. REQUIRES: at least one path.
TypedTable ReadCsv(const std::vector<std::string>& paths, const TextDialect& dialect, const PlanColumns& plan,
                   const ReadingOptions& options, std::vector<Note>& notes);

}  // namespace runtime::data
