// The report as JSON, whole or in parts, for the formats that hold JSON.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/output/model/report.h"

namespace runtime::output {

class Catalog;

struct JsonOptions {
  enum class Layout {
    Lines,   // one item on one line, so that reports can be compared line by line
    Compact  // no blanks and no line ends
  };

  Layout layout = Layout::Lines;
  bool sketches = false;    // each procedure with its "sketches"
  bool insideHtml = false;  // "<" is written \u003c: no text ends the script element that holds the JSON
  /// Translates the method notes; null: English.
  const Catalog* catalog = nullptr;
};

/// Writes JSON straight from the model; the text gathers in a buffer that is handed on in large pieces. The report must
/// outlive each call only.
class JsonReportWriter {
 public:
  JsonReportWriter(std::ostream& out, const JsonOptions& options);
  /// Hands on what is left, as Flush does.
  ~JsonReportWriter();
  JsonReportWriter(const JsonReportWriter&) = delete;
  JsonReportWriter& operator=(const JsonReportWriter&) = delete;

  /// The whole report as -F json has it: format, messages, procedures and, where there are any, facts. A line end
  /// follows in the layout of lines.
  void WriteReport(const Report& report);

  // Values that WriteReport is made of.
  void WriteMessage(const Message& message);
  void WriteTable(const Table& table);
  /// The list of the sketches.
  void WriteSketches(const std::vector<Sketch>& sketches);
  void WriteFacts(const ReportFacts& facts, const std::string& language);

  /// Text as it stands, for what goes between these values.
  void WriteRaw(std::string_view json);
  /// A JSON string.
  void WriteText(std::string_view text);
  void WriteNumber(double number);

  /// Hands all that was written to the stream.
  void Flush();

 private:
  void Key(std::string_view name);
  void NextKey(std::string_view name);
  void WriteTextOrNull(const std::string& text);
  void BeginItem(bool first, std::size_t depth);
  void EndList(bool empty, std::size_t depth);
  void WriteProcedure(const Procedure& procedure);
  void WriteSketch(const Sketch& sketch);
  void WriteItemFacts(const ItemFacts& item);
  void WriteItems(const Item& group, bool inColumns, std::size_t depth);
  void WriteItem(const Item& item, bool inColumns, std::size_t depth);
  void WriteCells(const Item& row);
  void WriteLabel(const SharedContent& label);
  void WriteContent(const CellContent& content);
  void FlushWhenFull();

  std::ostream& fOut;
  const JsonOptions fOptions;
  const bool fCompact;
  std::string fJson;
};

}  // namespace runtime::output
