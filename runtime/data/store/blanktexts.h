// Columns of a string type that hold nothing but empty texts.
#pragma once

#include <memory>

#include "runtime/data/store/columnardataset.h"

namespace runtime::data {

/// All such columns of a table share their cells, which are made when they are first asked for.
class BlankTexts {
 public:
  /// `like` has the rows of the table. It must outlive this object.
  BlankTexts(const RowGroups& like, std::shared_ptr<ColumnMemory> memory) : fLike(like), fMemory(std::move(memory)) {}

  StoredColumn Column();

 private:
  const RowGroups& fLike;
  std::shared_ptr<ColumnMemory> fMemory;
  StoredColumn fColumn;
};

}  // namespace runtime::data
