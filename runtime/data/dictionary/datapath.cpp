#include "runtime/data/dictionary/datapath.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <fmt/format.h>

namespace runtime::data {
namespace {

namespace fs = std::filesystem;

bool IsLetter(char byte) { return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z'); }

bool IsAbsolute(std::string_view path) {
  if (path.front() == '/' || path.front() == '\\') return true;
  return path.size() > 1 && path[1] == ':' && IsLetter(path[0]);
}

/// Both kinds of separator count, so that a package is refused everywhere when it is anywhere.
bool HasParentStep(std::string_view path) {
  while (!path.empty()) {
    const std::size_t end = std::min(path.find_first_of("/\\"), path.size());
    if (path.substr(0, end) == "..") return true;
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return false;
}

bool LiesIn(const fs::path& folder, const fs::path& file) {
  const auto [end, ignored] = std::mismatch(folder.begin(), folder.end(), file.begin(), file.end());
  return end == folder.end();
}

}  // namespace

bool IsUrl(const std::string& text) {
  const std::size_t scheme = text.find("://");
  if (scheme == std::string::npos || scheme == 0 || !IsLetter(text[0])) return false;
  return std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(scheme), [](char byte) {
    return IsLetter(byte) || (byte >= '0' && byte <= '9') || byte == '+' || byte == '-' || byte == '.';
  });
}

std::string PathInFolder(const std::string& folder, const JsonPlace& place) {
  const std::string& named = place.Text();
  if (named.empty()) place.Fail("the path is empty; name a file in the folder of the descriptor");
  if (named.find('\0') != std::string::npos) place.Fail("the path holds a NUL character");
  if (IsUrl(named))
    place.Fail(
        fmt::format("\"{}\" is on the network, and nothing is fetched; save it beside the descriptor and name the "
                    "local file",
                    named));
  if (IsAbsolute(named) || HasParentStep(named))
    place.Fail(
        fmt::format("the path \"{}\" is refused: it must lead into the folder of the descriptor (no absolute path, "
                    "no \"..\")",
                    named));
  std::error_code error;
  const fs::path root = fs::canonical(folder, error);
  if (error) place.Fail(fmt::format("the folder \"{}\" cannot be read: {}", folder, error.message()));
  const fs::path resolved = fs::weakly_canonical(root / named, error);
  if (error) place.Fail(fmt::format("the path \"{}\" cannot be followed: {}", named, error.message()));
  if (!LiesIn(root, resolved))
    place.Fail(fmt::format("the path \"{}\" is refused: a link in it leaves the folder of the descriptor", named));
  if (!fs::exists(resolved, error)) place.Fail(fmt::format("there is no file \"{}\"", named));
  return fs::absolute(fs::path(folder) / named).lexically_normal().string();
}

std::optional<std::string> FindInFolder(const std::string& folder, const std::string& name) {
  if (name.empty() || name.find('\0') != std::string::npos || IsAbsolute(name) || HasParentStep(name))
    return std::nullopt;
  std::error_code error;
  const fs::path file = fs::path(folder) / name;
  if (!fs::is_regular_file(file, error)) return std::nullopt;
  const fs::path root = fs::canonical(folder, error);
  if (error) return std::nullopt;
  const fs::path resolved = fs::canonical(file, error);
  if (error || !LiesIn(root, resolved)) return std::nullopt;
  return file.string();
}

std::string FolderOf(const std::string& path) {
  const std::string folder = fs::path(path).parent_path().string();
  return folder.empty() ? "." : folder;
}

}  // namespace runtime::data
