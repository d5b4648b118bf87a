#include "runtime/data/source/filefault.h"

#include <cstdint>
#include <fstream>
#include <string_view>

#include <fmt/format.h>

#include "runtime/data/dictionary/jsonfile.h"
#include "runtime/data/open.h"
#include "runtime/data/source/tablesource.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

bool IsJsonObject(const std::string& line) {
  try {
    return ParseJson(line, "").is_object();
  } catch (const DataError&) {
    return false;
  }
}

std::optional<std::string> FindBadLine(const std::string& name, const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string line;
  for (std::int64_t number = 1; std::getline(file, line); ++number) {
    if (line.find_first_not_of(" \t\r") == std::string::npos || IsJsonObject(line)) continue;
    return fmt::format("{}: line {} is no JSON object: {}; every line of the file has to be one", name, number,
                       QuotedCell(line));
  }
  return std::nullopt;
}

std::optional<std::string> FindMissingMark(const std::string& name, const std::string& path) {
  constexpr std::string_view kMark = "PAR1";
  std::ifstream file(path, std::ios::binary);
  char begin[4] = {};
  char end[4] = {};
  file.read(begin, sizeof begin);
  file.seekg(-4, std::ios::end);
  file.read(end, sizeof end);
  if (file && std::string_view(begin, 4) == kMark && std::string_view(end, 4) == kMark) return std::nullopt;
  return fmt::format("{}: this is no whole Parquet file; write it again, or name it after what it is", name);
}

}  // namespace

std::optional<std::string> FindFileFault(const std::string& name, const std::string& path) {
  return TableFileKindOf(name) == TableFileKind::Parquet ? FindMissingMark(name, path) : FindBadLine(name, path);
}

}  // namespace runtime::data
