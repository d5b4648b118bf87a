#include "runtime/data/checking/namedvalues.h"

#include <optional>
#include <string_view>

#include "runtime/data/dictionary/fieldvalue.h"

namespace runtime::data {

NamedValues::NamedValues(const std::vector<LabelledValue>& entries, const VariableCheck& check)
    : fIsString(check.values.isString) {
  if (fIsString) {
    for (const LabelledValue& entry : entries) {
      const std::string_view text = entry.value;
      fTexts.emplace(text.substr(0, text.find_last_not_of(' ') + 1));
    }
    return;
  }
  const FieldValues reader(check.field, check.facts.type);
  for (const LabelledValue& entry : entries)
    if (const std::optional<double> number = reader.Of(entry)) fNumbers.insert(*number);
}

bool NamedValues::Hold(const DistinctValue& value) const {
  return fIsString ? fTexts.count(std::string(value.text)) > 0 : fNumbers.count(value.number) > 0;
}

}  // namespace runtime::data
