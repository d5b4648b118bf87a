// Variables that hold nothing, or the same everywhere.
#include <fmt/format.h>

#include "runtime/data/checking/variablecheck.h"

namespace runtime::data {

void CheckSpread(VariableCheck& check) {
  if (check.values.rows == 0) return;
  if (check.ValidCells() == 0) {
    check.Add(CheckCode::AllMissing, "no case has a valid value", -1, check.values.rows);
    return;
  }
  if (check.values.rows < 2 || check.values.systemMissing > 0 || check.values.values.size() != 1) return;
  const DistinctValue& only = check.values.values.front();
  check.Add(CheckCode::Constant, fmt::format("every case has the value {}", check.Quoted(only)), -1, only.count).value =
      check.ValueWords(only);
}

}  // namespace runtime::data
