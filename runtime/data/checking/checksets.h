// Multiple response sets and the weight, against the values of their variables.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "runtime/data/checking/distinctvalues.h"
#include "runtime/data/checking/finding.h"
#include "runtime/data/checking/readingfacts.h"
#include "runtime/data/records.h"

namespace runtime::data {

/// The different values of a variable, by dictionary index.
using ValuesOfVariable = std::function<const DistinctValues&(int)>;

/// Members that the data do not have, and counted values that do not occur.
void CheckSets(const Dictionary& dictionary, const ReadingFacts& reading, const std::string& dataFile,
               const ValuesOfVariable& valuesOf, std::vector<Finding>& findings);

/// Negative, missing and zero weights of the weight variable, when there is one.
void CheckWeight(const Dictionary& dictionary, const ReadingFacts& reading, const std::string& dataFile,
                 const ValuesOfVariable& valuesOf, std::vector<Finding>& findings);

}  // namespace runtime::data
