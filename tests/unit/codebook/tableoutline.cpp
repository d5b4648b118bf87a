#include "tests/unit/codebook/tableoutline.h"

namespace codebook::test {

namespace {

using runtime::output::CellContent;
using runtime::output::Item;

std::string marked(const CellContent& content) {
  switch (content.kind) {
    case CellContent::Kind::Text:
      return (content.fixed ? "fixed:" : "data:") + content.text;
    case CellContent::Kind::Number:
      return "number:" + content.text;
    case CellContent::Kind::DataValue:
      return "value:" + content.text;
    case CellContent::Kind::Variable:
      return (content.origin->show == 0 ? "name:" : "label:") + content.text;
  }
  return "";
}

void addItems(const Item& group, const std::string& indent, std::vector<std::string>& lines) {
  for (const auto& item : group.items) {
    if (item->isGroup) {
      lines.push_back(indent + "group " + marked(*item->label) + (item->flag ? "" : " unflagged"));
      addItems(*item, indent + "  ", lines);
      continue;
    }
    std::string line = indent + marked(*item->label);
    for (const runtime::output::Cell& cell : item->cells) {
      line += " | ";
      if (cell.column != nullptr) line += marked(*cell.column->label) + " = ";
      line += marked(*cell.content);
    }
    lines.push_back(line);
  }
}

std::string word(bool flag) { return flag ? "true" : "false"; }

}  // namespace

std::vector<std::string> outline(const runtime::output::Table& table) {
  std::vector<std::string> lines = {"title " + marked(*table.title), "subtype " + marked(*table.subtype),
                                    "flag " + word(table.flag)};
  if (table.minDataColumnWidth) lines.push_back("width " + std::to_string(*table.minDataColumnWidth));
  for (const auto& dimension : table.dimensions) {
    lines.push_back((dimension->inColumns ? "columns " : "rows ") + marked(*dimension->label) + " " +
                    std::to_string(dimension->position) + " " + word(dimension->positionFlags[0]) + " " +
                    word(dimension->positionFlags[1]));
    addItems(dimension->root, "  ", lines);
  }
  return lines;
}

}  // namespace codebook::test
