// The sets of vector instructions between which the scan chooses at run time.
#pragma once

#include <functional>

namespace runtime::data {

/// Does `work` with each set of vector instructions that this machine has, and once without any; argument: its name. So
/// a test sees what other machines do. Nothing else may scan meanwhile.
void WithEachVectorTarget(const std::function<void(const char* target)>& work);

}  // namespace runtime::data
