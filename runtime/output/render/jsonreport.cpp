#include "runtime/output/render/jsonreport.h"

#include <cmath>

#include "runtime/output/format/kinds.h"
#include "runtime/output/model/methodnotes.h"
#include "runtime/output/render/jsontext.h"

namespace runtime::output {

namespace {

constexpr std::size_t kFlushedAt = 1 << 16;  // bytes

const char* SourceWord(Source source) {
  switch (source) {
    case Source::Command:
      return "command";
    case Source::Data:
      return "data";
    case Source::Host:
      break;
  }
  return "host";
}

const char* TypeWord(ItemFacts::Type type) {
  switch (type) {
    case ItemFacts::Type::Numeric:
      break;
    case ItemFacts::Type::String:
      return "string";
    case ItemFacts::Type::Date:
      return "date";
    case ItemFacts::Type::CategorySet:
      return "categorySet";
    case ItemFacts::Type::DichotomySet:
      return "dichotomySet";
  }
  return "numeric";
}

const char* LevelWord(ItemFacts::Level level) {
  switch (level) {
    case ItemFacts::Level::Unknown:
      break;
    case ItemFacts::Level::Nominal:
      return "nominal";
    case ItemFacts::Level::Ordinal:
      return "ordinal";
    case ItemFacts::Level::Scale:
      return "scale";
  }
  return "unknown";
}

const char* RoleWord(ItemFacts::Role role) {
  switch (role) {
    case ItemFacts::Role::Input:
      break;
    case ItemFacts::Role::Target:
      return "target";
    case ItemFacts::Role::Both:
      return "both";
    case ItemFacts::Role::None:
      return "none";
    case ItemFacts::Role::Partition:
      return "partition";
    case ItemFacts::Role::Split:
      return "split";
  }
  return "input";
}

}  // namespace

JsonReportWriter::JsonReportWriter(std::ostream& out, const JsonOptions& options)
    : fOut(out), fOptions(options), fCompact(options.layout == JsonOptions::Layout::Compact) {}

JsonReportWriter::~JsonReportWriter() { Flush(); }

void JsonReportWriter::Key(std::string_view name) {
  fJson += '"';
  fJson += name;
  fJson += fCompact ? "\":" : "\": ";
}

void JsonReportWriter::NextKey(std::string_view name) {
  fJson += fCompact ? "," : ", ";
  Key(name);
}

/// In front of an item of a list that has a line for each.
void JsonReportWriter::BeginItem(bool first, std::size_t depth) {
  if (!first) fJson += ',';
  if (fCompact) return;
  fJson += '\n';
  fJson.append(depth, ' ');
}

void JsonReportWriter::EndList(bool empty, std::size_t depth) {
  if (!empty && !fCompact) {
    fJson += '\n';
    fJson.append(depth, ' ');
  }
  fJson += ']';
}

void JsonReportWriter::WriteReport(const Report& report) {
  const char* const lineEnd = fCompact ? "," : ",\n";
  fJson += '{';
  Key("format");
  WriteText("codebook-report/1");
  fJson += lineEnd;
  Key("messages");
  fJson += '[';
  for (const Message& message : report.messages) {
    BeginItem(&message == report.messages.data(), 1);
    WriteMessage(message);
  }
  EndList(report.messages.empty(), 0);
  fJson += lineEnd;
  Key("procedures");
  fJson += '[';
  for (const auto& procedure : report.procedures) {
    BeginItem(&procedure == report.procedures.data(), 1);
    WriteProcedure(*procedure);
  }
  EndList(report.procedures.empty(), 0);
  if (report.facts) {
    fJson += lineEnd;
    Key("facts");
    WriteFacts(*report.facts, report.language);
  }
  fJson += fCompact ? "}" : "}\n";
  Flush();
}

void JsonReportWriter::WriteMessage(const Message& message) {
  fJson += '{';
  Key("severity");
  WriteText(message.severity == Severity::Error ? "error" : "warning");
  NextKey("source");
  WriteText(SourceWord(message.source));
  NextKey("text");
  WriteText(message.text);
  fJson += '}';
}

void JsonReportWriter::WriteProcedure(const Procedure& procedure) {
  fJson += '{';
  Key("title");
  WriteText(procedure.title);
  NextKey("tables");
  fJson += '[';
  for (const auto& table : procedure.tables) {
    BeginItem(&table == procedure.tables.data(), 2);
    WriteTable(*table);
    FlushWhenFull();
  }
  EndList(procedure.tables.empty(), 1);
  if (fOptions.sketches) {
    NextKey("sketches");
    WriteSketches(procedure.sketches);
  }
  fJson += '}';
}

void JsonReportWriter::WriteSketches(const std::vector<Sketch>& sketches) {
  fJson += '[';
  for (const Sketch& sketch : sketches) {
    BeginItem(&sketch == sketches.data(), 2);
    WriteSketch(sketch);
    FlushWhenFull();
  }
  EndList(sketches.empty(), 1);
}

void JsonReportWriter::WriteSketch(const Sketch& sketch) {
  fJson += '{';
  Key("item");
  WriteText(sketch.item);
  NextKey("total");
  WriteNumber(sketch.total);
  NextKey("missing");
  WriteNumber(sketch.missing);
  if (!std::isnan(sketch.mean)) {
    NextKey("mean");
    WriteNumber(sketch.mean);
  }
  if (!sketch.quartiles.empty()) {
    NextKey("quartiles");
    char separator = '[';
    for (const double quartile : sketch.quartiles) {
      fJson += separator;
      WriteNumber(quartile);
      separator = ',';
    }
    fJson += ']';
  }
  if (!sketch.bins.empty()) {
    // The classes follow one another without gaps: one edge more than weights.
    NextKey("edges");
    fJson += '[';
    WriteNumber(sketch.bins.front().from);
    for (const Sketch::Bin& bin : sketch.bins) {
      fJson += ',';
      WriteNumber(bin.to);
    }
    fJson += ']';
    NextKey("weights");
    char separator = '[';
    for (const Sketch::Bin& bin : sketch.bins) {
      fJson += separator;
      WriteNumber(bin.weight);
      separator = ',';
    }
    fJson += ']';
  }
  fJson += '}';
}

void JsonReportWriter::WriteTextOrNull(const std::string& text) {
  if (text.empty())
    fJson += "null";
  else
    WriteText(text);
}

void JsonReportWriter::WriteFacts(const ReportFacts& facts, const std::string& language) {
  fJson += '{';
  Key("file");
  WriteTextOrNull(facts.file);
  NextKey("label");
  WriteTextOrNull(facts.label);
  NextKey("language");
  WriteText(language);
  NextKey("cases");
  fJson += facts.cases < 0 ? "null" : std::to_string(facts.cases);
  NextKey("weight");
  WriteTextOrNull(facts.weight);
  NextKey("weightLabel");
  WriteTextOrNull(facts.weightLabel);
  NextKey("weightedCases");
  if (facts.weightedCases)
    WriteNumber(*facts.weightedCases);
  else
    fJson += "null";
  NextKey("variables");
  fJson += std::to_string(facts.variables);
  fJson += fCompact ? "," : ",\n ";
  Key("notes");
  fJson += '[';
  for (const MethodNote& note : facts.notes) {
    BeginItem(&note == facts.notes.data(), 2);
    fJson += '{';
    Key("name");
    WriteText(NoteName(note, fOptions.catalog));
    NextKey("text");
    WriteText(NoteText(note, fOptions.catalog));
    fJson += '}';
  }
  EndList(facts.notes.empty(), 1);
  fJson += fCompact ? "," : ",\n ";
  Key("items");
  fJson += '[';
  for (const ItemFacts& item : facts.items) {
    BeginItem(&item == facts.items.data(), 2);
    WriteItemFacts(item);
    FlushWhenFull();
  }
  EndList(facts.items.empty(), 1);
  fJson += '}';
}

void JsonReportWriter::WriteItemFacts(const ItemFacts& item) {
  fJson += '{';
  Key("name");
  WriteText(item.name);
  NextKey("label");
  WriteTextOrNull(item.label);
  NextKey("type");
  WriteText(TypeWord(item.type));
  NextKey("level");
  WriteText(LevelWord(item.level));
  NextKey("role");
  WriteText(RoleWord(item.role));
  if (item.position > 0) {
    NextKey("position");
    fJson += std::to_string(item.position);
  }
  if (item.type == ItemFacts::Type::CategorySet || item.type == ItemFacts::Type::DichotomySet) {
    NextKey("members");
    const char* separator = "[";
    for (const std::string& member : item.items) {
      fJson += separator;
      WriteText(member);
      separator = fCompact ? "," : ", ";
    }
    fJson += item.items.empty() ? "[]" : "]";
  }
  fJson += '}';
}

void JsonReportWriter::WriteTable(const Table& table) {
  fJson += '{';
  Key("title");
  WriteLabel(table.title);
  NextKey("subtype");
  WriteLabel(table.subtype);
  NextKey("flag");
  fJson += table.flag ? "true" : "false";
  if (table.minDataColumnWidth) {
    NextKey("minDataColumnWidth");
    fJson += std::to_string(*table.minDataColumnWidth);
  }
  NextKey("dimensions");
  fJson += '[';
  for (const auto& dimension : table.dimensions) {
    BeginItem(&dimension == table.dimensions.data(), 3);
    fJson += '{';
    Key("label");
    WriteLabel(dimension->label);
    NextKey("place");
    fJson += dimension->inColumns ? "\"columns\"" : "\"rows\"";
    WriteItems(dimension->root, dimension->inColumns, 4);
    fJson += '}';
  }
  fJson += "]}";
}

void JsonReportWriter::WriteItems(const Item& group, bool inColumns, std::size_t depth) {
  NextKey("items");
  fJson += '[';
  for (const auto& item : group.items) {
    BeginItem(&item == group.items.data(), depth);
    WriteItem(*item, inColumns, depth);
    FlushWhenFull();
  }
  fJson += ']';
}

void JsonReportWriter::WriteItem(const Item& item, bool inColumns, std::size_t depth) {
  fJson += '{';
  Key(item.isGroup ? "group" : "category");
  WriteLabel(item.label);
  if (item.isGroup)
    WriteItems(item, inColumns, depth + 1);
  else if (!inColumns)
    WriteCells(item);
  fJson += '}';
}

void JsonReportWriter::WriteCells(const Item& row) {
  NextKey("cells");
  fJson += '[';
  const char* separator = "";
  for (const Cell& cell : row.cells) {
    fJson += separator;
    fJson += '{';
    Key("column");
    if (cell.column == nullptr)
      fJson += "null";
    else
      WriteText(cell.column->label->text);
    fJson += fCompact ? "," : ", ";
    WriteContent(*cell.content);
    fJson += '}';
    separator = fCompact ? "," : ", ";
  }
  fJson += ']';
}

void JsonReportWriter::WriteLabel(const SharedContent& label) {
  fJson += '{';
  WriteContent(*label);
  fJson += '}';
}

void JsonReportWriter::WriteContent(const CellContent& content) {
  Key("text");
  WriteText(content.text);
  switch (content.kind) {
    case CellContent::Kind::Text:
      NextKey("fixed");
      fJson += content.fixed ? "true" : "false";
      return;
    case CellContent::Kind::Number:
      NextKey("number");
      WriteNumber(content.number);
      NextKey("format");
      WriteText(FormatSpecText(content.format));
      return;
    case CellContent::Kind::DataValue:
      NextKey("variable");
      WriteText(content.origin->variable);
      NextKey("value");
      if (content.origin->isString)
        WriteText(content.origin->stringValue);
      else
        WriteNumber(content.number);
      return;
    case CellContent::Kind::Variable:
      NextKey("variable");
      WriteText(content.origin->variable);
      NextKey("show");
      fJson += content.origin->show == BpVariable::kLabel ? '1' : '0';
      return;
  }
}

void JsonReportWriter::WriteRaw(std::string_view json) { fJson += json; }

void JsonReportWriter::WriteText(std::string_view text) {
  if (!fOptions.insideHtml || text.find('<') == std::string_view::npos) {
    AppendJsonText(fJson, text);
    return;
  }
  std::string escaped;
  AppendJsonText(escaped, text);
  for (const char c : escaped) {
    if (c == '<')
      fJson += "\\u003c";
    else
      fJson += c;
  }
}

void JsonReportWriter::WriteNumber(double number) { AppendJsonNumber(fJson, number); }

void JsonReportWriter::FlushWhenFull() {
  if (fJson.size() >= kFlushedAt) Flush();
}

void JsonReportWriter::Flush() {
  fOut.write(fJson.data(), static_cast<std::streamsize>(fJson.size()));
  fJson.clear();
}

}  // namespace runtime::output
