#include "runtime/output/render/json.h"

#include <string>

#include "runtime/output/format/kinds.h"
#include "runtime/output/render/jsontext.h"

namespace runtime::output {
namespace {

constexpr std::size_t kFlushedAt = 1 << 16;  // bytes

// Writes straight from the model; the text gathers in a buffer that is handed on in large pieces. One item stands on
// one line, so that reports can be compared line by line.
class JsonWriter {
 public:
  explicit JsonWriter(std::ostream& out) : fOut(out) {}

  void Write(const Report& report) {
    fJson += "{\"format\": \"codebook-report/1\",\n\"messages\": [";
    const char* separator = "\n ";
    for (const Message& message : report.messages) {
      fJson += separator;
      Write(message);
      separator = ",\n ";
    }
    fJson += report.messages.empty() ? "],\n\"procedures\": [" : "\n],\n\"procedures\": [";
    separator = "\n ";
    for (const auto& procedure : report.procedures) {
      fJson += separator;
      Write(*procedure);
      separator = ",\n ";
    }
    fJson += report.procedures.empty() ? "]}\n" : "\n]}\n";
    Flush();
  }

 private:
  void Write(const Message& message) {
    fJson += message.severity == Severity::Error ? "{\"severity\": \"error\"" : "{\"severity\": \"warning\"";
    switch (message.source) {
      case Source::Command:
        fJson += ", \"source\": \"command\", \"text\": ";
        break;
      case Source::Data:
        fJson += ", \"source\": \"data\", \"text\": ";
        break;
      case Source::Host:
        fJson += ", \"source\": \"host\", \"text\": ";
        break;
    }
    AppendJsonText(fJson, message.text);
    fJson += '}';
  }

  void Write(const Procedure& procedure) {
    fJson += "{\"title\": ";
    AppendJsonText(fJson, procedure.title);
    fJson += ", \"tables\": [";
    const char* separator = "\n  ";
    for (const auto& table : procedure.tables) {
      fJson += separator;
      Write(*table);
      FlushWhenFull();
      separator = ",\n  ";
    }
    fJson += procedure.tables.empty() ? "]}" : "\n ]}";
  }

  void Write(const Table& table) {
    fJson += "{\"title\": ";
    WriteLabel(table.title);
    fJson += ", \"subtype\": ";
    WriteLabel(table.subtype);
    fJson += table.flag ? ", \"flag\": true" : ", \"flag\": false";
    if (table.minDataColumnWidth) {
      fJson += ", \"minDataColumnWidth\": ";
      fJson += std::to_string(*table.minDataColumnWidth);
    }
    fJson += ", \"dimensions\": [";
    const char* separator = "\n   ";
    for (const auto& dimension : table.dimensions) {
      fJson += separator;
      fJson += "{\"label\": ";
      WriteLabel(dimension->label);
      fJson += dimension->inColumns ? ", \"place\": \"columns\", " : ", \"place\": \"rows\", ";
      WriteItems(dimension->root, dimension->inColumns, 4);
      fJson += '}';
      separator = ",\n   ";
    }
    fJson += "]}";
  }

  void WriteItems(const Item& group, bool inColumns, std::size_t depth) {
    fJson += "\"items\": [";
    const char* separator = "\n";
    for (const auto& item : group.items) {
      fJson += separator;
      fJson.append(depth, ' ');
      WriteItem(*item, inColumns, depth);
      FlushWhenFull();
      separator = ",\n";
    }
    fJson += ']';
  }

  void WriteItem(const Item& item, bool inColumns, std::size_t depth) {
    fJson += item.isGroup ? "{\"group\": " : "{\"category\": ";
    WriteLabel(item.label);
    if (item.isGroup) {
      fJson += ", ";
      WriteItems(item, inColumns, depth + 1);
    } else if (!inColumns) {
      WriteCells(item);
    }
    fJson += '}';
  }

  void WriteCells(const Item& row) {
    fJson += ", \"cells\": [";
    const char* separator = "";
    for (const Cell& cell : row.cells) {
      fJson += separator;
      fJson += "{\"column\": ";
      if (cell.column == nullptr) {
        fJson += "null";
      } else {
        AppendJsonText(fJson, cell.column->label->text);
      }
      fJson += ", ";
      WriteContent(*cell.content);
      fJson += '}';
      separator = ", ";
    }
    fJson += ']';
  }

  void WriteLabel(const SharedContent& label) {
    fJson += '{';
    WriteContent(*label);
    fJson += '}';
  }

  void WriteContent(const CellContent& content) {
    fJson += "\"text\": ";
    AppendJsonText(fJson, content.text);
    switch (content.kind) {
      case CellContent::Kind::Text:
        fJson += content.fixed ? ", \"fixed\": true" : ", \"fixed\": false";
        return;
      case CellContent::Kind::Number:
        fJson += ", \"number\": ";
        AppendJsonNumber(fJson, content.number);
        fJson += ", \"format\": ";
        AppendJsonText(fJson, FormatSpecText(content.format));
        return;
      case CellContent::Kind::DataValue:
        fJson += ", \"variable\": ";
        AppendJsonText(fJson, content.origin->variable);
        fJson += ", \"value\": ";
        if (content.origin->isString) {
          AppendJsonText(fJson, content.origin->stringValue);
        } else {
          AppendJsonNumber(fJson, content.number);
        }
        return;
      case CellContent::Kind::Variable:
        fJson += ", \"variable\": ";
        AppendJsonText(fJson, content.origin->variable);
        fJson += content.origin->show == BpVariable::kLabel ? ", \"show\": 1" : ", \"show\": 0";
        return;
    }
  }

  void FlushWhenFull() {
    if (fJson.size() >= kFlushedAt) Flush();
  }

  void Flush() {
    fOut.write(fJson.data(), static_cast<std::streamsize>(fJson.size()));
    fJson.clear();
  }

  std::ostream& fOut;
  std::string fJson;
};

class JsonRenderer : public Renderer {
 public:
  void Render(const Report& report, std::ostream& out) const override { JsonWriter(out).Write(report); }
};

}  // namespace

std::unique_ptr<Renderer> NewJsonRenderer(const RenderOptions&) { return std::make_unique<JsonRenderer>(); }

}  // namespace runtime::output
