// The cells of a stored column, one by one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "runtime/data/store/columnardataset.h"

namespace runtime::data::test {

/// Calls see(view, row of the view) for every row.
template <class See>
void ForEachCell(const StoredColumn& column, See see) {
  std::vector<std::byte> buffer;
  for (std::size_t group = 0; group < column.groups->size(); ++group) {
    const std::byte* const cells = column.groups->Load(group, buffer);
    const ColumnView view = column.groups->View(group, cells, column.column, 0);
    for (std::size_t row = 0; row < column.groups->rowsOf(group); ++row) see(view, row);
  }
}

template <class Integer>
double NumberOf(const ColumnView& view, std::size_t row) {
  const Integer cell = static_cast<const Integer*>(view.cells)[row];
  return cell == std::numeric_limits<Integer>::min() ? std::numeric_limits<double>::quiet_NaN() : cell;
}

/// NaN: system-missing.
inline std::vector<double> Numbers(const StoredColumn& column) {
  std::vector<double> numbers;
  ForEachCell(column, [&](const ColumnView& view, std::size_t row) {
    switch (view.storage) {
      case ColumnStorage::Int8:
        return numbers.push_back(NumberOf<std::int8_t>(view, row));
      case ColumnStorage::Int16:
        return numbers.push_back(NumberOf<std::int16_t>(view, row));
      case ColumnStorage::Int32:
        return numbers.push_back(NumberOf<std::int32_t>(view, row));
      default:
        return numbers.push_back(static_cast<const double*>(view.cells)[row]);
    }
  });
  return numbers;
}

inline std::vector<std::string> Texts(const StoredColumn& column) {
  std::vector<std::string> texts;
  ForEachCell(column, [&](const ColumnView& view, std::size_t row) {
    texts.emplace_back(column.strings->Text(static_cast<const std::uint32_t*>(view.cells)[row]));
  });
  return texts;
}

}  // namespace runtime::data::test
