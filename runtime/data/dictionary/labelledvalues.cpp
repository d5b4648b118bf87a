#include "runtime/data/dictionary/labelledvalues.h"

namespace runtime::data {

LabelledValue ReadLabelledValue(const JsonPlace& entry) {
  if (!entry.isObject()) return {entry.Scalar(), entry.isNumber(), std::nullopt};
  const JsonPlace value = entry.Need("value");
  LabelledValue labelled{value.Scalar(), value.isNumber(), entry.FindText("label")};
  if (labelled.label && labelled.label->empty()) labelled.label.reset();
  return labelled;
}

std::vector<LabelledValue> ReadLabelledValues(const JsonPlace& list, Deviations& deviations) {
  std::vector<LabelledValue> values;
  for (const JsonPlace& entry : EntriesOf(list, deviations)) values.push_back(ReadLabelledValue(entry));
  return values;
}

}  // namespace runtime::data
