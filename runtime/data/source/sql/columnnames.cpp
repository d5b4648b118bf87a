#include "runtime/data/source/sql/columnnames.h"

#include <cstddef>
#include <string_view>
#include <unordered_map>

#include <fmt/format.h>

#include "runtime/data/open.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {

void CheckColumnNames(const std::vector<SqlColumn>& columns, const std::string& source, const std::string& relation) {
  if (columns.empty())
    throw DataError(fmt::format("{}: {} has no columns; there is nothing to describe", source, relation));
  std::unordered_map<std::string_view, std::size_t> places;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::string& name = columns[i].name;
    if (name.empty())
      throw DataError(fmt::format("{}: column {} of the query has no name; give it one with AS", source, i + 1));
    const auto [first, isNew] = places.emplace(name, i);
    if (!isNew)
      throw DataError(fmt::format("{}: columns {} and {} of the query are both named {}; name them apart with AS",
                                  source, first->second + 1, i + 1, QuotedCell(name)));
  }
}

}  // namespace runtime::data
