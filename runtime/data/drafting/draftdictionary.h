// A dictionary to start from, guessed from the data alone.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/open.h"
#include "runtime/machine/threadpool.h"

namespace runtime::data {

/// Where a person has something to write: "TODO: label of q1". Every such text of a draft begins so.
inline constexpr const char* kToDo = "TODO: ";

struct Draft {
  TableDescriptor table;          // guesses are told in the extra "codebook.draft" of the fields and of the table
  std::size_t toDos = 0;          // labels left to a person
  std::size_t typedColumns = 0;   // columns of texts that proved to be numbers or dates beside codes
  std::size_t missingFields = 0;  // fields with guessed missing codes
  std::vector<std::string> missingCodes;  // the different ones, in the order in which they were met
  std::vector<std::string> sets;          // names of the proposed sets
  std::string weight;                     // the guessed weight; empty: none
};

/// Types, formats and levels as they were inferred; labels as to-dos; categories of variables with few values; guesses
/// of missing codes, sets and weight. REQUIRES: the dataset was opened with `describe`
/// and `forChecking`, and without a dictionary. `pool`
/// may be null; the result does not depend on it.
Draft DraftDictionary(const OpenedDataset& opened, machine::ThreadPool* pool);

}  // namespace runtime::data
