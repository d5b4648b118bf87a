#include "runtime/data/source/duckdblibrary.h"

#ifdef CODEBOOK_HAVE_DUCKDB

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <dlfcn.h>
#include <fmt/format.h>

#include "runtime/data/open.h"

namespace runtime::data {
namespace {

constexpr std::string_view kWantedVersion = "v1.4.";

std::vector<std::string> Candidates() {
  std::vector<std::string> paths;
  std::error_code error;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  if (!error) paths.push_back((program.parent_path() / "libduckdb.so").string());
  paths.emplace_back(CODEBOOK_DUCKDB_LIBRARY);
  return paths;
}

void* OpenFirst() {
  std::string problems;
  for (const std::string& path : Candidates()) {
    if (void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) return handle;
    const char* problem = dlerror();
    problems += fmt::format("\n  {}", problem ? problem : path);
  }
  throw DataError(
      "Parquet and JSON lines are read by DuckDB, whose library was not found; lay libduckdb.so (1.4) beside "
      "the program, or save the data as CSV. Tried:" +
      problems);
}

template <typename Function>
void Resolve(void* handle, const char* name, Function& function) {
  function = reinterpret_cast<Function>(dlsym(handle, name));
  if (!function) throw DataError(fmt::format("DuckDB's library has no function {}; version 1.4 is needed", name));
}

DuckDBLibrary Load() {
  void* handle = OpenFirst();
  DuckDBLibrary library;
#define CODEBOOK_DUCKDB_RESOLVE(function) Resolve(handle, #function, library.function);
  CODEBOOK_DUCKDB_FUNCTIONS(CODEBOOK_DUCKDB_RESOLVE)
#undef CODEBOOK_DUCKDB_RESOLVE
  const std::string_view version = library.duckdb_library_version();
  if (version.substr(0, kWantedVersion.size()) != kWantedVersion)
    throw DataError(fmt::format("DuckDB's library is version {}; version 1.4 is needed", version));
  return library;
}

}  // namespace

const DuckDBLibrary& DuckDBLibrary::Get() {
  static const DuckDBLibrary library = Load();
  return library;
}

}  // namespace runtime::data

#endif
