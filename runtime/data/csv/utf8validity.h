// Whether bytes are UTF-8, found a vector at a time.
#pragma once

#include <string_view>

namespace runtime::data {

/// Overlong forms, surrogates and values past U+10FFFF are not valid.
bool IsValidUtf8(std::string_view text);

}  // namespace runtime::data
