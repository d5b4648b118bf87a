// A dataset: a dictionary and a table of cases.
#pragma once

#include <cstdint>
#include <memory>

#include "host/data/casecursor.h"

#include "runtime/data/records.h"

namespace runtime::data {

/// Immutable once open; may be read by several threads, each with its own cursor.
class Dataset {
 public:
  explicit Dataset(Dictionary dictionary) : fDictionary(std::move(dictionary)) {}
  virtual ~Dataset();
  Dataset(const Dataset&) = delete;
  Dataset& operator=(const Dataset&) = delete;

  const Dictionary& dictionary() const { return fDictionary; }

  /// A new walk over the cases. The dataset must outlive it.
  virtual std::unique_ptr<CaseCursor> NewCursor() const = 0;
  /// Number of cases, unweighted; negative when it is not known.
  virtual std::int64_t caseCount() const = 0;
  /// Number of rows of a cursor; negative when it is not known.
  virtual std::int64_t rowCount() const { return caseCount(); }

 private:
  Dictionary fDictionary;
};

}  // namespace runtime::data
