#include "runtime/data/store/blanktexts.h"

#include <cstring>
#include <utility>

#include "runtime/data/store/stringtable.h"

namespace runtime::data {

StoredColumn BlankTexts::Column() {
  if (fColumn.groups) return fColumn;
  const auto strings = std::make_shared<ArenaStringTable>();
  strings->Enter({});  // the code 0
  const auto groups = std::make_shared<RowGroups>(fMemory);
  for (std::size_t i = 0; i < fLike.size(); ++i) {
    RowGroup group(fLike.rowsOf(i), 1);
    group.AddColumn(ColumnStorage::StringCode);
    group.Allocate();
    std::memset(group.Cells(0), 0, group.bytes());
    groups->Append(std::move(group));
  }
  fColumn = {groups, 0, strings};
  return fColumn;
}

}  // namespace runtime::data
