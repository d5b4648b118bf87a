// Numbers as dictionary files write them.
#pragma once

#include <string>

namespace runtime::data {

/// The shortest digits that read back as the same number: without exponent from 1e-5 to 1e17, and 0. REQUIRES: finite.
std::string NumberWords(double number);

}  // namespace runtime::data
