#include "runtime/data/csv/readcsv.h"

#include <algorithm>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/csv/encoding.h"
#include "runtime/data/csv/preparedtext.h"
#include "runtime/data/csv/segmentedreading.h"
#include "runtime/data/store/blanktexts.h"
#include "runtime/data/typing/typesteps.h"
#include "runtime/data/typing/unreadablecells.h"

namespace runtime::data {

namespace {

constexpr std::size_t kBytesLookedAt = std::size_t{256} << 10;  // to guess what the columns hold
constexpr std::size_t kRowsLookedAt = 1000;

/// The parts, with the dialect in which their texts are now.
std::vector<CsvPart> OpenParts(std::vector<CsvInput> inputs, TextDialect& said, std::vector<Note>& notes) {
  std::vector<CsvPart> parts;
  for (CsvInput& input : inputs) {
    CsvPart& part = parts.emplace_back();
    part.input = input.text ? std::make_unique<InputText>(std::move(input.name), std::move(*input.text))
                            : std::make_unique<InputText>(input.name, said.encoding, notes);
  }
  if (!NeedsPreparing(said)) return parts;
  TextDialect plain = said;
  for (CsvPart& part : parts) {
    if (FirstInvalidUtf8(part.input->text()) != std::string_view::npos) part.input->Repair(notes);
    PreparedText prepared = PrepareText(part.input->text(), said, part.input->name());
    part.input->Replace(std::move(prepared.text));
    plain = std::move(prepared.dialect);
  }
  said = std::move(plain);
  return parts;
}

void ReadHeaders(std::vector<CsvPart>& parts, const TextDialect& said) {
  for (CsvPart& part : parts) {
    part.dialect = FindDialect(part.input->text(), said, part.input->name());
    part.header = ReadHeaderRecord(part.input->text(), part.dialect, part.input->name());
    if (part.header.names != parts.front().header.names)
      throw DataError(
          fmt::format("{}: its columns are not those of {}; the files of one table must have the same header",
                      part.input->name(), parts.front().input->name()));
  }
}

/// Shows the typers the first rows.
void LookAhead(const CsvPart& part, const ColumnTypers& typers) {
  const std::string_view text = part.input->text();
  SegmentScanner scanner(text, part.dialect, part.header.names.size(), {.rows = kRowsLookedAt});
  scanner.LeaveOut(part.header.leftOut);
  scanner.Begin(part.header.rowsBegin, std::min(text.size(), part.header.rowsBegin + kBytesLookedAt));
  CellBlock block;
  if (!scanner.Next(block)) return;
  for (std::size_t column = 0; column < typers.size(); ++column) typers[column]->LookAt(block, column);
}

/// In a table of several files a row is named by its file, and counted there.
void NameFiles(const std::vector<CsvPart>& parts, const std::vector<ScanFindings>& findings,
               std::vector<TypeStep>& steps) {
  if (parts.size() < 2) return;
  for (TypeStep& step : steps) {
    std::size_t part = 0;
    for (; part + 1 < parts.size() && step.row > findings[part].rows; ++part) step.row -= findings[part].rows;
    step.source = parts[part].input->name();
  }
}

/// One reading of all parts.
TypedTable ReadTable(const std::vector<CsvPart>& parts, const std::vector<ColumnPlan>& plans,
                     const ReadingOptions& options, std::vector<Note>& notes) {
  const std::vector<std::string>& headers = parts.front().header.names;
  ColumnTypers typers;
  for (std::size_t column = 0; column < headers.size(); ++column)
    typers.push_back(MakeColumnTyper(plans[column], headers[column]));
  LookAhead(parts.front(), typers);

  const auto groups = std::make_shared<RowGroups>(options.memory);
  SegmentedReading reading(parts, typers, *groups, options.strict, options.manner);
  reading.Run();
  for (std::size_t part = 0; part < parts.size(); ++part)
    reading.findings()[part].Report(parts[part].input->name(), headers.size(), notes);

  // A type that was supposed and did not hold: these columns alone are read once more, as texts.
  ColumnTypers secondTypers(typers.size());
  bool readAgain = false;
  for (std::size_t column = 0; column < typers.size(); ++column) {
    if (!typers[column]->NeedsSecondReading()) continue;
    secondTypers[column] = MakeTextTyper(headers[column]);
    readAgain = true;
  }
  const auto secondGroups = std::make_shared<RowGroups>(options.memory);
  if (readAgain) SegmentedReading(parts, secondTypers, *secondGroups, options.strict, options.manner).Run();

  TypedTable table;
  table.rows = reading.rows();
  BlankTexts blanks(*groups, options.memory);
  std::size_t inSecond = 0;
  for (std::size_t column = 0; column < typers.size(); ++column) {
    ColumnTyper& typer = *(secondTypers[column] ? secondTypers : typers)[column];
    StoredColumn stored{groups, column, typer.strings()};
    if (secondTypers[column]) stored = {secondGroups, inSecond++, typer.strings()};
    if (typer.isBlankText()) stored = blanks.Column();
    table.columns.push_back({std::move(stored), typer.Finish()});
    if (!options.explainTypes) continue;
    NameFiles(parts, reading.findings(), table.steps.emplace_back(StepsToType(table.columns.back(), plans[column])));
  }
  NoteStrayCells(parts.front().input->name(), table.columns, plans, notes);
  return table;
}

}  // namespace

TypedTable ReadCsv(const std::vector<std::string>& paths, const TextDialect& dialect, const PlanColumns& plan,
                   const ReadingOptions& options, std::vector<Note>& notes) {
  std::vector<CsvInput> inputs;
  for (const std::string& path : paths) inputs.push_back({path, std::nullopt});
  return ReadCsvInputs(std::move(inputs), dialect, plan, options, notes);
}

TypedTable ReadCsvInputs(std::vector<CsvInput> inputs, const TextDialect& dialect, const PlanColumns& plan,
                         const ReadingOptions& options, std::vector<Note>& notes) {
  TextDialect said = dialect;
  std::vector<CsvPart> parts = OpenParts(std::move(inputs), said, notes);
  while (true) {
    std::vector<Note> ofReading;
    ReadHeaders(parts, said);
    try {
      const std::vector<ColumnPlan> plans = plan(parts.front().header.names, ofReading);
      TypedTable table = ReadTable(parts, plans, options, ofReading);
      notes.insert(notes.end(), ofReading.begin(), ofReading.end());
      std::vector<const ColumnFacts*> facts;
      for (const TypedColumn& column : table.columns) facts.push_back(&column.facts);
      ReportUnreadableCells(parts.front().input->name(), facts, options.strict, notes);
      return table;
    } catch (const InvalidText& invalid) {
      parts[invalid.part].input->Repair(notes);
    }
  }
}

}  // namespace runtime::data
