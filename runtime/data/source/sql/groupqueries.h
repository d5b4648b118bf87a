// The statements by which a database groups a table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "runtime/data/source/sql/sqltable.h"
#include "runtime/data/source/sql/sqlweight.h"

namespace runtime::data {

/// Writes statements over a table. An answer's columns stand in the order in which each operation names them; `weight`
/// stands for the columns of SqlWeight.
class GroupQueries {
 public:
  explicit GroupQueries(const SqlTable& table);

  /// Columns whose collation takes different texts for equal: they are compared byte by byte from now on.
  void CompareBytes(std::size_t column) { fComparesBytes[column] = true; }
  /// The weight of the groups asked for from now on.
  void SetWeight(SqlWeight weight) { fWeight = std::move(weight); }
  const SqlWeight& weight() const { return fWeight; }

  /// A column as it is grouped.
  std::string Key(std::size_t column) const;
  /// A column as a double. REQUIRES: of numbers.
  std::string Number(std::size_t column) const;

  /// The number of rows, weight (with pairs none).
  std::string Rows(const SqlPlace& place) const;
  /// The cells of the first rows, as texts.
  std::string FirstRows(const SqlPlace& place, std::int64_t rows) const;
  /// The groups of one column: text, cases, weight. `most`: no more rows than these.
  std::string Groups(const SqlPlace& place, std::size_t column, std::optional<std::int64_t> most) const;
  /// The groups of several columns in one scan: place among the columns, text, cases, weight. REQUIRES: the dialect has
  /// grouping sets.
  std::string GroupingSets(const SqlPlace& place, const std::vector<std::size_t>& columns) const;
  /// The groups of several columns together: their texts, cases, weight.
  std::string JointGroups(const SqlPlace& place, const std::vector<std::size_t>& columns) const;

  struct GroupedName {
    std::string name;
    std::string text;  // as it is answered; empty: as it is
  };
  /// The groups of some names that `within` defines: the names, cases, weight.
  std::string Grouped(const SqlPlace& place, const std::string& within, const std::vector<GroupedName>& names) const;

  /// SELECT `list` over the arms of `SELECT inner FROM arm`, as one answer of an arm each: what a column of numbers is
  /// summed up by. `needsFence`: the list names expressions of `inner` several times.
  std::string Summary(const SqlPlace& place, const std::string& inner, const std::string& list,
                      const std::string& behind = {}, bool needsFence = false) const;
  /// What a query needs within, and the sums in its list: `, W AS w` and `, SUM(...)`, by the weight's form.
  std::string WeightWithin() const;
  std::string WeightSums() const;

 private:
  std::string WeightGroup() const;
  /// The weight's columns of a finished answer.
  std::string WeightAnswer() const;
  std::string AnswerColumns(const SqlPlace& place) const;
  std::string Merging(const SqlPlace& place, const std::string& names) const;

  const SqlTable& fTable;
  const SqlDialect& fDialect;
  std::vector<bool> fComparesBytes;
  SqlWeight fWeight;
};

}  // namespace runtime::data
