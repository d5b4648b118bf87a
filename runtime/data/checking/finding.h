// What does not fit between data and dictionary.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace runtime::data {

enum class Severity { Error, Warning, Info };

/// In the order of their identifiers.
enum class CheckCode {
  Reading,
  FieldWithoutColumn,
  ColumnWithoutField,
  RepeatedName,
  NamesDifferInCase,
  UnreadableCell,
  WrongLength,
  RequiredMissing,
  NotUnique,
  OutOfRange,
  NotInEnum,
  PatternMismatch,
  OutsideCategories,
  ValueWithoutLabel,
  LabelWithoutValue,
  UndeclaredMissing,
  RepeatedLabel,
  Constant,
  AllMissing,
  WeightNegative,
  WeightMissing,
  WeightZero,
  UnknownSetMember,
  CountedValueNeverOccurs,
};

/// What there is to say of a code, whatever the finding. Identifiers and names never change their meaning.
struct CodeFacts {
  CheckCode code;
  const char* id;    // "C101"
  const char* name;  // of lower-case words joined by hyphens
  Severity severity;
  const char* meaning;
  const char* hint;  // what to do
};

/// All of them, ordered by identifier; the entry of a code stands at the code's place.
const std::vector<CodeFacts>& CheckCodes();
const CodeFacts& FactsOf(CheckCode code);
const char* SeverityWord(Severity severity);

struct Finding {
  CheckCode code = CheckCode::Reading;
  std::string file;                  // the data, or the dictionary where the fault is to be mended there
  std::string variable;              // the field's or column's name; empty when it is about the whole file
  int column = 0;                    // of the variable, from 1; 0 without one
  std::optional<std::string> value;  // in the digits or characters of a cell; dates as in ISO 8601
  std::int64_t row = 0;              // of the data, from 1: where it is met first; 0 when there is no such place
  std::int64_t line = 0;             // of the data file, from 1; 0 when it is not known
  std::int64_t count = 0;            // of cells, or of values where `value` is absent and the code is about values
  std::string what;                  // a clause, with nothing from the data raw
};

}  // namespace runtime::data
