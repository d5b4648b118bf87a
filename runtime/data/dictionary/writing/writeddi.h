// Writing DDI-Codebook 2.5.
#pragma once

#include <ostream>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/writing/ddistatistics.h"
#include "runtime/data/dictionary/writing/writtenfacts.h"

namespace runtime::data {

/// Writes the descriptor with the elements that DDI has for it (see ddidocument.h) and puts everything else into notes
/// (see ddinotes.h): the elements are read back, and what then is missing or different is written down. So ReadDdi
/// gives the same descriptor. Valid against the schema; the same bytes for the same arguments. `statistics` may be
/// null.
///
/// What XML cannot hold is replaced visibly in an element, and exact in its note.
WrittenFacts WriteDdi(const TableDescriptor& table, const DdiStatistics* statistics, std::ostream& out);

}  // namespace runtime::data
