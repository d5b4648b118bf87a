// Marks fixed texts for the catalogs where they stand away from the call that translates them.
#pragma once

namespace runtime::output {

/// The text itself; what gathers the texts looks for the name.
constexpr const char* N_(const char* text) { return text; }

}  // namespace runtime::output
