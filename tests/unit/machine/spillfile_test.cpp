#include "runtime/machine/spillfile.h"

#include <cstdlib>
#include <filesystem>
#include <numeric>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace runtime::machine {
namespace {

/// TMPDIR names another folder while this lives.
class TemporaryFolder {
 public:
  explicit TemporaryFolder(const std::string& folder) {
    if (const char* before = std::getenv("TMPDIR")) fBefore = before;
    setenv("TMPDIR", folder.c_str(), 1);
  }
  ~TemporaryFolder() { fBefore.empty() ? unsetenv("TMPDIR") : setenv("TMPDIR", fBefore.c_str(), 1); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

 private:
  std::string fBefore;
};

TEST(SpillFile, givesBackWhatWasAppended) {
  SpillFile file;
  EXPECT_EQ(file.size(), 0U);
  std::vector<int> first(10'000);
  std::iota(first.begin(), first.end(), 0);
  const std::uint64_t atFirst = file.Append(first.data(), first.size() * sizeof(int));
  const std::uint64_t atSecond = file.Append("second", 6);
  EXPECT_EQ(file.size(), first.size() * sizeof(int) + 6);

  std::string second(6, ' ');
  file.Read(atSecond, second.data(), second.size());
  EXPECT_EQ(second, "second");
  std::vector<int> middle(100);
  file.Read(atFirst + 5000 * sizeof(int), middle.data(), middle.size() * sizeof(int));
  EXPECT_EQ(middle.front(), 5000);
  EXPECT_EQ(middle.back(), 5099);
}

TEST(SpillFile, hasNoName) {
  const std::filesystem::path folder = std::filesystem::temp_directory_path() / "spillfile_test";
  std::filesystem::create_directories(folder);
  const TemporaryFolder temporary(folder);
  SpillFile file;
  file.Append("here", 4);
  EXPECT_TRUE(std::filesystem::is_empty(folder));
  std::filesystem::remove_all(folder);
}

TEST(SpillFile, saysWhereItCannotBeMade) {
  const TemporaryFolder temporary("/no/such/folder");
  SpillFile file;
  try {
    file.Append("x", 1);
    FAIL() << "nothing was thrown";
  } catch (const SpillError& error) {
    EXPECT_NE(std::string(error.what()).find("/no/such/folder"), std::string::npos) << error.what();
    EXPECT_NE(std::string(error.what()).find("TMPDIR"), std::string::npos) << error.what();
  }
}

}  // namespace
}  // namespace runtime::machine
