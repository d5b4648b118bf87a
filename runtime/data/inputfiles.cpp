#include "runtime/data/inputfiles.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include <fmt/format.h>
#include <glob.h>

#include "runtime/data/dictionary/readdictionary.h"
#include "runtime/data/open.h"

namespace runtime::data {

namespace {

namespace fs = std::filesystem;

fs::file_type TypeOf(const std::string& path) {
  std::error_code error;
  return fs::status(path, error).type();
}

std::vector<std::string> FilesOfPattern(const std::string& pattern) {
  glob_t found{};
  const int result = glob(pattern.c_str(), GLOB_NOSORT, nullptr, &found);
  std::vector<std::string> files;
  if (result == 0) files.assign(found.gl_pathv, found.gl_pathv + found.gl_pathc);
  globfree(&found);
  std::erase_if(files, [](const std::string& file) { return TypeOf(file) == fs::file_type::directory; });
  std::sort(files.begin(), files.end());
  if (files.empty())
    throw DataError(fmt::format("{}: there is no such file, and none that fits this pattern", pattern));
  return files;
}

void CheckThatDataIsThere(const std::string& path) {
  if (path == "-") return;
  const fs::file_type type = TypeOf(path);
  if (type == fs::file_type::directory)
    throw DataError(fmt::format("{}: this is a directory; name a data file or a datapackage.json in it", path));
  if (type != fs::file_type::not_found) return;
  if (path.find("://") != std::string::npos)
    // What stands behind the scheme may hold a password.
    throw DataError(
        fmt::format("{}…: databases are reached through ODBC: name a data source as 'odbc:DSN=NAME', or all of it as "
                    "'odbc:Driver={{PostgreSQL Unicode}};Server=...;Database=...', or a SQLite file as sqlite:FILE",
                    path.substr(0, path.find("://") + 3)));
  throw DataError(fmt::format("{}: there is no such file", path));
}

bool IsPattern(const std::string& path) {
  return path != "-" && path.find_first_of("*?[") != std::string::npos && TypeOf(path) == fs::file_type::not_found;
}

}  // namespace

std::vector<std::string> FindDataFiles(const std::vector<std::string>& paths) {
  std::vector<std::string> files;
  for (const std::string& path : paths) {
    if (IsPattern(path)) {
      const std::vector<std::string> fitting = FilesOfPattern(path);
      files.insert(files.end(), fitting.begin(), fitting.end());
      continue;
    }
    CheckThatDataIsThere(path);
    files.push_back(path);
  }
  if (files.size() < 2) return files;
  for (const std::string& file : files) {
    if (file == "-") throw DataError("standard input cannot be one of several data files; give it alone");
    if (NamesDataPackage(file))
      throw DataError(fmt::format(
          "{}: a data package names its data files itself and cannot be one of several; give it alone", file));
  }
  return files;
}

}  // namespace runtime::data
