// A folder for the files of one test.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace runtime::data {

/// Made empty, removed with all it holds when the test ends.
class DataFolder {
 public:
  DataFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "codebook-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    fPath = pattern;
  }
  ~DataFolder() {
    std::error_code error;
    std::filesystem::remove_all(fPath, error);
  }
  DataFolder(const DataFolder&) = delete;
  DataFolder& operator=(const DataFolder&) = delete;

  const std::string& path() const { return fPath; }

  /// Writes a file and gives its path.
  std::string Write(const std::string& name, std::string_view bytes) const {
    const std::string path = fPath + "/" + name;
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return path;
  }

 private:
  std::string fPath;
};

}  // namespace runtime::data
