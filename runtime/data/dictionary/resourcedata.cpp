#include "runtime/data/dictionary/resourcedata.h"

#include <algorithm>

#include <fmt/format.h>

#include "runtime/data/dictionary/datapath.h"
#include "runtime/data/dictionary/jsontable.h"
#include "runtime/data/dictionary/referredfile.h"
#include "runtime/data/dictionary/resourcedialect.h"
#include "runtime/data/source/tablesource.h"

namespace runtime::data {
namespace {

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char byte) { return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + 32) : byte; });
  return text;
}

/// What `format` or else `mediatype` says, in lower case; empty when neither is there.
std::string FormatOf(const JsonPlace& resource, const PackageContext& context) {
  if (const auto format = FindText(resource, "format", context.deviations)) return Lower(*format);
  const std::string media = Lower(FindText(resource, "mediatype", context.deviations).value_or(""));
  if (media.find("json") != std::string::npos) return "json";
  if (media.find("tab-separated") != std::string::npos) return "tsv";
  return media.find("csv") != std::string::npos ? "csv" : "";
}

/// A text that stands for the data: CSV, or JSON written as a text.
InlineTable ReadInlineText(const JsonPlace& data, const std::string& format, const TextDialect& dialect,
                           const JsonDialect& json, const PackageContext& context) {
  const std::string& text = data.Text();
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) data.Fail("the data are empty; a table has at least a header line");
  const bool isJson = format == "json" || (format.empty() && (text[first] == '[' || text[first] == '{'));
  if (isJson) {
    const std::string origin = data.Where();
    const Json tree = ParseJson(text, origin, &context.notes);
    return ReadJsonTable({tree, origin}, json);
  }
  InlineTable table;
  table.csv = text;
  table.dialect = dialect;
  table.dialect.encoding.reset();  // the descriptor is UTF-8
  if (format == "tsv" && !table.dialect.delimiter) table.dialect.delimiter = "\t";
  return table;
}

}  // namespace

ResourceData ReadResourceData(const JsonPlace& resource, const PackageContext& context, bool withData,
                              TextDialect& dialect) {
  JsonDialect json;
  dialect.encoding = FindText(resource, "encoding", context.deviations);
  if (const auto said = resource.Find("dialect")) {
    if (said->isText()) {
      const ReferredFile file(*said, context);
      ReadTableDialect(file.root(), dialect, json, context.deviations, context.notes);
    } else {
      ReadTableDialect(*said, dialect, json, context.deviations, context.notes);
    }
  }
  ResourceData read;
  if (!withData) return read;
  const std::vector<JsonPlace> paths = PathsOf(resource);
  const auto data = resource.Find("data");
  const std::string format = FormatOf(resource, context);
  if (paths.empty()) {
    if (!data) resource.Fail("the resource names no data; give it a \"path\" or \"data\"");
    read.inlineData =
        data->isText() ? ReadInlineText(*data, format, dialect, json, context) : ReadJsonTable(*data, json);
    return read;
  }
  if (data) context.notes.push_back({false, data->Where() + ": the resource has a \"path\" too, and that one is read"});
  for (const JsonPlace& path : paths) read.paths.push_back(PathInFolder(context.folder, path));
  if (LowerEnding(read.paths.front()) != ".json") return read;
  if (read.paths.size() > 1) paths[1].Fail("a resource of several JSON files is not read; join them in one list");
  const Json tree = ReadJsonFile(read.paths.front(), &context.notes);
  read.inlineData = ReadJsonTable({tree, read.paths.front()}, json);
  return read;
}

}  // namespace runtime::data
