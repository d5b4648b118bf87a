// What a field of a REDCap project is in the data.
#pragma once

#include <string>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/redcap/redcaptable.h"

namespace runtime::data {

/// "1, Yes | 2, No", with as many blanks as one likes: what stands before the first comma of a choice is its code. A
/// choice without a comma is a code without a label.
std::vector<LabelledValue> ReadRedcapChoices(const std::string& text);

/// The column that a choice of a checkbox field has: NAME___CODE, in lower case and with _ for what is no letter or
/// digit.
std::string CheckboxColumn(const std::string& name, const std::string& code);

/// The fields that a row stands for: one a choice of a checkbox, none of a descriptive text, otherwise one. `section`
/// is the header that holds for it.
std::vector<FieldDescriptor> MakeRedcapFields(const RedcapRow& row, const std::string& section);

/// How far a form is filled in, which every project records by itself.
FieldDescriptor MakeFormState(const std::string& form);

}  // namespace runtime::data
