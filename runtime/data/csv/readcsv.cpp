#include "runtime/data/csv/readcsv.h"

#include <memory>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/csv/blockscanner.h"
#include "runtime/data/csv/inputtext.h"

namespace runtime::data {

namespace {

using Typers = std::vector<std::unique_ptr<ColumnTyper>>;

/// A file, open, with the dialect that was found.
struct Part {
  std::unique_ptr<InputText> input;
  CsvDialect dialect;
};

std::vector<Part> OpenParts(const std::vector<std::string>& paths, const TextDialect& said, std::vector<Note>& notes) {
  std::vector<Part> parts;
  for (const std::string& path : paths) {
    auto input = std::make_unique<InputText>(path, said.encoding, notes);
    const CsvDialect dialect = FindDialect(input->text(), said, input->name());
    parts.push_back({std::move(input), dialect});
  }
  return parts;
}

void CheckSameHeaders(const BlockScanner& scanner, const std::vector<std::string>& headers, const std::string& name,
                      const std::string& firstName) {
  if (scanner.headers() == headers) return;
  throw DataError(fmt::format("{}: its columns are not those of {}; the files of one table must have the same header",
                              name, firstName));
}

/// Gives the cells of all parts to the typers that are there; the number of rows.
std::int64_t PassCells(const std::vector<Part>& parts, bool strict, Typers& typers, std::vector<Note>* notes) {
  std::int64_t rows = 0;
  for (const Part& part : parts) {
    BlockScanner scanner(part.input->text(), part.dialect, part.input->name(), strict);
    CellBlock block;
    while (scanner.Next(block)) {
      block.firstRow = rows;
      rows += static_cast<std::int64_t>(block.rows);
      if (rows > kMostCases)
        throw DataError(fmt::format("{}: the data has more than {} cases, which cannot be worked with; split the file",
                                    part.input->name(), kMostCases));
      for (std::size_t column = 0; column < typers.size(); ++column)
        if (typers[column]) typers[column]->Append(block, column);
    }
    if (notes) scanner.Report(*notes);
  }
  return rows;
}

}  // namespace

TypedTable ReadCsv(const std::vector<std::string>& paths, const TextDialect& said, const PlanColumns& plan, bool strict,
                   std::vector<Note>& notes) {
  const std::vector<Part> parts = OpenParts(paths, said, notes);
  std::vector<std::string> headers;
  for (const Part& part : parts) {
    const BlockScanner scanner(part.input->text(), part.dialect, part.input->name(), strict);
    if (&part == &parts.front())
      headers = scanner.headers();
    else
      CheckSameHeaders(scanner, headers, part.input->name(), parts.front().input->name());
  }

  const std::vector<ColumnPlan> plans = plan(headers);
  const std::int64_t blockRows = RowsPerBlock(headers.size());
  Typers typers;
  for (std::size_t column = 0; column < headers.size(); ++column)
    typers.push_back(MakeColumnTyper(plans[column], headers[column], blockRows));
  TypedTable table;
  table.rows = PassCells(parts, strict, typers, &notes);

  Typers secondTypers(typers.size());
  bool readAgain = false;
  for (std::size_t column = 0; column < typers.size(); ++column) {
    if (!typers[column]->NeedsSecondReading()) continue;
    secondTypers[column] = MakeTextTyper(headers[column], blockRows);
    readAgain = true;
  }
  if (readAgain) PassCells(parts, strict, secondTypers, nullptr);

  std::vector<const ColumnFacts*> facts;
  for (std::size_t column = 0; column < typers.size(); ++column)
    table.columns.push_back((secondTypers[column] ? secondTypers : typers)[column]->Finish());
  for (const TypedColumn& column : table.columns) facts.push_back(&column.facts);
  ReportUnreadableCells(parts.front().input->name(), facts, strict, notes);
  return table;
}

}  // namespace runtime::data
