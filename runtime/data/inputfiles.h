// The data files that a command line names.
#pragma once

#include <string>
#include <vector>

namespace runtime::data {

/// The files of these paths in their order, all of one table. A path with * ? [...] that no file has for its name is a
/// pattern, and stands for the files that fit it, in the order of the bytes of their names. Throws DataError for a file
/// that is not there, a directory, a pattern that fits nothing, and where "-" or a data package stands among several.
/// REQUIRES: at least one path.
std::vector<std::string> FindDataFiles(const std::vector<std::string>& paths);

}  // namespace runtime::data
