// Loading a procedure module at run time.
#pragma once

#include <stdexcept>
#include <string>

#include "host/common/notification.h"

namespace app {

class ModuleError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A module, loaded and told so. Told again and unloaded when this object dies.
class Module {
 public:
  /// Throws ModuleError when the file cannot be loaded, has no load notification handler, or refuses.
  explicit Module(const std::string& path);
  ~Module();
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  /// The procedure of that name. Throws ModuleError when the module has none.
  ProcedureEntry Procedure(const char* name) const;

 private:
  std::string fPath;
  void* fHandle = nullptr;
  LoadNotificationHandler fNotify = nullptr;
};

/// The path of a file that stands beside the running program.
std::string BesideProgram(const std::string& fileName);

}  // namespace app
