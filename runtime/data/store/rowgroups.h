// Where the cells of a table stand: groups of rows, in memory or in a temporary file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "host/data/casecursor.h"

#include "runtime/machine/spillfile.h"

namespace runtime::data {

/// Most cases of a dataset: the interface counts them in an int.
inline constexpr std::int64_t kMostCases = INT32_MAX;

/// The cells of all columns over some rows, each column in the smallest storage that holds them.
class RowGroup {
 public:
  RowGroup() = default;
  RowGroup(std::size_t rows, std::size_t columns) : fRows(rows) { fColumns.reserve(columns); }

  /// First the storage of each column in turn, then Allocate, then the cells.
  void AddColumn(ColumnStorage storage);
  void Allocate();
  std::byte* Cells(std::size_t column) { return fCells.get() + fColumns[column].begin(); }

  std::size_t rows() const { return fRows; }
  std::size_t columns() const { return fColumns.size(); }
  /// Bytes of all cells.
  std::size_t bytes() const { return fBytes; }

 private:
  friend class RowGroups;
  static constexpr std::size_t kAlignment = sizeof(double);
  /// Small, for a wide table has very many of them.
  struct Column {
    std::uint32_t place;  // of its cells among all, in units of kAlignment bytes
    ColumnStorage storage;

    std::size_t begin() const { return place * kAlignment; }
  };

  std::size_t fRows = 0;
  std::size_t fBytes = 0;
  std::vector<Column> fColumns;
  std::unique_ptr<std::byte[]> fCells;  // null: in the file
  std::uint64_t fPlaceInFile = 0;
};

/// How much memory the groups of a dataset may still take, all its RowGroups together.
struct ColumnMemory {
  std::int64_t left = INT64_MAX;
};

/// The groups of a table in the order of their rows. Once they are all there, several threads may read them.
class RowGroups {
 public:
  /// Groups for which `memory` has no room any more are written to a file.
  explicit RowGroups(std::shared_ptr<ColumnMemory> memory) : fMemory(std::move(memory)) {}

  /// Groups without rows are left out. Throws SpillError.
  void Append(RowGroup group);

  std::size_t size() const { return fGroups.size(); }
  std::int64_t rows() const { return fRows; }
  /// Bytes of all cells, in memory or in the file.
  std::int64_t bytes() const { return fBytes; }
  std::size_t rowsOf(std::size_t group) const { return fGroups[group].fRows; }

  /// The cells of a group, for View; read into `buffer` when they are in the file. Throws SpillError.
  const std::byte* Load(std::size_t group, std::vector<std::byte>& buffer) const;
  /// A column's cells from a row of the group on. `strings` is left out.
  ColumnView View(std::size_t group, const std::byte* cells, std::size_t column, std::size_t row) const;

 private:
  std::shared_ptr<ColumnMemory> fMemory;
  std::vector<RowGroup> fGroups;
  std::int64_t fRows = 0;
  std::int64_t fBytes = 0;
  machine::SpillFile fFile;
};

}  // namespace runtime::data
