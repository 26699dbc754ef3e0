#include "os/ZotOsFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "ScriptedCalls.h"
#include "support/FailingHeap.h"
#include "support/TemporaryDirectory.h"

namespace {

using zot_test::readFile;
using zot_test::scripted;
using zot_test::writeFile;

// 30,000 bytes in which no two blocks are alike.
std::string manyBytes() {
  std::string bytes;
  for (int number = 0; bytes.size() < 30000; ++number) {
    bytes += std::to_string(number);
  }
  return bytes;
}

struct stat statusOf(const char* path) {
  struct stat status = {};
  EXPECT_EQ(0, stat(path, &status)) << path;
  return status;
}

class File : public zot_test::TemporaryDirectory {
 protected:
  File() {
    writeFile("source", manyBytes());
    chmod("source", 0640);
    ZotOsSetFileTime("source", 1000000000);
  }
  ~File() override { scripted = {}; }
};

TEST_F(File, WrappersAnswerAndLeaveErrno) {
  uint32_t size = 77;
  EXPECT_EQ(1u, ZotOsGetFileSize("source", &size));
  EXPECT_EQ(manyBytes().size(), size);
  EXPECT_EQ(1u, ZotOsFileExists("source"));
  EXPECT_EQ(1u, ZotOsFileExists("."));
  EXPECT_EQ(1u, ZotOsRenameFile("source", "moved"));
  EXPECT_EQ(0u, ZotOsFileExists("source"));
  EXPECT_EQ(ENOENT, errno);
  EXPECT_EQ(0u, ZotOsGetFileSize("source", &size));
  EXPECT_EQ(0u, size);
  EXPECT_EQ(0u, ZotOsRenameFile("source", "moved"));
  EXPECT_EQ(0u, ZotOsSetFileTime("source", 1));
  EXPECT_EQ(1u, ZotOsSetFileTime("moved", 0xFFFFFFFF));
  EXPECT_EQ(0xFFFFFFFF, static_cast<uint32_t>(statusOf("moved").st_mtime));
  EXPECT_EQ(0xFFFFFFFF, static_cast<uint32_t>(statusOf("moved").st_atime));

  EXPECT_EQ(0u, ZotOsDeleteDir("moved"));
  EXPECT_EQ(ENOTDIR, errno);
  EXPECT_EQ(1u, ZotOsDeleteFile("moved"));
  EXPECT_EQ(0u, ZotOsDeleteFile("moved"));
  mkdir("full", 0700);
  writeFile("full/file", "");
  EXPECT_EQ(0u, ZotOsDeleteDir("full"));
  EXPECT_EQ(ENOTEMPTY, errno);
  unlink("full/file");
  EXPECT_EQ(1u, ZotOsDeleteDir("full"));
}

TEST_F(File, SizeGivesTheLow32Bits) {
  ASSERT_EQ(0, truncate("source", 0x100000007));
  uint32_t size = 0;
  EXPECT_EQ(1u, ZotOsGetFileSize("source", &size));
  EXPECT_EQ(7u, size);
}

TEST_F(File, CopyKeepsBytesModeOwnerAndTimes) {
  const mode_t before = umask(077);
  chmod("source", 04755);
  const bool root = geteuid() == 0;
  if (root) {
    ASSERT_EQ(0, chown("source", 12, 34));
    chmod("source", 04755);  // a change of owner took the set-user-id bit
  }
  writeFile("existing", "something longer lived");
  chmod("existing", 0600);
  for (const char* destination : {"new", "existing"}) {
    SCOPED_TRACE(destination);
    EXPECT_EQ(1u, ZotOsCopyFile("source", destination, 0));
    EXPECT_EQ(manyBytes(), readFile(destination));
    const struct stat copy = statusOf(destination);
    EXPECT_EQ(04755u, copy.st_mode & 07777u);
    EXPECT_EQ(root ? 12u : geteuid(), copy.st_uid);
    EXPECT_EQ(root ? 34u : getegid(), copy.st_gid);
    EXPECT_EQ(1000000000, copy.st_mtime);
    EXPECT_EQ(FD_CLOEXEC, zot_test::flagsAtLastWrite);
  }
  umask(before);
}

TEST_F(File, CopyRefusesWhatItMustNotOrCannotOpen) {
  writeFile("existing", "kept");
  EXPECT_EQ(0u, ZotOsCopyFile("source", "existing", 1));
  EXPECT_EQ("kept", readFile("existing"));
  EXPECT_EQ(0u, ZotOsCopyFile("missing", "existing", 0));
  EXPECT_EQ(ENOENT, errno);
  EXPECT_EQ("kept", readFile("existing"));
  EXPECT_EQ(0u, ZotOsCopyFile("source", "missing/copy", 0));
  EXPECT_EQ(ENOENT, errno);
  EXPECT_EQ(0u, ZotOsCopyFile(".", "copy", 0));
  EXPECT_EQ(EISDIR, errno);
  EXPECT_EQ("", readFile("copy")) << "created before the directory could not be read";
  EXPECT_EQ(1u, ZotOsCopyFile("source", "other", 1)) << "nothing there to refuse";
#ifdef __linux__
  EXPECT_EQ(0u, ZotOsCopyFile("source", "/dev/full", 0));
  EXPECT_EQ(ENOSPC, errno);
#endif
}

TEST_F(File, CopySurvivesSignalsAndPartialTransfers) {
  scripted.read = {EINTR, -1000, EINTR, EINTR, -1, 0};
  scripted.write = {EINTR, -1, -400, EINTR, 0, -1};
  EXPECT_EQ(1u, ZotOsCopyFile("source", "copy", 0));
  EXPECT_EQ(manyBytes(), readFile("copy"));
  EXPECT_TRUE(scripted.read.empty() && scripted.write.empty());
}

TEST_F(File, CopyReportsEachFailureAndKeepsWhatItWrote) {
  const std::string all = manyBytes();
  // Where closing fails as well, the first failure is the one that errno tells.
  const struct {
    const char* what;
    zot_test::ScriptedCalls script;
    int error;
    size_t written;
    bool times;
  } cases[] = {
      {"read", {.close = {EBADF, EBADF}, .read = {-100, EIO}}, EIO, 100, false},
      {"write", {.close = {EBADF, EBADF}, .write = {-7, -8, EDQUOT}}, EDQUOT, 15, false},
      {"owner", {.close = {EBADF, EBADF}, .fchown = {EPERM}}, EPERM, all.size(), false},
      {"mode", {.close = {EBADF, EBADF}, .fchmod = {EPERM}}, EPERM, all.size(), false},
      {"close destination", {.close = {ENOSPC, EBADF}}, ENOSPC, all.size(), false},
      {"times", {.close = {0, EBADF}, .utime = {EACCES}}, EACCES, all.size(), false},
      {"close source", {.close = {0, EIO}}, EIO, all.size(), true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    unlink("copy");
    scripted = c.script;
    EXPECT_EQ(0u, ZotOsCopyFile("source", "copy", 0));
    EXPECT_EQ(c.error, errno);
    scripted = {};
    EXPECT_EQ(all.substr(0, c.written), readFile("copy"));
    EXPECT_EQ(c.times, statusOf("copy").st_mtime == 1000000000);
  }
}

TEST_F(File, CopyWithoutABufferIsEmptyAndGood) {
  writeFile("existing", "gone afterwards");
  scripted.fchown = {EPERM};
  {
    const FailingHeap heap;
    EXPECT_EQ(1u, ZotOsCopyFile("source", "existing", 0));
  }
  EXPECT_EQ(1u, scripted.fchown.size()) << "the owner is left alone";
  EXPECT_EQ("", readFile("existing"));
  EXPECT_EQ(0640u, statusOf("existing").st_mode & 07777u);
  EXPECT_EQ(1000000000, statusOf("existing").st_mtime);
}

}  // namespace
