// Text whose dialect the scanners do not know, written anew in one that they do.
#pragma once

#include <string>
#include <string_view>

#include "runtime/data/dictionary/descriptor.h"

namespace runtime::data {

/// Whether a dialect has an escape character, a null sequence, a line terminator of its own, or a delimiter or quote of
/// several bytes.
bool NeedsPreparing(const TextDialect& said);

/// A text and how it is written now.
struct PreparedText {
  std::string text;
  TextDialect dialect;
};

/// The same records and cells, in the same order, with commas, double quotes and LF; lines of comment stay lines. An
/// escape character takes the character behind it as it is; without a word on quotes there are then none. A cell that
/// is the null sequence, not in quotes, is empty. Lines keep their numbers unless the dialect ends them with something
/// of its own, which then counts instead. `source` names the file. Throws DataError for a quote that is never closed,
/// and for a dialect that has one sign in two meanings.
PreparedText PrepareText(std::string_view text, const TextDialect& said, const std::string& source);

}  // namespace runtime::data
