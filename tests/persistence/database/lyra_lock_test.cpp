#include "persistence/database/lyra_lock.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <boost/functional/hash.hpp>

#include "persistence/database/lyra_file.h"
#include "persistence/database/sample_lyra.h"
#include "support/temporary_folder.h"

namespace kestrel::algorithm::datatypes::detail {
namespace {

/// Runs `work` in a process of its own, which ends with the number it returns.
template <class Work>
pid_t InAnotherProcess(Work work) {
  const pid_t child = fork();
  if (child == 0) _exit(work());
  return child;
}

/// Waits for the process; 99 if it was killed.
int ExitCode(pid_t child) {
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 99;
}

struct LockObject {
  explicit LockObject(const std::string& path) : name(hash_str(path)) {}
  ~LockObject() { boost::interprocess::named_sharable_mutex::remove(name.c_str()); }
  std::string name;
};

TEST(LyraLock, IsNamedByTheHashOfThePath) {
  EXPECT_EQ(HashBytes(""), 0xe6546b64u);
  for (const std::string path : {"", "a", "/tmp/model.lyra", "/tmp/\xC3\xBC.lyra"}) {
    std::size_t expected = 0;
    boost::hash_combine(expected, path);  // hashes the bytes of a text as signed values
    EXPECT_EQ(hash_str(path), "kestrel-lyra-" + std::to_string(expected)) << path;
  }
}

TEST(LyraLock, IsASmallSharedMemoryObject) {
  const TemporaryFolder folder;
  const LockObject object(folder.Path("x.lyra"));
  EXPECT_TRUE(PathWriteLock(folder.Path("x.lyra")).IsLocked());
  struct stat status {};
  ASSERT_EQ(stat(("/dev/shm/" + object.name).c_str(), &status), 0);  // it stays for the next save
  EXPECT_EQ(status.st_size, 160);
  EXPECT_EQ(status.st_mode & 0777u, 0644u);
}

TEST(LyraLock, DoesNotWaitForEverForAProcessThatDied) {
  const TemporaryFolder folder;
  const std::string path = folder.Path("x.lyra");
  const LockObject object(path);
  const pid_t child = InAnotherProcess([&] {
    const PathWriteLock lock(path);
    _exit(lock.IsLocked() ? 0 : 1);  // without giving it back
    return 0;
  });
  ASSERT_EQ(ExitCode(child), 0);
  EXPECT_FALSE(PathWriteLock(path, std::chrono::milliseconds(50)).IsLocked());
  EXPECT_TRUE(PathWriteLock(path, std::chrono::milliseconds(50)).IsLocked());
}

TEST(LyraLock, OrdersTheSavesOfTwoProcesses) {
  const TemporaryFolder folder;
  const std::string path = folder.Path("x.lyra");
  const LockObject object(path);
  const LYRA lyra = kestrel::testing::MakeLyra();
  const auto save_often = [&] {
    for (int i = 0; i < 100; ++i) {
      LYRA::SaveToFile(lyra, path);
      const PathWriteLock lock(path);  // nobody writes now, so the file is whole
      LYRA read;
      LYRAFile::FailureInfo failure;
      if (!LYRAFile(path).Read(read, failure)) return 1;
    }
    return 0;
  };
  const pid_t first = InAnotherProcess(save_often);
  const pid_t second = InAnotherProcess(save_often);
  EXPECT_EQ(ExitCode(first), 0);
  EXPECT_EQ(ExitCode(second), 0);
}

}  // namespace
}  // namespace kestrel::algorithm::datatypes::detail
