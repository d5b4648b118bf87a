// The header of a data file by itself, for dictionaries that have to be fitted to it.
#pragma once

#include <string>
#include <vector>

namespace runtime::data {

/// The headers as they stand in the file, without reading its rows; empty for standard input ("-"), which can be read
/// only once. Throws DataError as opening the file does.
std::vector<std::string> HeadersOfData(const std::string& path);

}  // namespace runtime::data
