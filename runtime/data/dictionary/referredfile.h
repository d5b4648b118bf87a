// A schema or dialect that a descriptor names instead of holding it.
#pragma once

#include <string>

#include "runtime/data/dictionary/packagecontext.h"

namespace runtime::data {

/// Reads the file that `place` names: by a path into the folder of the package, or by an address, of which a copy is
/// looked for, under the last step of the address, beside the descriptor, in its folder "schemas", and in the folder of
/// the context, there also under the whole address without its scheme. Nothing is fetched. Throws DataError.
class ReferredFile {
 public:
  ReferredFile(const JsonPlace& place, const PackageContext& context);
  /// An object.
  JsonPlace root() const { return {fTree, fFile}; }

 private:
  std::string fFile;
  Json fTree;
};

}  // namespace runtime::data
