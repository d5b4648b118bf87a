// What every HTML page is written with.
#pragma once

#include <string>
#include <string_view>

namespace runtime::output {

/// Text between tags and in attributes with quotes, where nothing may be taken for markup.
std::string HtmlText(std::string_view text);

/// The source of a content security policy that allows this one script or style: 'sha256-...'.
std::string HashSource(std::string_view text);

}  // namespace runtime::output
