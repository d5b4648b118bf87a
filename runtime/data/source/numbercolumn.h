// A column of numbers that a file gives as such.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "runtime/data/source/tablesource.h"
#include "runtime/data/store/numericpart.h"
#include "runtime/data/typing/columnfacts.h"

namespace runtime::data {

/// The decimals of the shortest texts that read back as the values, where those are more than `decimals`; at most 16.
/// NaN and infinities have none.
int WithDecimalsOf(const double* values, std::size_t count, int decimals);

/// Collects the numbers of one group of rows after the other, and what is to be known of all.
class NumberColumn {
 public:
  /// `type` is what the numbers are read as: the column's own type, or one that its numbers serve for.
  NumberColumn(const SourceColumn& column, FieldType type, bool inferred);

  void Append(const std::int8_t* values, std::size_t count);
  void Append(const std::int32_t* values, std::size_t count);
  void Append(const double* values, std::size_t count);
  /// See ColumnSink.
  void WrittenDecimals(int decimals);
  void Unreadable(std::string_view text);

  /// Of the group that is being filled.
  const NumericPart& part() const { return fPart; }
  /// Begins the next group.
  void EndPart();
  /// After the last group.
  const ColumnFacts& facts() const { return fFacts; }

 private:
  void AppendWhole(const double* values, std::size_t count);

  NumericPart fPart;
  ColumnFacts fFacts;
  bool fMustBeWhole;
};

}  // namespace runtime::data
