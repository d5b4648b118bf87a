#include "app/moduleloader.h"

#include <filesystem>

#include <dlfcn.h>

namespace app {

namespace {

std::string LoaderMessage() {
  const char* message = dlerror();
  return message != nullptr ? message : "unknown error";
}

}  // namespace

Module::Module(const std::string& path) : fPath(path), fHandle(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (fHandle == nullptr) throw ModuleError("The module " + path + " cannot be loaded: " + LoaderMessage());
  fNotify = reinterpret_cast<LoadNotificationHandler>(dlsym(fHandle, "LoadNotification"));
  if (fNotify == nullptr || fNotify(fHandle, kProcessAttach, nullptr) == 0) {
    dlclose(fHandle);
    throw ModuleError("The module " + path +
                      (fNotify == nullptr ? " has no LoadNotification." : " refused to be loaded."));
  }
}

Module::~Module() {
  fNotify(fHandle, kProcessDetach, nullptr);
  dlclose(fHandle);
}

ProcedureEntry Module::Procedure(const char* name) const {
  const auto entry = reinterpret_cast<ProcedureEntry>(dlsym(fHandle, name));
  if (entry == nullptr) throw ModuleError("The module " + fPath + " has no procedure " + name + ".");
  return entry;
}

std::string BesideProgram(const std::string& fileName) {
  return (std::filesystem::read_symlink("/proc/self/exe").parent_path() / fileName).string();
}

}  // namespace app
