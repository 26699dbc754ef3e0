#include "os/ZotOsFile.h"

#include <sys/stat.h>
#include <utime.h>

#include <algorithm>

#include "support/CallScript.h"
#include "support/FailingHeap.h"
#include "support/TemporaryDirectory.h"

// The scripts of these functions; that of copy_file_range is "kernel".  A negative entry is
// the number of bytes that read, write and copy_file_range move at most.
struct Script {
  zot_test::CallScript close = {}, fchmod = {}, fchown = {}, kernel = {}, read = {}, utime = {}, write = {};
};
static Script script;
static int flagsOfCopy = -1;

#define FAILED (errno = entry, -1)

// The linker's --wrap option sends the calls here.
extern "C" {

ZOT_SCRIPTED(script.fchmod, int, fchmod, (int file, mode_t mode), (file, mode), FAILED)
ZOT_SCRIPTED(script.fchown, int, fchown, (int file, uid_t owner, gid_t group),
             ((flagsOfCopy = fcntl(file, F_GETFD), file), owner, group), FAILED)
ZOT_SCRIPTED(script.utime, int, utime, (const char* path, const utimbuf* times), (path, times), FAILED)
ZOT_SCRIPTED(script.read, ssize_t, read, (int file, void* bytes, size_t count), (file, bytes, count),
             entry > 0 ? FAILED : __real_read(file, bytes, std::min(count, static_cast<size_t>(-entry))))
ZOT_SCRIPTED(script.kernel, ssize_t, copy_file_range,
             (int from, off64_t* fromAt, int to, off64_t* toAt, size_t count, unsigned int flags),
             (from, fromAt, to, toAt, count, flags),
             entry > 0 ? FAILED
                       : __real_copy_file_range(from, fromAt, to, toAt,
                                                std::min(count, static_cast<size_t>(-entry)), flags))
ZOT_SCRIPTED(script.write, ssize_t, write, (int file, const void* bytes, size_t count), (file, bytes, count),
             entry > 0 ? FAILED : __real_write(file, bytes, std::min(count, static_cast<size_t>(-entry))))

int __real_close(int file);
int __wrap_close(int file) {
  const int result = __real_close(file);  // one that fails has closed all the same
  return zot_test::fails(zot_test::next(script.close)) ? -1 : result;
}

}  // extern "C"

