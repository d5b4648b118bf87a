// What is wrong with a file that could not be read, in terms of the file.
#pragma once

#include <optional>
#include <string>

namespace runtime::data {

/// Of a JSON lines file its first line that is no JSON object, of a Parquet file that it is none; a whole message.
/// Nothing when the fault is not one of these. `path` is where its bytes are.
std::optional<std::string> FindFileFault(const std::string& name, const std::string& path);

}  // namespace runtime::data
