// What one family of engines writes in its own way.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/data/source/sql/sqlconnection.h"

namespace runtime::data {

/// The forms of SQL that differ. Everything else is what the engines share: SELECT, CASE, GROUP BY, COUNT, SUM, MIN,
/// MAX, UNION ALL.
struct SqlDialect {
  /// How the first rows of a query are asked for.
  enum class FirstRows { Limit, FetchFirst, Top };

  std::string name;  // as the engine calls itself; "another engine" for one that is not known
  bool isKnown = true;
  FirstRows firstRows = FirstRows::Limit;
  const char* countRows = "COUNT(*)";       // in 64 bits
  const char* textType = "VARCHAR(65535)";  // of a cast to text; null: cells are read as they are
  const char* doubleType = "DOUBLE PRECISION";
  const char* wholeType = "BIGINT";
  const char* decimalType = nullptr;  // exact arithmetic on whole numbers of any length; null: there is none
  const char* byteLength = "OCTET_LENGTH({})";
  const char* withoutBlanks = "RTRIM({})";  // at the end
  const char* encoding = nullptr;           // asks for the encoding of texts; null: it does not matter
  const char* convertedLength = nullptr;    // instead of byteLength where that encoding is not UTF8
  const char* binaryText = nullptr;         // a text that is compared byte by byte, {} the column; null: as it is
  bool comparesBytes = true;                // texts are, unless a column was made otherwise
  const char* mergingCollations =
      nullptr;             // asks how many collations take different texts for equal; null: nobody knows
  bool castsKeys = false;  // texts are cast before they are grouped: other types that are read as texts may
                           // know no equality
  const char* writtenDecimals = nullptr;  // how many a decimal fraction is written with; null: it cannot be asked
  const char* preciseDouble = nullptr;  // text of a floating point number that reads back the same; null: the cast does
  // How many of some ascending edges are at or below a number: {0} the number, {1} the edges with commas between them;
  // null: there is no such function.
  const char* edgesBelow = nullptr;
  // Behind an inner SELECT: its expressions are evaluated once a row, however often they are named outside. Empty: the
  // engine does as it likes.
  const char* fence = "";
  bool hasGroupingSets = false;
  bool sumsAreWide = false;           // a sum of 64-bit whole numbers does not overflow
  bool nanIsGreatest = false;         // so that MIN and MAX tell whether all numbers are finite
  bool hasPartitions = false;         // FindLeaves knows where its tables' parts are
  std::vector<std::string> settings;  // statements at the begin of the transaction

  std::string CastToText(const std::string& expression, SqlType type) const;
  std::string CastToDouble(const std::string& expression) const;
  std::string CastToWhole(const std::string& expression) const;
  /// The first rows of `SELECT list rest`.
  std::string FirstRowsOf(const std::string& list, const std::string& rest, std::int64_t rows) const;
};

/// The dialect of an engine, by what it calls itself.
const SqlDialect& DialectOf(std::string_view engine);

/// A number as a literal that reads back the same.
std::string NumberLiteral(double number);
/// A text as a literal. REQUIRES: no letters but ASCII ones, no backslash.
std::string TextLiteral(std::string_view text);

}  // namespace runtime::data
