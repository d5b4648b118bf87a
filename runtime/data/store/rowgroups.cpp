#include "runtime/data/store/rowgroups.h"

#include <utility>

#include "runtime/data/store/numericpart.h"

namespace runtime::data {

void RowGroup::AddColumn(ColumnStorage storage) {
  fColumns.push_back({static_cast<std::uint32_t>(fBytes / kAlignment), storage});
  fBytes += (fRows * BytesPerCell(storage) + kAlignment - 1) / kAlignment * kAlignment;
}

void RowGroup::Allocate() { fCells = std::make_unique_for_overwrite<std::byte[]>(fBytes); }

void RowGroups::Append(RowGroup group) {
  if (group.fRows == 0) return;
  fRows += static_cast<std::int64_t>(group.fRows);
  const auto bytes = static_cast<std::int64_t>(group.fBytes);
  fBytes += bytes;
  if (bytes <= fMemory->left) {
    fMemory->left -= bytes;
  } else {
    group.fPlaceInFile = fFile.Append(group.fCells.get(), group.fBytes);
    group.fCells.reset();
  }
  fGroups.push_back(std::move(group));
}

const std::byte* RowGroups::Load(std::size_t group, std::vector<std::byte>& buffer) const {
  const RowGroup& wanted = fGroups[group];
  if (wanted.fCells != nullptr || wanted.fBytes == 0) return wanted.fCells.get();
  if (buffer.size() < wanted.fBytes) buffer.resize(wanted.fBytes);
  fFile.Read(wanted.fPlaceInFile, buffer.data(), wanted.fBytes);
  return buffer.data();
}

ColumnView RowGroups::View(std::size_t group, const std::byte* cells, std::size_t column, std::size_t row) const {
  const RowGroup::Column& place = fGroups[group].fColumns[column];
  return {place.storage, cells + place.begin() + row * BytesPerCell(place.storage), nullptr};
}

}  // namespace runtime::data