namespace {

using namespace zot_test;

struct stat statusOf(const char* path) {
  struct stat status = {};
  EXPECT_EQ(0, stat(path, &status)) << path;
  return status;
}

// Has a file "source" of 30,000 bytes, no two blocks alike.
class File : public TemporaryDirectory {
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
  uint32_t size = 77, none = 77;
  ASSERT_EQ(0, truncate("source", 0x100000007));
  EXPECT_EQ((std::vector<uint32_t>{1, 1, 0}),
            (std::vector{ZotOsGetFileSize("source", &size), ZotOsRenameFile("source", "moved"),
                         ZotOsGetFileSize("source", &none)}));
  EXPECT_EQ(ENOENT, errno);
  EXPECT_EQ(std::pair(7u, 0u), std::pair(size, none));
  EXPECT_EQ(1u, ZotOsSetFileTime("moved", 0xFFFFFFFF));
  EXPECT_EQ(0xFFFFFFFF, static_cast<uint32_t>(statusOf("moved").st_mtime));
  EXPECT_EQ(std::pair(0u, 1u), std::pair(ZotOsDeleteDir("moved"), ZotOsDeleteFile("moved")));
}

TEST_F(File, CopyKeepsBytesModeOwnerAndTimes) {
  const mode_t before = umask(077);
  const bool root = geteuid() == 0;
  ASSERT_EQ(0, root ? chown("source", 12, 34) : 0);
  chmod("source", 04755);
  writeFile("existing", bytes + "longer");
  for (const char* destination : {"new", "existing"}) {
    EXPECT_EQ(1u, ZotOsCopyFile("source", destination, 0));
    EXPECT_EQ(bytes, readFile(destination));
    const struct stat copy = statusOf(destination);
    EXPECT_EQ(04755u, copy.st_mode & 07777u);
    EXPECT_TRUE(!root || (copy.st_uid == 12 && copy.st_gid == 34));
    EXPECT_EQ(1000000000, copy.st_mtime);
    EXPECT_EQ(FD_CLOEXEC, flagsOfCopy);
  }
  umask(before);
}

TEST_F(File, CopyThatFailsLeavesNoBitsBeyondThoseOfTheSource) {
  chmod("source", 06750);
  writeFile("existing", "open to everybody");
  for (const char* destination : {"new", "existing"}) {
    chmod(destination, 06646);
    script.kernel = {ENOSPC};
    script.write = {-100, ENOSPC};
    EXPECT_EQ(0u, ZotOsCopyFile("source", destination, 0));
    EXPECT_EQ(100, statusOf(destination).st_size);
    EXPECT_EQ(0u, statusOf(destination).st_mode & 07777u & ~0750u) << destination;
  }
  script.fchmod = {EPERM};
  chmod("existing", 0666);
  EXPECT_EQ(0u, ZotOsCopyFile("source", "existing", 0));
  EXPECT_EQ(0, statusOf("existing").st_size) << "bytes for those who must not read them";
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
  script.kernel = {EINTR, -7, -5000, EINTR, EXDEV};
  script.read = {EINTR, -1000, EINTR, EINTR, -1, 0};
  script.write = {EINTR, -1, -400, EINTR, 0, -1};
  EXPECT_EQ(1u, ZotOsCopyFile("source", "copy", 0));
  EXPECT_EQ(bytes, readFile("copy"));
  EXPECT_TRUE(script.kernel.empty() && script.read.empty() && script.write.empty());
}

TEST_F(File, CopyReportsTheFirstFailureAndKeepsWhatItWrote) {
  const std::tuple<Script, int, size_t> cases[] = {
      {{.close = {EBADF, EBADF}, .kernel = {ENOSYS}, .read = {-100, EIO}}, EIO, 100},
      {{.close = {EBADF, EBADF}, .kernel = {-5000, EIO}, .write = {-7, -8, EDQUOT}}, EDQUOT, 5015},
      {{.close = {EBADF, EBADF}, .fchown = {EPERM}}, EPERM, bytes.size()},
      {{.close = {EBADF, EBADF}, .fchmod = {EROFS}}, EROFS, bytes.size()},
      {{.close = {ENOSPC, EBADF}}, ENOSPC, bytes.size()},
      {{.close = {0, EBADF}, .utime = {EACCES}}, EACCES, bytes.size()},
      {{.close = {0, EXDEV}}, EXDEV, bytes.size()}};
  for (const auto& [failing, error, written] : cases) {
    unlink("copy");
    script = failing;
    EXPECT_EQ(0u, ZotOsCopyFile("source", "copy", 0));
    EXPECT_EQ(error, errno);
    script = {};
    EXPECT_EQ(bytes.substr(0, written), readFile("copy"));
    EXPECT_EQ(error == EXDEV, statusOf("copy").st_mtime == 1000000000) << "closing the source comes last";
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
  const struct stat copy = statusOf("existing");
  EXPECT_EQ(0, copy.st_size);
  EXPECT_EQ(0640u, copy.st_mode & 07777u);
  EXPECT_EQ(1000000000, copy.st_mtime);
}

TEST(Module, SplitsTheProgramPathAndStaysInsideTheDirectorySize) {
  const std::string program = std::filesystem::read_symlink("/proc/self/exe").string();
  const size_t slash = program.rfind('/');
  for (const size_t size : {size_t{1024}, program.size(), slash + 2, size_t{1}}) {
    std::vector<char> dir(size + 1, '#');
    char name[1024] = "#";
    uint32_t error = 77;
    errno = EBADF;
    EXPECT_EQ(1u, ZotOsGetModuleFileName(dir.data(), static_cast<uint32_t>(size), name, sizeof name, &error));
    EXPECT_EQ(size > 1 ? program.substr(0, slash) : "", dir.data());
    EXPECT_EQ(size > 1 ? program.substr(slash + 1, size - slash - 1) : "", name);
    EXPECT_TRUE(error == 0 && dir.back() == '#');
  }
  char dir[] = "kept";
  uint32_t error = 0;
  EXPECT_EQ(0u, ZotOsGetModulePath(dir, 0, &error));
  EXPECT_EQ(static_cast<uint32_t>(EINVAL), error);
  EXPECT_STREQ("kept", dir);
}

}  // namespace
