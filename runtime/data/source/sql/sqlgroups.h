// The columns of a table, grouped by the database that holds it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmpxx.h>

#include "host/data/missingrule.h"

#include "runtime/data/open.h"
#include "runtime/data/source/sql/groupfetch.h"
#include "runtime/data/source/sql/groupqueries.h"
#include "runtime/data/source/sql/manyvalues.h"
#include "runtime/data/source/sql/rawgroups.h"
#include "runtime/data/source/sql/sqltable.h"
#include "runtime/data/source/sql/weightplan.h"
#include "runtime/data/store/groupeddataset.h"
#include "runtime/data/typing/columntyper.h"

namespace runtime::data {

/// Order of use: Read, and again where another weight turns out to be meant; SetMissing; then, as a GroupSource,
/// whatever a cursor asks for. One thread.
class SqlGroups : public GroupSource {
 public:
  /// `plans` says how the texts of each column are read.
  SqlGroups(std::shared_ptr<SqlTable> table, std::vector<ColumnPlan> plans, machine::ProgressListener onProgress);
  ~SqlGroups() override;

  /// Counts the rows and groups all columns. A column with very many values is not grouped: what is to be known of it
  /// is found by other questions. Throws DataError, also when the groups of a column do not add up to the rows.
  void Read(const std::optional<WeightColumn>& weight);
  /// The columns as they were read. Their cells are groups.
  const std::vector<TypedColumn>& columns() const { return fTyped; }
  std::int64_t rows() const { return fRows; }
  /// Of each column's variable.
  void SetMissing(std::vector<MissingRule> missing) { fMissing = std::move(missing); }

  std::vector<CountedGroups> Count(const std::vector<CountingRequest>& requests) override;
  CountedGroups CountAll(const CountingRequest& request) override;
  std::vector<double> WeightsBetween(const CountingRequest& request, const std::vector<double>& edges) override;

 private:
  /// What is known of a column before its type is.
  struct Column {
    RawGroups first;   // of the first rows
    RawGroups groups;  // of all rows, when complete
    bool isComplete = false;
    FieldType type = FieldType::String;  // that the column has of itself
    ManyValuedFacts facts;               // unless complete
  };
  using Cells = std::vector<std::optional<std::string>>;

  const SqlColumn& itself(std::size_t column) const { return fTable->columns()[column]; }
  void CountRows();
  void ReadFirstRows();
  void FindMergingCollations();
  void PlanWeight(const WeightColumn& weight);
  void KeepOwnGroupsOfWeight(const WeightColumn& weight, const std::vector<double>& numbers);
  void GroupFirstRows();

  /// Most groups of a column that are fetched without being asked for.
  std::int64_t MostGroups() const;
  double MostLikelyValues(std::size_t column) const;
  bool IsNumeric(std::size_t column) const;
  /// Whether the column need not be grouped as a whole.
  bool MayStayUngrouped(std::size_t column) const;
  std::vector<std::size_t> ChooseColumnsToGroup();
  std::vector<std::vector<std::size_t>> Scans(std::vector<std::size_t> columns) const;
  void GroupTogether(const std::vector<std::size_t>& columns);
  /// False when there are more groups than the limit; then the column stays as it was.
  bool Group(std::size_t column, std::optional<std::int64_t> most);
  void Complete(std::size_t column);
  void DescribeUngrouped(const std::vector<std::size_t>& columns);
  void Type(std::size_t column);
  void TypeUngrouped(std::size_t column);
  ManyValuedColumn ManyValued(std::size_t column) const;
  void Tell(std::size_t columnsDone) const;

  CountedGroups AllCases() const;
  CountedGroups OfColumn(std::size_t column) const;
  CountedGroups OfFirstRows(std::size_t column) const;
  /// The listed values of a column that is not grouped, and the others as valid and missing.
  CountedGroups OfListed(std::size_t column, const std::vector<double>& listed);
  CountedGroups Joint(const std::vector<int>& variables);
  CountedGroups OfSummary(const ScaleSummary& summary) const;
  bool CanSummarize(std::size_t column) const;

  std::shared_ptr<SqlTable> fTable;
  std::vector<ColumnPlan> fPlans;
  machine::ProgressListener fOnProgress;
  GroupQueries fQueries;
  GroupFetch fFetch;
  std::int64_t fRows = 0;
  MissingRule fMissingOfWeight;
  mpz_class fAllWeight = 0;  // in units of the weight
  std::vector<Cells> fFirstRows;
  bool fHasFirstRows = false;
  std::vector<Column> fColumns;
  std::vector<TypedColumn> fTyped;
  std::vector<MissingRule> fMissing;
  std::mutex fAsking;  // of questions that come when the cases were passed
};

}  // namespace runtime::data
