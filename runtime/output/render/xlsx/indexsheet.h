// The first sheet: what the workbook is of, how its numbers came about, and where its tables stand.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "runtime/output/language/catalog.h"
#include "runtime/output/render/xlsx/tablesheet.h"

namespace runtime::output {

/// Blocks of rows, each below a head: facts of the dataset, method notes, messages, the tables with links to them, and
/// the texts that had to be cut.
class IndexSheet {
 public:
  IndexSheet(Workbook& workbook, const Report& report, const Catalog* catalog, const SheetLimits& limits);

  /// To be called when all other sheets are written.
  void Write(const PlacesOfTables& places);

 private:
  void WriteHead(std::initializer_list<std::string_view> names);
  void WriteFact(std::string_view name, SheetCell value);
  void WriteFacts(const ReportFacts& facts);
  void WriteNotes(const ReportFacts& facts);
  void WriteMessages();
  void WriteTables(const PlacesOfTables& places);
  void WriteCuts();

  Workbook& fWorkbook;
  const Report& fReport;
  const Catalog* fCatalog;
  Sheet fSheet;
};

}  // namespace runtime::output
