// Table Dialect: how the data of a resource are written.
#pragma once

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/deviations.h"
#include "runtime/data/dictionary/jsonfile.h"
#include "runtime/data/dictionary/jsontable.h"

namespace runtime::data {

/// Reads a dialect, version 1 (CSV Dialect, in its spellings) or 2. Properties for kinds of file that are not read (a
/// sheet, a table of a database) are told; they and all that is not understood are kept. Throws DataError.
void ReadTableDialect(const JsonPlace& dialect, TextDialect& text, JsonDialect& json, Deviations& deviations,
                      std::vector<Note>& notes);

}  // namespace runtime::data
