// How the data of a table is read and where its columns go.
#pragma once

#include <cstddef>
#include <memory>

#include "runtime/data/store/rowgroups.h"
#include "runtime/machine/progress.h"
#include "runtime/machine/threadpool.h"

namespace runtime::data {

/// How a reading is done; no result depends on it.
struct ReadingManner {
  machine::ThreadPool* pool = nullptr;  // null: on the calling thread
  std::size_t segmentBytes = 0;         // 0: chosen by the size of the files
  machine::ProgressListener onProgress;
};

struct ReadingOptions {
  bool explainTypes = false;  // gather the steps that led to inferred types
  bool strict = false;        // rows of a wrong length and cells that do not read as their type are errors
  ReadingManner manner;
  std::shared_ptr<ColumnMemory> memory = std::make_shared<ColumnMemory>();
};

}  // namespace runtime::data
