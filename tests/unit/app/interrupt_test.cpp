#include "app/interrupt.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "app/exitstatus.h"

namespace app {
namespace {

/// A folder that goes with the test.
class Folder {
 public:
  Folder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "interrupt.XXXXXX").string();
    fPath = ::mkdtemp(pattern.data());
  }
  ~Folder() { std::filesystem::remove_all(fPath); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  const std::filesystem::path& path() const { return fPath; }
  bool isEmpty() const { return std::filesystem::is_empty(fPath); }

 private:
  std::filesystem::path fPath;
};

/// Makes and removes temporary files until it is interrupted. Never returns.
[[noreturn]] void makeFilesForever(const std::string& pattern, int toldWhenReady) {
  HandleInterrupts();
  InterruptQuietly();
  (void)!::write(toldWhenReady, "r", 1);
  while (true) {
    const int descriptor = MakeTemporaryFile(pattern);
    if (descriptor < 0) ::_exit(EXIT_FAILURE);
    ::close(descriptor);
    ::unlink(TemporaryFileName());
    ForgetTemporaryFile();
  }
}

TEST(Interrupt, leavesNoTemporaryFileWheneverItComes) {
  const Folder folder;
  std::mt19937 moments(20240229);
  std::uniform_int_distribution<useconds_t> microseconds(0, 300);
  for (int i = 0; i < 300; ++i) {
    std::array<int, 2> ready{};
    ASSERT_EQ(::pipe(ready.data()), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) makeFilesForever((folder.path() / "file.XXXXXX").string(), ready[1]);
    ::close(ready[1]);
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    ::close(ready[0]);
    ::usleep(microseconds(moments));
    ::kill(child, SIGINT);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    ASSERT_EQ(WEXITSTATUS(status), kInterrupted);
    ASSERT_TRUE(folder.isEmpty()) << "after interrupt " << i;
  }
}

TEST(TemporaryFile, isMadeByItsPattern) {
  const Folder folder;
  const int descriptor = MakeTemporaryFile((folder.path() / ".report.json.XXXXXX").string());
  ASSERT_GE(descriptor, 0);
  ::close(descriptor);
  EXPECT_EQ(std::filesystem::path(TemporaryFileName()).parent_path(), folder.path());
  EXPECT_TRUE(std::filesystem::exists(TemporaryFileName()));
  ForgetTemporaryFile();
}

TEST(TemporaryFile, tellsWhyItCannotBeMade) {
  const Folder folder;
  EXPECT_EQ(MakeTemporaryFile((folder.path() / "nosuch" / "file.XXXXXX").string()), -1);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(MakeTemporaryFile((folder.path() / std::string(5000, 'x')).string() + "XXXXXX"), -1);
  EXPECT_EQ(errno, ENAMETOOLONG);
}

}  // namespace
}  // namespace app
