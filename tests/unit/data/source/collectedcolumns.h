// The cells of a source, as texts.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "runtime/data/source/tablesource.h"

namespace runtime::data {

struct Collected : ColumnSink {
  void Bytes(const std::int8_t*, std::size_t) override { FAIL(); }
  void Integers(const std::int32_t*, std::size_t) override { FAIL(); }
  void Numbers(const double* values, std::size_t count) override {
    for (std::size_t i = 0; i < count; ++i) cells.push_back(fmt::format("{}", values[i]));
  }
  void Texts(const std::string_view* texts, std::size_t count) override {
    for (std::size_t i = 0; i < count; ++i) cells.emplace_back(texts[i]);
  }
  void WrittenDecimals(int written) override { decimals = std::max(decimals, written); }
  void Unreadable(std::string_view text) override { unreadable.emplace_back(text); }
  std::vector<std::string> cells;
  std::vector<std::string> unreadable;
  int decimals = 0;
};

inline std::vector<Collected> ReadAll(TableSource& source, bool asText = false) {
  std::vector<Collected> columns(source.columns().size());
  std::vector<StreamColumn> wanted;
  for (std::size_t column = 0; column < columns.size(); ++column) wanted.push_back({column, asText});
  const auto stream = source.Open(wanted);
  while (const std::size_t rows = stream->Next()) {
    const std::size_t seam = rows / 3;
    for (std::size_t column = 0; column < columns.size(); ++column) {
      stream->Take(column, 0, seam, columns[column]);
      stream->Take(column, seam, rows - seam, columns[column]);
    }
  }
  for (const Collected& column : columns) EXPECT_EQ(static_cast<std::int64_t>(column.cells.size()), source.rowCount());
  return columns;
}

}  // namespace runtime::data
