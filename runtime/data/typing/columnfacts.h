// What is known of a column after its cells were read: formats, widths and measurement levels follow from it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"

namespace runtime::data {

/// A few values looked at together; NaN is system-missing.
struct ValueSummary {
  bool hasValues = false;
  bool allIntegers = true;
  double minimum = 0.0;
  double maximum = 0.0;
};

/// Of the values of a numeric column, missing codes included, system-missing excepted.
class ValueFacts {
 public:
  /// Most different whole numbers that are remembered.
  static constexpr std::size_t kMostDistinct = 24;

  /// Takes in what is known of further values; the whole numbers among them are then to be remembered one by one, as
  /// long as fewIntegers().
  void Include(const ValueSummary& summary);
  /// Takes in a value; quick when it is the one before. REQUIRES: it was included; not NaN.
  void Remember(double value) {
    if (value == fLastSeen || fManyDistinct) return;
    RememberOther(value);
  }

  bool hasValues() const { return fHasValues; }
  double minimum() const { return fMinimum; }  // REQUIRES: hasValues
  double maximum() const { return fMaximum; }
  bool allIntegers() const { return fAllIntegers; }  // true also without any value
  /// All values are whole numbers and at most kMostDistinct different ones; true also without any value.
  bool fewIntegers() const { return fAllIntegers && !fManyDistinct; }
  /// The different values, ascending; empty unless fewIntegers().
  std::vector<double> DistinctIntegers() const;
  /// Most columns that the whole part of a value needs, the minus sign included, at least 1.
  int IntegerColumns() const;
  /// Takes in what is known of further values.
  void Join(const ValueFacts& next);

 private:
  static constexpr int kSmallRange = 512;  // values from -512 to 511 are looked up by bit
  void RememberOther(double value);

  bool fHasValues = false;
  bool fAllIntegers = true;
  bool fManyDistinct = false;
  double fMinimum = 0.0;
  double fMaximum = 0.0;
  double fLastSeen = 0.5;  // no whole number
  std::uint64_t fSeenSmall[2 * kSmallRange / 64] = {};
  std::vector<double> fDistinct;
};

/// A cell that did not read as the type of its column.
struct UnreadableCell {
  std::int64_t row = 0;   // of the data, from 1
  std::int64_t line = 0;  // of the file, from 1; 0 when the source has no lines
  std::string source;     // the file, where a table has several; else empty
  std::string text;       // exact bytes
};

struct ColumnFacts {
  static constexpr std::size_t kCellsKept = 3;

  std::string header;                  // as it stands in the file
  FieldType type = FieldType::String;  // as the cells were read, never Inferred
  bool inferred = false;               // the type follows from the cells
  std::int64_t rows = 0;
  std::int64_t blankCells = 0;             // empty or nothing but blanks
  std::int64_t unreadableCells = 0;        // of a numeric type: cells that are system-missing because they did not read
  std::vector<UnreadableCell> unreadable;  // the first kCellsKept of them
  std::int64_t roundedCells = 0;           // of type integer: whole numbers beyond 2^53 that are no double
  std::int64_t zeroPaddedCells = 0;        // of type integer or number: written with zeros before the number
  std::string firstZeroPadded;             // the first of them
  std::int64_t firstFractionRow = 0;  // inferred number: the row, from 1, of the first cell that is no whole number
  std::string firstFraction;          // that cell
  std::size_t longestValue = 0;       // string: bytes without trailing blanks
  int decimals = 0;                   // numeric: most digits behind the decimal point, the exponent considered
  ValueFacts values;                  // numeric

  /// Takes in the facts of the rows that follow: `rowsBefore` rows and `linesBefore` lines of the file stand before
  /// them.
  void Join(const ColumnFacts& next, std::int64_t rowsBefore, std::int64_t linesBefore);

  bool isString() const { return type == FieldType::String; }
};

}  // namespace runtime::data
