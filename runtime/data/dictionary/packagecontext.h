// What the readers of a package's parts share.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "runtime/data/dictionary/deviations.h"
#include "runtime/data/dictionary/jsonfile.h"
#include "runtime/data/open.h"

namespace runtime::data {

struct PackageContext {
  JsonPlace package;
  std::string folder;                  // in which the descriptor lies
  std::optional<std::string> schemas;  // a folder with copies of what stands on the network
  std::vector<Note>& notes;
  Deviations& deviations;
};

/// The resource of that name, or whose path is written so. Throws DataError that lists what there is, at `asker`.
JsonPlace FindResource(const PackageContext& context, const std::string& name, const JsonPlace& asker);

/// The names of all resources for a message.
std::string ResourceNames(const PackageContext& context);

/// The paths of a resource: `path` (before version 1: `url`), one or a list.
std::vector<JsonPlace> PathsOf(const JsonPlace& resource);

}  // namespace runtime::data
