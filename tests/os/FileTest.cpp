#include "os/ZotOsFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

#include <algorithm>
#include <cerrno>
#include <string>

#include "support/CallScript.h"
#include "support/FailingHeap.h"
#include "support/TemporaryDirectory.h"

namespace {

using zot_test::readFile;
using zot_test::writeFile;

// The scripts of these functions.  A negative entry is the number of bytes that
// read and write move at most.
struct Script {
  zot_test::CallScript close = {}, fchmod = {}, fchown = {}, read = {}, utime = {}, write = {};
};
Script script;
int flagsAtLastWrite = -1;

// Passes the most that the next call may move to the real one, or fails.
template <typename Call>
auto scripted(zot_test::CallScript& entries, size_t count, Call real) -> decltype(real(count)) {
  const int entry = zot_test::next(entries);
  if (zot_test::fails(entry)) {
    return -1;
  }
  return real(entry < 0 ? std::min(count, static_cast<size_t>(-entry)) : count);
}

}  // namespace

// The linker's --wrap option sends the calls here.
extern "C" {

int __real_close(int file);
int __real_fchmod(int file, mode_t mode);
int __real_fchown(int file, uid_t owner, gid_t group);
ssize_t __real_read(int file, void* bytes, size_t count);
int __real_utime(const char* path, const utimbuf* times);
ssize_t __real_write(int file, const void* bytes, size_t count);

int __wrap_close(int file) {
  const int result = __real_close(file);  // one that fails has closed all the same
  return scripted(script.close, 0, [&](size_t) { return result; });
}
int __wrap_fchmod(int file, mode_t mode) {
  return scripted(script.fchmod, 0, [&](size_t) { return __real_fchmod(file, mode); });
}
int __wrap_fchown(int file, uid_t owner, gid_t group) {
  return scripted(script.fchown, 0, [&](size_t) { return __real_fchown(file, owner, group); });
}
ssize_t __wrap_read(int file, void* bytes, size_t count) {
  return scripted(script.read, count, [&](size_t most) { return __real_read(file, bytes, most); });
}
int __wrap_utime(const char* path, const utimbuf* times) {
  return scripted(script.utime, 0, [&](size_t) { return __real_utime(path, times); });
}
ssize_t __wrap_write(int file, const void* bytes, size_t count) {
  flagsAtLastWrite = fcntl(file, F_GETFD);
  return scripted(script.write, count, [&](size_t most) { return __real_write(file, bytes, most); });
}

}  // extern "C"

