// The files that a descriptor names.
#pragma once

#include <optional>
#include <string>

#include "runtime/data/dictionary/jsonfile.h"

namespace runtime::data {

/// Whether a text begins with a scheme, such as https://.
bool IsUrl(const std::string& text);

/// The absolute path of a file that a descriptor in `folder` names. Only a path into the folder is taken: a URL, an
/// absolute path, a `..` and a link that leaves the folder are refused before anything is opened. Throws DataError, at
/// `place`, also when there is no such file.
std::string PathInFolder(const std::string& folder, const JsonPlace& place);

/// The path of a file of that name in a folder, or one below it; nothing when there is none, or when a link leaves the
/// folder. `name` may have several steps, none of them to the parent.
std::optional<std::string> FindInFolder(const std::string& folder, const std::string& name);

/// The folder of a file, "." for a bare name.
std::string FolderOf(const std::string& path);

}  // namespace runtime::data
