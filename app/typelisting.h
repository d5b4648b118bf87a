// The types of the columns and why they have them, as a listing.
#pragma once

#include <string>
#include <vector>

#include "runtime/data/typing/typedecision.h"

namespace app {

/// A line a column: its header, its type, and why. `utf8`: whether the reader's terminal shows more than ASCII.
std::string TypesAsText(const std::vector<runtime::data::TypeDecision>& types, bool utf8);

/// The same as a JSON list of objects with `column`, `type`, `from` ("dictionary", "data file", "cells", "asked"),
/// `rows`, `blank` and `ruledOut`, a list of objects with `type` (null: every type but text), `row`, `cell` and, in a
/// table of several files, `file`.
std::string TypesAsJson(const std::vector<runtime::data::TypeDecision>& types);

}  // namespace app
