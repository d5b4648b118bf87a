// The engine behind an aggregation table: set-up, counting, results.
#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <vector>

#include "host/aggregation/table.h"

#include "runtime/aggregation/counting/dimensioncounter.h"
#include "runtime/aggregation/counting/scalecounter.h"
#include "runtime/aggregation/sketch/itemsketch.h"
#include "runtime/aggregation/table/cursorwork.h"

namespace runtime::aggregation {

/// Order of use: the set-up operations, then the pass (BeginRun, NumberOfValues, LeaveChunk), Finish, the results.
class TableEngine {
 public:
  TableEngine(AggregationTable& table, MAVO_InputCaseIterator& iterator);
  ~TableEngine();
  TableEngine(const TableEngine&) = delete;
  TableEngine& operator=(const TableEngine&) = delete;

  // Set-up.
  AggregationCube& Cube();
  void SetDimension(std::unique_ptr<AggregationVariable> dimension);
  void CreateTableDimension();
  void AddScaleStatistics(const std::vector<AggregationStatistic>& statistics);
  void SetCellStatistics(std::vector<AggregationStatistic> perCategory, std::vector<AggregationStatistic> inTotal);

  // The pass.
  /// The table takes the cursor's present row, which does not follow the pending ones: they are worked through, and a
  /// new run of rows begins.
  void BeginRun();
  /// Works the pending rows through.
  void LeaveChunk();
  /// Whether the table follows its values and has taken the chunk's first rows, so that it will take most of the
  /// others: then the whole chunk may be searched at once, by any thread.
  bool WantsSearch() const;
  void SearchChunk();
  /// Rows that SearchChunk looks at.
  std::size_t RowsToSearch() const;
  /// Cells of the pending rows.
  std::size_t PendingCells() const;
  /// Ends the counting, as does Finish: the columns cannot be read any more. `allCases` as in ComputeResults. Does not
  /// throw.
  void CursorGone(const std::optional<CasesPassed>& allCases);
  /// Values of the dimension met in the rows taken, looking ahead as far as pays; sets the table's watch.
  int NumberOfValues();
  /// Works the pending rows through and computes the results, those of all tables of an exhausted cursor at once.
  /// Further rows are not taken. Tells what was counted, where that is wanted. Throws what went wrong in counting this
  /// table or computing its results.
  void Finish();

  // The steps of Finish, for all tables of a cursor.
  /// A dimension or statistics are asked for, and the results are not yet computed.
  bool hasRequest() const { return fCounter != nullptr || fScaleCounter != nullptr; }
  /// How long ComputeResults takes, in values.
  std::size_t ValuesToFinish() const;
  /// The results of the rows counted; touches nothing that tables share. `allCases`: of the cursor, where that is
  /// known. What it throws waits for Finish.
  void ComputeResults(const std::optional<CasesPassed>& allCases) noexcept;
  /// Ends the connection with the cursor.
  void Detach();

  // Results. REQUIRES: Finish.
  std::vector<AggregationCategory>& categories() { return fCategories; }
  /// Of the total, which has the highest number, and of the whole table (categories().size()) as well. Null when the
  /// cell has no values.
  std::unique_ptr<StatValues> MakeCell(std::size_t category) const;
  bool hasCube() const { return fCube != nullptr; }

 private:
  struct EndInPlace {
    void operator()(TableDimension* dimension) const { dimension->~TableDimension(); }
  };
  template <class Base>
  TableDimension* PutDimension();

  struct RowRange {
    std::size_t first;
    std::size_t count;
  };

  /// The pending rows as rows of the cursor's chunk; count 0 when there are none.
  RowRange PendingInChunk() const;
  /// Those of the rows that the chunk has: of groups it may have fewer than the cursor's.
  static RowRange RowsOf(const Chunk& chunk, RowRange range);
  // What is counted in the present chunk; PresentX with scaled weights.
  const Chunk& PresentOfDimension() {
    return fDimensionGroups == nullptr ? fWork->PresentChunk() : fDimensionGroups->Present();
  }
  const Chunk& PresentOfScale() { return fScaleGroups == nullptr ? fWork->PresentChunk() : fScaleGroups->Present(); }
  void FlushDimension(RowRange pending);
  void FlushScale(RowRange pending);
  void Flush();
  void SearchUpTo(const Chunk& chunk, std::size_t row);
  void KeepFoundBefore(std::size_t row);
  void ForgetFound();
  void MakeResults(const std::optional<CasesPassed>& allCases);
  ItemSketch SketchOfDimension() const;
  void MakeCategories();
  std::vector<double> CellValues(const std::vector<AggregationStatistic>& statistics, const WeightTotal& weight) const;

  AggregationTable& fTable;
  std::shared_ptr<CursorWork> fWork;  // null after the counting
  const MAVO_DataSource& fSource;     // of the iterator: used during set-up only
  std::unique_ptr<AggregationCube> fCube;

  std::unique_ptr<AggregationVariable> fDimension;
  std::unique_ptr<TableDimension, EndInPlace> fTableDimension;  // in the table's own memory
  std::unique_ptr<DimensionCounter> fCounter;
  std::unique_ptr<ScaledChunk> fDimensionGroups;  // null: cases are counted; likewise the other one
  std::vector<AggregationStatistic> fPerCategory;
  std::vector<AggregationStatistic> fInTotal;
  std::vector<AggregationStatistic> fScaleStatistics;
  std::unique_ptr<ScaleCounter> fScaleCounter;
  std::unique_ptr<ScaledChunk> fScaleGroups;

  // The search for new values: begun when the number of values is asked for first, at most a few blocks ahead of the
  // rows taken, so that a table that takes no more rows has not looked at the rest of its chunk.
  bool fSearches = false;
  std::size_t fSearchedUpTo = 0;  // row of the chunk
  std::size_t fSearchStep = kFirstSearchStep;
  std::vector<FirstAppearance> fFound;  // of the pending rows and beyond
  std::size_t fKept = 0;                // of them, how many are in the count

  DimensionCounts fCounts;
  std::vector<AggregationCategory> fCategories;
  std::vector<double> fScaleResults;
  const bool fSketches;
  std::optional<ItemSketch> fSketch;  // not told yet
  std::exception_ptr fFailure;        // null: nothing went wrong

  static constexpr std::size_t kFirstSearchStep = 64;
  static constexpr std::size_t kLargestSearchStep = 4096;
};

}  // namespace runtime::aggregation
