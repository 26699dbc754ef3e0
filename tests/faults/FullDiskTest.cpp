// Bytes that no longer fit are reported, and a copy or a mapped file leaves no harm behind.
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>
#include <csignal>
#include <string>

#include "os/ZotOs.h"
#include "support/Child.h"
#include "support/TemporaryDirectory.h"

namespace {

using namespace zot_test;

class FullDisk : public TemporaryDirectory {};

// A small file system where a mount namespace can be had, else a limit on files.
int fillDisk() {
  if (unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
      mount("none", "disk", "tmpfs", 0, "size=64k") == 0) {
    return ENOSPC;
  }
  const rlimit limit{65536, 65536};
  std::signal(SIGXFSZ, SIG_IGN);
  EXPECT_EQ(0, setrlimit(RLIMIT_FSIZE, &limit));
  return EFBIG;
}

TEST_F(FullDisk, IsReportedAndLeavesWhatFits) {
  mkdir("disk", 0700);
  writeFile("source", std::string(200000, 'b'));
  chmod("source", 06755);
  EXPECT_EQ(0, runInChild([] {
              const int full = fillDisk();
              EXPECT_EQ(0u, ZotOsCopyFile("source", "disk/copy", 0));
              EXPECT_EQ(full, errno);
              struct stat status = {};
              EXPECT_EQ(0, stat("disk/copy", &status));
              EXPECT_TRUE(status.st_size == 65536 && (status.st_mode & 07000) == 0);
              ZotOsMmfHandle handle = {};
              EXPECT_EQ(0u, ZotOsMmfCreate(&handle, 200000, "disk/map", 0, 1));
              EXPECT_TRUE(handle.lastError == ENOSPC || handle.lastError == full);
              EXPECT_EQ(1u, ZotOsMmfClose(&handle));
              EXPECT_EQ(2u, ZotOsDeleteFile("disk/copy") + ZotOsDeleteFile("disk/map"));
              EXPECT_EQ(1u, ZotOsMmfCreate(&handle, 30000, "disk/map", 0, 1) & ZotOsMmfClose(&handle));
              return 0;
            }));
}

}  // namespace
