// Where the type of a column comes from.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"

namespace runtime::data {

/// A type that the cells before allowed, and the first cell that ruled it out. Inferred: every type but text.
struct TypeStep {
  FieldType type = FieldType::Inferred;
  std::int64_t row = 0;  // of the data, from 1; where the file is named, of that file
  std::string source;    // the file, where a table has several; else empty
  std::string cell;      // exact bytes but for trailing blanks
};

enum class TypeOrigin {
  Dictionary,  // a field says it
  DataFile,    // the data file says it
  Cells,       // inferred from the cells
  Asked        // text, because nothing was to be inferred
};

struct TypeDecision {
  std::string header;  // as it stands in the file
  FieldType type = FieldType::String;
  TypeOrigin origin = TypeOrigin::Cells;
  std::int64_t rows = 0;
  std::int64_t blankCells = 0;
  std::vector<TypeStep> steps;  // of Cells: from the narrowest type to this one
};

/// Why a cell rules a type out, in a few words; empty when there is no more to say than that it is not of the type.
std::string WhyNot(std::string_view cell);

}  // namespace runtime::data
