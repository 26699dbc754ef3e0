#include "os/ZotOsMmf.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/shm.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "support/Child.h"
#include "support/FailingHeap.h"
#include "support/LogFixture.h"
#include "support/RefusedAttach.h"
#include "support/TemporaryDirectory.h"

static std::vector<std::pair<void*, size_t>> flushed;

// The linker's --wrap option sends the calls here.
extern "C" int __real_msync(void* address, size_t length, int flags);
extern "C" int __wrap_msync(void* address, size_t length, int flags) {
  EXPECT_EQ(MS_SYNC, flags);
  flushed.emplace_back(address, length);
  return __real_msync(address, length, flags);
}

namespace {

using namespace zot_test;
using Lines = std::vector<std::string>;

constexpr int32_t kKey = 0x5A01;

static_assert(offsetof(ZotOsMmfHandle, shmId) == 4 && offsetof(ZotOsMmfHandle, size) == 8 &&
              offsetof(ZotOsMmfHandle, lastError) == offsetof(ZotOsMmfHandle, created) + 4);

template <typename... Args>
std::string text(const char* format, Args... args) {
  char line[256];
  std::snprintf(line, sizeof line, format, args...);
  return line;
}

class MappedFile : public TemporaryDirectory {
 protected:
  // Creates, closes and returns the lines of both; the fields are left to look at.
  Lines lines(const char* path, uint32_t size, uint32_t expected) {
    return logLines([&] { EXPECT_EQ(expected, ZotOsMmfCreate(&handle, size, path, kKey, 1)); });
  }

