#include "runtime/data/typing/missingentries.h"

#include <cmath>

#include "runtime/data/dictionary/fieldvalue.h"
#include "runtime/data/typing/numbertext.h"
#include "runtime/data/typing/valuereader.h"

namespace runtime::data {

MissingEntries::MissingEntries(const std::vector<LabelledValue>& entries, const FieldDialect& dialect) {
  for (const LabelledValue& entry : entries) {
    NumberReading reading;
    ReadNumberText(Trimmed(entry.value), reading);
    fEntries.push_back({entry.value, MissingCodeOf(entry, dialect), reading.decimals});
    fHoldsEmptyText = fHoldsEmptyText || Trimmed(entry.value).empty();
  }
}

const MissingEntries::Entry* MissingEntries::Find(std::string_view cell) const {
  for (const Entry& entry : fEntries)
    if (entry.text == cell) return &entry;
  const std::string_view trimmed = Trimmed(cell);
  if (trimmed.size() == cell.size()) return nullptr;
  for (const Entry& entry : fEntries)
    if (entry.text == trimmed) return &entry;
  return nullptr;
}

bool MissingEntries::MustComeFirst(const ValueReader& reader) const {
  for (const Entry& entry : fEntries) {
    NumberReading reading;
    if (!reader.Read(entry.text, reading)) continue;
    const bool isSame = entry.code ? *entry.code == reading.value : std::isnan(reading.value);
    if (!isSame) return true;
  }
  return false;
}

}  // namespace runtime::data
