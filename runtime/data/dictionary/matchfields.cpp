#include <string>
#include <unordered_map>
#include <vector>

#include <fmt/format.h>

#include "runtime/data/dictionary/assemble.h"

namespace runtime::data {
namespace {

void Tell(std::string text, bool strict, std::vector<Note>& notes) {
  if (strict) throw DataError(text);
  notes.push_back({false, std::move(text)});
}

}  // namespace

std::vector<const FieldDescriptor*> MatchFields(const TableDescriptor& descriptor,
                                                const std::vector<std::string>& headers, bool strict,
                                                std::vector<Note>& notes) {
  std::vector<const FieldDescriptor*> matched(headers.size(), nullptr);
  if (!descriptor.hasSchema) return matched;
  const bool byPosition = !descriptor.dialect.header.value_or(true);
  std::unordered_map<std::string, std::size_t> columnOfHeader;
  if (!byPosition)
    for (std::size_t column = 0; column < headers.size(); ++column) columnOfHeader.emplace(headers[column], column);
  std::size_t position = 0;
  for (const FieldDescriptor& field : descriptor.fields) {
    std::size_t column = position++;
    if (!byPosition) {
      const auto found = columnOfHeader.find(field.name);
      column = found == columnOfHeader.end() ? headers.size() : found->second;
    }
    if (column < headers.size())
      matched[column] = &field;
    else
      Tell(fmt::format("{}: field \"{}\" has no column in the data", descriptor.origin, field.name), strict, notes);
  }
  for (std::size_t column = 0; column < headers.size(); ++column)
    if (!matched[column])
      Tell(fmt::format("{}: column {} \"{}\" of the data has no field; its type is inferred", descriptor.origin,
                       column + 1, headers[column]),
           strict, notes);
  return matched;
}

}  // namespace runtime::data