  ZotOsMmfHandle handle;
};

TEST_F(MappedFile, IsMadeExtendedOrMappedAsItIs) {
  const struct {
    const char* before;
    uint32_t size;
    unsigned char created;
    std::string after;
  } cases[] = {
      {nullptr, 5, 1, std::string(5, '\0')},
      {"abc", 5, 0, std::string("abc\0\0", 5)},
      {"abcdefg", 5, 0, "abcdefg"},
  };
  for (const auto& c : cases) {
    unlink("f");
    if (c.before != nullptr) {
      writeFile("f", c.before);
    }
    const auto written = lines("f", c.size, 1);
    EXPECT_EQ(Lines{text("TRACE ZotOsMmfCreate: mmap( %p, %zu ) ok", handle.address, c.after.size())},
              written);
    EXPECT_EQ(c.created, handle.created);
    EXPECT_EQ(0, handle.lastError);
    EXPECT_EQ(-1, handle.shmId);
    EXPECT_EQ(FD_CLOEXEC, fcntl(handle.fd, F_GETFD));
    ASSERT_EQ(c.after.size(), handle.size);
    EXPECT_EQ(c.after, std::string(static_cast<char*>(handle.address), handle.size));
    struct stat status {};
    EXPECT_TRUE(c.created == 0 || (stat("f", &status) == 0 && (status.st_mode & 0777) == 0600));

    static_cast<char*>(handle.address)[1] = 'X';
    const auto closing = logLines([&] { EXPECT_EQ(1u, ZotOsMmfClose(&handle)); });
    EXPECT_EQ(Lines{text("TRACE ZotOsMmfClose: unmap(%p) now", handle.address)}, closing);
    EXPECT_EQ('X', readFile("f").at(1));
  }
}

TEST_F(MappedFile, ReportsEachFailure) {
  EXPECT_EQ(Lines{"FATAL ZotOsMmfCreate: file no/f could not be created (2=No such file or directory)"},
            lines("no/f", 5, 0));
  EXPECT_EQ(ENOENT, handle.lastError);
  EXPECT_EQ(Lines{"FATAL ZotOsMmfCreate: file . could not be opened (21=Is a directory)"}, lines(".", 5, 0));

  EXPECT_EQ(Lines{"FATAL ZotOsMmfCreate: write (0 bytes) to created file /dev/full failed "
                  "(28=No space left on device)"},
            lines("/dev/full", 5, 0));
  EXPECT_EQ(ENOSPC, handle.lastError);
  EXPECT_NE(-1, fcntl(handle.fd, F_GETFD)) << "left for the close";
  EXPECT_EQ(1u, ZotOsMmfClose(&handle));

  EXPECT_EQ(Lines{text("TRACE ZotOsMmfCreate: mmap( %p, 5 ) ok", nullptr)}, lines("/dev/null", 5, 0));
  EXPECT_EQ(ENODEV, handle.lastError);
  EXPECT_EQ(1u, ZotOsMmfClose(&handle));
  {
    const FailingHeap none;
    EXPECT_EQ(0u, ZotOsMmfCreate(&handle, 5, "f", kKey, 1));
  }
  EXPECT_EQ(ENOMEM, handle.lastError);
  EXPECT_EQ(0, handle.created);
  EXPECT_EQ(1u, ZotOsMmfClose(&handle));

  handle = {-1, -1, 5, &handle, 0, {}, 0};  // no page begins there
  EXPECT_EQ((Lines{text("TRACE ZotOsMmfClose: unmap(%p) now", &handle),
                   text("ERROR ZotOsMmfClose: unmap(%p) failed (22=Invalid argument)", &handle)}),
            logLines([&] { EXPECT_EQ(0u, ZotOsMmfClose(&handle)); }));
  EXPECT_EQ(EINVAL, handle.lastError);
}

TEST_F(MappedFile, IsFlushedFromTheStartOfAPage) {
  const auto page = static_cast<uint32_t>(getpagesize());
  ASSERT_EQ(1u, ZotOsMmfCreate(&handle, 2 * page, "f", kKey, 1));
  char* const start = static_cast<char*>(handle.address);
  flushed.clear();
  EXPECT_EQ(1u, ZotOsMmfFlush(nullptr, start + page + 100, 20));
  EXPECT_EQ(1u, ZotOsMmfFlush(&handle, start, 2 * page));
  EXPECT_EQ((std::vector<std::pair<void*, size_t>>{{start + page, 120}, {start, 2 * page}}), flushed);
  EXPECT_EQ(1u, ZotOsMmfClose(&handle));
  EXPECT_EQ(Lines{"ERROR ZotOsMmfFlush: msync failed (12=Cannot allocate memory)"},
            logLines([&] { EXPECT_EQ(0u, ZotOsMmfFlush(&handle, start, 1)); }));
}

TEST(Segment, IsMadeOnceAndRemovedByTheLastToClose) {
  ZotOsMmfHandle first, second;
  auto lines = logLines([&] { EXPECT_EQ(1u, ZotOsMmfCreate(&first, 100, "", kKey, 1)); });
  const int id = first.shmId;
  EXPECT_EQ((Lines{text("TRACE ZotOsMmfCreate(%d): shm (key=0x5A01) is created", id),
                   text("TRACE fMmfAttach(%d): shm (addr=%p) is attached now: 1", id, first.address)}),
            lines);
  EXPECT_EQ(1, first.created);
  EXPECT_EQ(0, first.lastError);
  EXPECT_EQ(0u, first.size);
  EXPECT_EQ(std::string(100, '\0'), std::string(static_cast<char*>(first.address), 100));

  lines = logLines([&] { EXPECT_EQ(1u, ZotOsMmfCreate(&second, 50, nullptr, kKey, 1)); });
  EXPECT_EQ((Lines{text("TRACE ZotOsMmfOpen(%d): shm (key=0x5A01) is opened", id),
                   text("TRACE fMmfAttach(%d): shm (addr=%p) is attached now: 2", id, second.address)}),
            lines);
  EXPECT_EQ(0, second.created);
  EXPECT_EQ(EEXIST, second.lastError);

  const void* const address = second.address;
  lines = logLines([&] { EXPECT_EQ(1u, ZotOsMmfClose(&second)); });
  EXPECT_EQ((Lines{text("TRACE ZotOsMmfClose(%d): shm 2 attached processes", id),
                   text("TRACE ZotOsMmfClose(%d): detach shm (%p)", id, address)}),
            lines);
  EXPECT_EQ(nullptr, second.address);
  EXPECT_EQ(id, second.shmId);

  char* const block = static_cast<char*>(first.address);
  lines = logLines([&] { EXPECT_EQ(1u, ZotOsMmfClose(&first)); });
  EXPECT_EQ((Lines{text("TRACE ZotOsMmfClose(%d): shm 1 attached processes", id),
                   text("TRACE ZotOsMmfClose(%d): close shm", id)}),
            lines);
  EXPECT_EQ(-1, first.shmId);
  EXPECT_EQ(nullptr, first.address);
  block[0] = 'x';  // still mapped until this process ends
}

TEST(Segment, OutlivesAProcessThatOnlyDetaches) {
  ZotOsMmfHandle handle;
  ASSERT_EQ(1u, ZotOsMmfCreate(&handle, 100, nullptr, kKey, 1));
  EXPECT_EQ(
      7, runInChild([] {
        ZotOsMmfHandle other{9, -1, 77, nullptr, 1, {}, 5};
        EXPECT_EQ(1u, ZotOsMmfOpen(&other, 0, kKey));
        EXPECT_EQ(9 + 77 + 1 + 5, other.fd + static_cast<int>(other.size) + other.created + other.lastError)
            << "opening leaves these alone";
        std::strcpy(static_cast<char*>(other.address), "hello");
        EXPECT_EQ(1u, ZotOsMmfClose(&other));
        return 7;
      }));
  EXPECT_STREQ("hello", static_cast<char*>(handle.address));
  EXPECT_EQ(1u, ZotOsMmfClose(&handle));
}

TEST(Segment, ReportsEachFailure) {
  ZotOsMmfHandle handle{};
  EXPECT_EQ(Lines{"ERROR ZotOsMmfOpen: open shm (key=0x5A01) failed (2=No such file or directory)"},
            logLines([&] { EXPECT_EQ(0u, ZotOsMmfOpen(&handle, 0, kKey)); }));
  EXPECT_EQ(ENOENT, handle.lastError);
  EXPECT_EQ(
      Lines{"FATAL ZotOsMmfCreate: shm (key=0x5A01) failed (22=Invalid argument)"},
      logLines([&] { EXPECT_EQ(0u, ZotOsMmfCreate(&handle, 0, nullptr, kKey, 1)); }, ZOT_LOG_FATAL | 1));
  EXPECT_EQ(EINVAL, handle.lastError);

  const int taken = shmget(kKey, 100, IPC_CREAT | 0666);
  for (const int already : {1, 0}) {
    const RefusedAttach refused(EMFILE);
    const auto lines = logLines([&] { EXPECT_EQ(0u, ZotOsMmfCreate(&handle, 100, nullptr, kKey, 1)); },
                                ZOT_LOG_FATAL | ZOT_LOG_STDOUT);
    Lines expected{"FATAL fMmfAttach: shmat failed (24=Too many open files)"};
    if (already != 0) {
      expected.push_back(
          "FATAL ZotOsMmfCreate: key=0x5A01 already created, but ZotOsMmfOpen failed "
          "(24=Too many open files)");
    }
    EXPECT_EQ(expected, lines);
    EXPECT_EQ(EMFILE, handle.lastError);
    EXPECT_EQ(-1, handle.shmId);
    EXPECT_EQ(0, handle.created);
    EXPECT_EQ(-1, shmget(kKey, 0, 0)) << "who cannot attach removes it for everybody";
  }
  handle = {-1, taken, 0, &handle, 0, {}, 0};
  EXPECT_EQ(1u, ZotOsMmfClose(&handle)) << "gone already";
  EXPECT_EQ(taken, handle.shmId);
  EXPECT_EQ(0u, ZotOsMmfClose(nullptr));
  EXPECT_EQ(0u, ZotOsMmfOpen(nullptr, 0, kKey));
  EXPECT_EQ(0u, ZotOsMmfCreate(nullptr, 1, nullptr, kKey, 1));
}

}  // namespace
