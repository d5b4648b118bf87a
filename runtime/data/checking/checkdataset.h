// Data and dictionary held against each other.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "runtime/data/checking/finding.h"
#include "runtime/data/open.h"
#include "runtime/machine/threadpool.h"

namespace runtime::data {

/// Values that are named one by one, of a variable and a code; the rest is counted in one further finding.
inline constexpr std::size_t kMostValuesNamed = 20;

/// Everything that does not fit: first what is about whole files, then variable by variable, then sets and weight; of
/// a variable by code, of a code by value. The same for the same input, whatever the number of threads. REQUIRES: the
/// dataset was opened `forChecking`. `pool` may be null.
std::vector<Finding> CheckDataset(const OpenedDataset& opened, const std::string& dataFile, machine::ThreadPool* pool);

}  // namespace runtime::data
