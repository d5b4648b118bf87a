// What a connection answers, for tests.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "runtime/data/open.h"
#include "runtime/data/source/sql/sqlconnection.h"

namespace runtime::data {

/// The cells of a query's first column.
inline std::vector<std::optional<std::string>> AskedColumn(SqlConnection& connection, const std::string& query) {
  std::vector<std::optional<std::string>> cells;
  const auto rows = connection.Ask(query);
  while (rows->Next()) {
    const auto text = rows->Text(0);
    cells.push_back(text ? std::optional<std::string>(*text) : std::nullopt);
  }
  return cells;
}

/// What the DataError says that `action` throws; empty when it throws none.
inline std::string DataErrorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const DataError& error) {
    return error.what();
  }
  return "";
}

}  // namespace runtime::data
