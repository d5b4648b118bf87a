// Files that try a CSV reader.
#pragma once

#include <cstdint>
#include <string>

namespace cells {

/// The text of a file, the same for the same seed on every machine. Some are tables as anybody writes them, others have
/// one kind of oddity or several: quoted and doubled quotes, mixed line ends, blank lines, blanks around cells, ragged
/// rows, text behind quotes, stray quotes, multi-byte text, NULs, very long cells, no last line end, one column.
std::string NastyFile(std::uint64_t seed);

}  // namespace cells