namespace {

struct stat statusOf(const char* path) {
  struct stat status = {};
  EXPECT_EQ(0, stat(path, &status)) << path;
  return status;
}

// Has a file "source" of 30,000 bytes, no two blocks alike.
class File : public zot_test::TemporaryDirectory {
 protected:
  File() {
    for (int number = 0; bytes.size() < 30000; ++number) {
      bytes += std::to_string(number);
    }
    writeFile("source", bytes);
    chmod("source", 0640);
    ZotOsSetFileTime("source", 1000000000);
  }
  ~File() override { script = {}; }
  std::string bytes;
};

TEST_F(File, WrappersAnswerAndLeaveErrno) {
  uint32_t size = 77;
  ASSERT_EQ(0, truncate("source", 0x100000007));
  EXPECT_EQ(1u, ZotOsGetFileSize("source", &size));
  EXPECT_EQ(7u, size);
  EXPECT_EQ(1u, ZotOsRenameFile("source", "moved"));
  EXPECT_EQ(0u, ZotOsGetFileSize("source", &size));
  EXPECT_EQ(0u, size);
  EXPECT_EQ(ENOENT, errno);
  EXPECT_EQ(1u, ZotOsSetFileTime("moved", 0xFFFFFFFF));
  EXPECT_EQ(0xFFFFFFFF, static_cast<uint32_t>(statusOf("moved").st_mtime));
  EXPECT_EQ(0u, ZotOsDeleteDir("moved"));
  EXPECT_EQ(1u, ZotOsDeleteFile("moved"));
}

TEST_F(File, CopyKeepsBytesModeOwnerAndTimes) {
  const mode_t before = umask(077);
  const bool root = geteuid() == 0;
  ASSERT_EQ(0, root ? chown("source", 12, 34) : 0);
  chmod("source", 04755);
  writeFile("existing", bytes + "longer");
  for (const char* destination : {"new", "existing"}) {
    SCOPED_TRACE(destination);
    EXPECT_EQ(1u, ZotOsCopyFile("source", destination, 0));
    EXPECT_EQ(bytes, readFile(destination));
    const struct stat copy = statusOf(destination);
    EXPECT_EQ(04755u, copy.st_mode & 07777u);
    EXPECT_EQ(root ? 12u : geteuid(), copy.st_uid);
    EXPECT_EQ(root ? 34u : getegid(), copy.st_gid);
    EXPECT_EQ(1000000000, copy.st_mtime);
    EXPECT_EQ(FD_CLOEXEC, flagsAtLastWrite);
  }
  umask(before);
}

TEST_F(File, CopyRefusesWhatItMustNotOrCannotOpen) {
  writeFile("existing", "kept");
  EXPECT_EQ(0u, ZotOsCopyFile("source", "existing", 1));
  EXPECT_EQ(0u, ZotOsCopyFile("missing", "existing", 0));
  EXPECT_EQ("kept", readFile("existing"));
  EXPECT_EQ(0u, ZotOsCopyFile("source", "missing/copy", 0));
  EXPECT_EQ(ENOENT, errno);
  EXPECT_EQ(1u, ZotOsCopyFile("source", "other", 1)) << "nothing there to refuse";
}

TEST_F(File, CopySurvivesSignalsAndPartialTransfers) {
  script.read = {EINTR, -1000, EINTR, EINTR, -1, 0};
  script.write = {EINTR, -1, -400, EINTR, 0, -1};
  EXPECT_EQ(1u, ZotOsCopyFile("source", "copy", 0));
  EXPECT_EQ(bytes, readFile("copy"));
  EXPECT_TRUE(script.read.empty() && script.write.empty());
}

TEST_F(File, CopyReportsTheFirstFailureAndKeepsWhatItWrote) {
  const struct {
    Script script;
    int error;
    size_t written;
    bool times;
  } cases[] = {
      {{.close = {EBADF, EBADF}, .read = {-100, EIO}}, EIO, 100, false},
      {{.close = {EBADF, EBADF}, .write = {-7, -8, EDQUOT}}, EDQUOT, 15, false},
      {{.close = {EBADF, EBADF}, .fchown = {EPERM}}, EPERM, bytes.size(), false},
      {{.close = {EBADF, EBADF}, .fchmod = {EROFS}}, EROFS, bytes.size(), false},
      {{.close = {ENOSPC, EBADF}}, ENOSPC, bytes.size(), false},
      {{.close = {0, EBADF}, .utime = {EACCES}}, EACCES, bytes.size(), false},
      {{.close = {0, EIO}}, EIO, bytes.size(), true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.error);
    unlink("copy");
    script = c.script;
    EXPECT_EQ(0u, ZotOsCopyFile("source", "copy", 0));
    EXPECT_EQ(c.error, errno);
    script = {};
    EXPECT_EQ(bytes.substr(0, c.written), readFile("copy"));
    EXPECT_EQ(c.times, statusOf("copy").st_mtime == 1000000000);
  }
}

TEST_F(File, CopyWithoutABufferIsEmptyAndGood) {
  writeFile("existing", "gone afterwards");
  script.fchown = {EPERM};
  {
    const FailingHeap heap;
    EXPECT_EQ(1u, ZotOsCopyFile("source", "existing", 0));
  }
  EXPECT_EQ(1u, script.fchown.size()) << "the owner is left alone";
  EXPECT_EQ("", readFile("existing"));
  EXPECT_EQ(0640u, statusOf("existing").st_mode & 07777u);
  EXPECT_EQ(1000000000, statusOf("existing").st_mtime);
}

}  // namespace
