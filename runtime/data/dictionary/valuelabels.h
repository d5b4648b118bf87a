// The value labels and the missing values of a variable, from its field.
#pragma once

#include <memory>
#include <vector>

#include "host/data/missingrule.h"

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/open.h"
#include "runtime/data/records.h"

namespace runtime::data {

/// Bytes of the longest text that a string variable's field gives a label, without trailing blanks.
std::size_t LongestLabelledText(const FieldDescriptor& field);

/// The labels of a variable of that width (0: numeric), ordered by value; null when there are none. In this order, the
/// first label of a value holding: the categories, the value labels of the extension property, the labelled missing
/// values (of a numeric variable those that read as numbers), and 0 false and 1 true of a boolean. `field` may be null.
/// A labelled category that is no value of a numeric variable is told in `notes`. REQUIRES: a width of at least
/// LongestLabelledText for a string variable.
std::shared_ptr<const ValueLabelList> MakeValueLabels(const FieldDescriptor* field, FieldType type, int width,
                                                      const std::string& origin, std::vector<Note>& notes);

/// What is user-missing: of a numeric variable the entries that read as numbers, and the ranges; of a string variable
/// every entry.
MissingRule MakeMissingRule(const std::vector<LabelledValue>& entries,
                            const std::vector<MissingRangeDescriptor>& ranges, const FieldDialect& dialect,
                            bool isString);

}  // namespace runtime::data
