#include "runtime/data/dictionary/jsontable.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

#include <fmt/format.h>

#include "runtime/data/typing/numbertext.h"

namespace runtime::data {
namespace {

/// Rows of cells, written as CSV.
class TableWriter {
 public:
  void BeginRow() { fCells.clear(); }
  void Put(std::size_t column, std::string cell) {
    if (fCells.size() <= column) fCells.resize(column + 1);
    fCells[column] = std::move(cell);
  }
  void EndRow(std::size_t columns) {
    fCells.resize(columns);
    for (std::size_t column = 0; column < columns; ++column) {
      if (column > 0) fCsv.push_back(',');
      PutCell(fCells[column]);
    }
    fCsv.push_back('\n');
  }
  std::string Take() { return std::move(fCsv); }

 private:
  /// Everything is quoted but what is plain, so that blanks and empty only cells of a row stay.
  void PutCell(std::string_view cell) {
    if (!cell.empty() && cell.find_first_of(",\"\r\n ") == std::string_view::npos) {
      fCsv += cell;
      return;
    }
    fCsv.push_back('"');
    for (const char byte : cell) {
      if (byte == '"') fCsv.push_back('"');
      fCsv.push_back(byte);
    }
    fCsv.push_back('"');
  }

  std::vector<std::string> fCells;
  std::string fCsv;
};

std::string CellText(const JsonPlace& value) {
  if (value.isNull()) return {};
  return value.isObject() || value.isList() ? value.Written() : value.Scalar();
}

/// Whether an inference from text would make a number or a truth value of it.
bool LooksLikeNumber(std::string_view text) {
  NumberReading reading;
  return ReadNumberText(Trimmed(text), reading) || text == "true" || text == "false";
}

/// The columns, by their headers, that hold a text of JSON that looks like a number.
class TextColumns {
 public:
  void See(std::size_t column, const JsonPlace& value) {
    if (!value.isText() || !LooksLikeNumber(value.Text())) return;
    if (fIsText.size() <= column) fIsText.resize(column + 1);
    fIsText[column] = true;
  }
  std::vector<std::string> Of(const std::vector<std::string>& headers) const {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < std::min(headers.size(), fIsText.size()); ++i)
      if (fIsText[i]) names.push_back(headers[i]);
    return names;
  }

 private:
  std::vector<bool> fIsText;
};

InlineTable FromArrays(const std::vector<JsonPlace>& items, bool hasHeader) {
  InlineTable table;
  TableWriter writer;
  TextColumns texts;
  std::vector<std::string> headers;
  std::size_t columns = 0;
  for (const JsonPlace& item : items) columns = std::max(columns, item.Entries().size());
  if (hasHeader)
    for (const JsonPlace& name : items.front().Entries()) headers.push_back(CellText(name));
  if (hasHeader && headers.size() < columns)
    items.front().Fail(fmt::format("the header has {} names, and a row has {} cells", headers.size(), columns));
  if (!hasHeader)
    for (std::size_t i = 0; i < columns; ++i) headers.push_back(fmt::format("field{}", i + 1));
  if (headers.empty()) items.front().Fail("the first row has no cell");
  const auto put = [&](const JsonPlace& item) {
    writer.BeginRow();
    std::size_t column = 0;
    for (const JsonPlace& cell : item.Entries()) {
      texts.See(column, cell);
      writer.Put(column++, CellText(cell));
    }
    writer.EndRow(headers.size());
  };
  writer.BeginRow();
  for (std::size_t i = 0; i < headers.size(); ++i) writer.Put(i, headers[i]);
  writer.EndRow(headers.size());
  for (std::size_t i = hasHeader ? 1 : 0; i < items.size(); ++i) put(items[i]);
  table.csv = writer.Take();
  table.textColumns = texts.Of(headers);
  return table;
}

InlineTable FromObjects(const std::vector<JsonPlace>& items, const std::optional<std::vector<std::string>>& keys) {
  std::vector<std::string> headers;
  std::unordered_map<std::string, std::size_t> columnOf;
  const auto add = [&](const std::string& key) {
    if (columnOf.emplace(key, headers.size()).second) headers.push_back(key);
  };
  if (keys)
    for (const std::string& key : *keys) add(key);
  else
    for (const JsonPlace& item : items)
      for (const auto& member : item.Members()) add(member.first);
  if (headers.empty()) items.front().Fail("no item has a property, so that there is no column");
  InlineTable table;
  TableWriter writer;
  TextColumns texts;
  writer.BeginRow();
  for (std::size_t i = 0; i < headers.size(); ++i) writer.Put(i, headers[i]);
  writer.EndRow(headers.size());
  for (const JsonPlace& item : items) {
    writer.BeginRow();
    for (const auto& [key, value] : item.Members()) {
      const auto column = columnOf.find(key);
      if (column == columnOf.end()) continue;
      texts.See(column->second, value);
      writer.Put(column->second, CellText(value));
    }
    writer.EndRow(headers.size());
  }
  table.csv = writer.Take();
  table.textColumns = texts.Of(headers);
  return table;
}

}  // namespace

InlineTable ReadJsonTable(const JsonPlace& data, const JsonDialect& dialect) {
  const JsonPlace list = dialect.property && data.isObject() ? data.Need(*dialect.property) : data;
  if (list.isObject())
    list.Fail(
        "the data must be a list of arrays or of objects; where it stands in a property, name it in the dialect "
        "(\"property\")");
  const std::vector<JsonPlace> items = list.Entries();
  if (items.empty()) list.Fail("the list is empty; a table has at least one item");
  if (dialect.itemType && *dialect.itemType != "array" && *dialect.itemType != "object")
    list.Fail(fmt::format("the dialect's itemType is \"{}\"; it is \"array\" or \"object\"", *dialect.itemType));
  const bool ofObjects = dialect.itemType ? *dialect.itemType == "object" : items.front().isObject();
  InlineTable table = ofObjects ? FromObjects(items, dialect.keys) : FromArrays(items, dialect.header);
  table.dialect.delimiter = ",";
  table.dialect.quoteChar = "\"";
  table.dialect.header = true;
  return table;
}

}  // namespace runtime::data
