#include "runtime/output/render/xlsx/indexsheet.h"

#include <unordered_map>
#include <utility>
#include <vector>

#include "runtime/output/model/methodnotes.h"
#include "runtime/output/render/xlsx/itemrows.h"

namespace runtime::output {
namespace {

const char* const kCountFormat = "0";
constexpr std::string_view kNoteOnPictures = "Histograms";  // by its English name; a workbook has no pictures

SheetCell Count(double count) { return SheetCell::Number(count, kCountFormat); }

/// With the variable's label behind it.
std::string WeightText(const ReportFacts& facts) {
  return facts.weightLabel.empty() ? facts.weight : facts.weight + " – " + facts.weightLabel;
}

}  // namespace

IndexSheet::IndexSheet(Workbook& workbook, const Report& report, const Catalog* catalog, const SheetLimits& limits)
    : fWorkbook(workbook),
      fReport(report),
      fCatalog(catalog),
      fSheet(workbook, Translate(catalog, "Index"), {}, 0, limits) {}

void IndexSheet::Write(const PlacesOfTables& places) {
  std::string title(Translate(fCatalog, "Codebook"));
  if (fReport.facts && !fReport.facts->file.empty()) title += " – " + fReport.facts->file;
  fWorkbook.SetTitle(title);
  fSheet.AddRow({SheetCell::Text(title, CellLook::Face::Title)});
  if (fReport.facts) {
    WriteFacts(*fReport.facts);
    WriteNotes(*fReport.facts);
  }
  WriteMessages();
  WriteTables(places);
  WriteCuts();
  fSheet.Finish();
}

void IndexSheet::WriteHead(std::initializer_list<std::string_view> names) {
  fSheet.AddRow({});
  std::vector<SheetCell> head;
  for (const std::string_view name : names) head.push_back(SheetCell::Text(name, CellLook::Face::Head));
  fSheet.AddRow(head);
}

void IndexSheet::WriteFact(std::string_view name, SheetCell value) {
  if (value.kind == SheetCell::Kind::Text && value.text.empty()) return;
  fSheet.AddRow({SheetCell::Text(name), std::move(value)});
}

void IndexSheet::WriteFacts(const ReportFacts& facts) {
  WriteHead({Translate(fCatalog, "Dataset"), ""});
  WriteFact(Translate(fCatalog, "File Name"), SheetCell::Text(facts.file));
  WriteFact(Translate(fCatalog, "Label"), SheetCell::Text(facts.label));
  WriteFact(Translate(fCatalog, "Variables"), Count(static_cast<double>(facts.variables)));
  if (facts.cases >= 0) WriteFact(Translate(fCatalog, "Cases, unweighted"), Count(static_cast<double>(facts.cases)));
  WriteFact(Translate(fCatalog, "Weight Variable"), SheetCell::Text(WeightText(facts)));
  if (!facts.weight.empty() && facts.weightedCases)
    WriteFact(Translate(fCatalog, "Cases, weighted"), Count(*facts.weightedCases));
}

void IndexSheet::WriteNotes(const ReportFacts& facts) {
  if (facts.notes.empty()) return;
  WriteHead({Translate(fCatalog, "Method"), ""});
  for (const MethodNote& note : facts.notes)
    if (note.name != kNoteOnPictures)
      fSheet.AddRow({SheetCell::Text(NoteName(note, fCatalog)), SheetCell::Text(NoteText(note, fCatalog))});
}

void IndexSheet::WriteMessages() {
  if (fReport.messages.empty()) return;
  WriteHead({Translate(fCatalog, "Messages"), ""});
  for (const Message& message : fReport.messages) {
    const bool isError = message.severity == Severity::Error;
    const std::string_view severity = isError ? Translate(fCatalog, "Error") : Translate(fCatalog, "Warning");
    fSheet.AddRow({SheetCell::Text(severity), SheetCell::Text(message.text)});
  }
}

void IndexSheet::WriteTables(const PlacesOfTables& places) {
  std::unordered_map<std::string_view, std::string_view> labels;
  if (fReport.facts)
    for (const ItemFacts& item : fReport.facts->items) labels.emplace(item.name, item.label);
  WriteHead({Translate(fCatalog, "Tables"), Translate(fCatalog, "Label"), Translate(fCatalog, "Sheet"),
             Translate(fCatalog, "Row"), Translate(fCatalog, "Rows")});
  CellPlace head = fSheet.Next();
  --head.row;
  for (const TableOfReport& of : TablesOf(fReport)) {
    const PlaceOfTable& place = places.at(of.table);
    SheetCell title = SheetCell::Text(of.table->title->text);
    title.link = place.title.Link();
    const auto label = DescribesItem(*of.table) ? labels.find(title.text) : labels.end();
    const SheetCell labelCell = label == labels.end() ? SheetCell{} : SheetCell::Text(label->second);
    fSheet.AddRow({title, labelCell, SheetCell::Text(place.title.sheet), Count(place.title.row + 1.0),
                   Count(static_cast<double>(place.rows))});
  }
  fSheet.FilterFrom(head, 5);
}

void IndexSheet::WriteCuts() {
  const std::vector<CutText> cuts = fWorkbook.cuts();
  if (cuts.empty()) return;
  WriteHead({Translate(fCatalog, "Shortened texts"), Translate(fCatalog, "Characters of the whole text")});
  for (const CutText& cut : cuts) {
    SheetCell place = SheetCell::Text(cut.place.sheet + "!" + cut.place.Name());
    place.link = cut.place.Link();
    fSheet.AddRow({place, Count(static_cast<double>(cut.characters))});
  }
}

}  // namespace runtime::output
