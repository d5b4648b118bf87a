#include "runtime/data/headersofdata.h"

#include "runtime/data/csv/csvdialect.h"
#include "runtime/data/csv/headerrecord.h"
#include "runtime/data/csv/inputtext.h"
#include "runtime/data/source/tablesource.h"

namespace runtime::data {

std::vector<std::string> HeadersOfData(const std::string& path) {
  if (path == "-") return {};
  if (IsTableFile(path)) {
    std::vector<std::string> headers;
    for (const SourceColumn& column : OpenTableFile(path, 1)->columns()) headers.push_back(column.name);
    return headers;
  }
  std::vector<Note> unused;  // they are told when the data are read
  const InputText input(path, std::nullopt, unused);
  return ReadHeaderRecord(input.text(), FindDialect(input.text(), {}, input.name()), input.name()).names;
}

}  // namespace runtime::data
