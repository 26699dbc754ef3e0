#include "os/ZotOsMmf.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/shm.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "support/CallScript.h"
#include "support/Child.h"
#include "support/FailingHeap.h"
#include "support/LogFixture.h"
#include "support/RefusedAttach.h"
#include "support/TemporaryDirectory.h"

static std::vector<std::pair<void*, size_t>> flushed;
static zot_test::CallScript flushes;

// The linker's --wrap option sends the calls here.
extern "C" int __real_msync(void* address, size_t length, int flags);
extern "C" int __wrap_msync(void* address, size_t length, int flags) {
  EXPECT_EQ(MS_SYNC, flags);
  flushed.emplace_back(address, length);
  return zot_test::fails(zot_test::next(flushes)) ? -1 : __real_msync(address, length, flags);
}

namespace {

using namespace zot_test;
using Lines = std::vector<std::string>;

constexpr int32_t kKey = 0x5A01;
const std::string kFatal = "FATAL ZotOsMmfCreate: ";

static_assert(offsetof(ZotOsMmfHandle, shmId) == 4 && offsetof(ZotOsMmfHandle, size) == 8 &&
              offsetof(ZotOsMmfHandle, lastError) == offsetof(ZotOsMmfHandle, created) + 4);

template <typename... Args>
std::string text(const char* format, Args... args) {
  char line[256];
  std::snprintf(line, sizeof line, format, args...);
  return line;
}

std::vector<int> fields(const ZotOsMmfHandle& handle) {
  return {handle.created, handle.lastError, static_cast<int>(handle.size)};
}

Lines createLines(uint32_t expected, ZotOsMmfHandle& handle, uint32_t size, const char* path) {
  return logLines([&] { EXPECT_EQ(expected, ZotOsMmfCreate(&handle, size, path, kKey, 1)); });
}

Lines closeLines(uint32_t expected, ZotOsMmfHandle& handle) {
  return logLines([&] { EXPECT_EQ(expected, ZotOsMmfClose(&handle)); });
}

class MappedFile : public TemporaryDirectory {
 protected:
  ZotOsMmfHandle handle;
};

TEST_F(MappedFile, IsMadeExtendedOrMappedAsItIs) {
  const struct {
    const char* before;
    int created;
    std::string after;
  } cases[] = {
      {nullptr, 1, std::string(5, '\0')}, {"abc", 0, std::string("abc\0\0", 5)}, {"abcdefg", 0, "abcdefg"}};
  for (const auto& c : cases) {
    unlink("f");
    if (c.before != nullptr) {
      writeFile("f", c.before);
    }
    const auto written = createLines(1, handle, 5, "f");
    const auto size = static_cast<int>(c.after.size());
    EXPECT_EQ(Lines{text("TRACE ZotOsMmfCreate: mmap( %p, %d ) ok", handle.address, size)}, written);
    ASSERT_EQ((std::vector<int>{c.created, 0, size}), fields(handle));
    EXPECT_EQ(c.after, std::string(static_cast<char*>(handle.address), handle.size));
    EXPECT_EQ(FD_CLOEXEC, fcntl(handle.fd, F_GETFD));
    struct stat status {};
    fstat(handle.fd, &status);
    EXPECT_TRUE(c.created == 0 || (status.st_mode & 0777) == 0600);

    static_cast<char*>(handle.address)[1] = 'X';
    EXPECT_EQ(Lines{text("TRACE ZotOsMmfClose: unmap(%p) now", handle.address)}, closeLines(1, handle));
    EXPECT_EQ('X', readFile("f").at(1));
  }
}

TEST_F(MappedFile, ReportsEachFailure) {
  const rlimit small{4096, 4096};
  const std::string nowhere = text("TRACE ZotOsMmfCreate: mmap( %p, 9000 ) ok", nullptr);
  const struct {
    const char* path;
    std::string line;
    int error;
    bool open;  // left for the close
  } cases[] = {
      {"no/f", kFatal + "file no/f could not be created (2=No such file or directory)", ENOENT, false},
      {".", kFatal + "file . could not be opened (21=Is a directory)", EISDIR, false},
      {"/dev/full", kFatal + "write (0 bytes) to created file /dev/full failed (28=No space left on device)",
       ENOSPC, true},
      {"f", kFatal + "write (4096 bytes) to created file f failed (28=No space left on device)", ENOSPC,
       true},
      {"/dev/null", nowhere, ENODEV, true},
  };
  for (const auto& c : cases) {
    // In a child, because nothing lifts the limit that cuts the write to f short.
    EXPECT_EQ(0, runInChild([&] {
                setrlimit(RLIMIT_FSIZE, &small);
                EXPECT_EQ(Lines{c.line}, createLines(0, handle, 9000, c.path));
                EXPECT_EQ(c.error, handle.lastError);
                EXPECT_EQ(0, handle.created);
                EXPECT_EQ(c.open, fcntl(handle.fd, F_GETFD) != -1);
                EXPECT_EQ(Lines{}, closeLines(1, handle));
                return 0;
              }));
  }
  std::optional<FailingHeap> none(std::in_place);
  EXPECT_EQ(0u, ZotOsMmfCreate(&handle, 5, "g", kKey, 1));
  none.reset();
  EXPECT_EQ((std::vector<int>{0, ENOMEM, 0}), fields(handle));
  EXPECT_EQ(1u, ZotOsMmfClose(&handle));
  handle = {-1, -1, 5, &handle, 0, {}, 0};  // no page begins there
  EXPECT_EQ((Lines{text("TRACE ZotOsMmfClose: unmap(%p) now", &handle),
                   text("ERROR ZotOsMmfClose: unmap(%p) failed (22=Invalid argument)", &handle)}),
            closeLines(0, handle));
}

TEST_F(MappedFile, IsFlushedFromTheStartOfAPage) {
  const auto page = static_cast<uint32_t>(getpagesize());
  ASSERT_EQ(1u, ZotOsMmfCreate(&handle, 2 * page, "f", kKey, 1));
  char* const start = static_cast<char*>(handle.address);
  EXPECT_EQ(1u, ZotOsMmfFlush(nullptr, start + page + 100, 20));
  EXPECT_EQ(1u, ZotOsMmfFlush(&handle, start, 2 * page));
  EXPECT_EQ((std::vector<std::pair<void*, size_t>>{{start + page, 120}, {start, 2 * page}}), flushed);
  flushes = {ENOMEM};
  EXPECT_EQ(Lines{"ERROR ZotOsMmfFlush: msync failed (12=Cannot allocate memory)"},
            logLines([&] { EXPECT_EQ(0u, ZotOsMmfFlush(&handle, start, 1)); }));
  EXPECT_EQ(1u, ZotOsMmfClose(&handle));
}

TEST(Segment, IsMadeOnceAndRemovedByTheLastToClose) {
  ZotOsMmfHandle first, second;
  auto lines = createLines(1, first, 100, "");
  const int id = first.shmId;
  char* const block = static_cast<char*>(first.address);
  EXPECT_EQ((Lines{text("TRACE ZotOsMmfCreate(%d): shm (key=0x5A01) is created", id),
                   text("TRACE fMmfAttach(%d): shm (addr=%p) is attached now: 1", id, block)}),
            lines);
  EXPECT_EQ((std::vector<int>{1, 0, 0}), fields(first));
  lines = createLines(1, second, 50, nullptr);
  void* const address = second.address;
  EXPECT_EQ((Lines{text("TRACE ZotOsMmfOpen(%d): shm (key=0x5A01) is opened", id),
                   text("TRACE fMmfAttach(%d): shm (addr=%p) is attached now: 2", id, address)}),
            lines);
  EXPECT_EQ((std::vector<int>{0, EEXIST, 0}), fields(second));
  std::strcpy(static_cast<char*>(address), "hello");
  EXPECT_EQ((Lines{text("TRACE ZotOsMmfClose(%d): shm 2 attached processes", id),
                   text("TRACE ZotOsMmfClose(%d): detach shm (%p)", id, address)}),
            closeLines(1, second));
  EXPECT_TRUE(second.shmId == id && second.address == nullptr);
  EXPECT_EQ((Lines{text("TRACE ZotOsMmfClose(%d): shm 1 attached processes", id),
                   text("TRACE ZotOsMmfClose(%d): close shm", id)}),
            closeLines(1, first));
  EXPECT_TRUE(first.shmId == -1 && first.address == nullptr);
  EXPECT_STREQ("hello", block) << "still mapped until this process ends";
}

TEST(Segment, ReportsEachFailure) {
  ZotOsMmfHandle handle{-1, -1, 77, nullptr, 1, {}, 0};
  EXPECT_EQ(Lines{"ERROR ZotOsMmfOpen: open shm (key=0x5A01) failed (2=No such file or directory)"},
            logLines([&] { EXPECT_EQ(0u, ZotOsMmfOpen(&handle, 0, kKey)); }));
  EXPECT_EQ((std::vector<int>{1, ENOENT, 77}), fields(handle)) << "opening leaves the others alone";
  EXPECT_EQ(Lines{kFatal + "shm (key=0x5A01) failed (22=Invalid argument)"},
            createLines(0, handle, 0, nullptr));
  EXPECT_EQ(EINVAL, handle.lastError);

  const int taken = shmget(kKey, 100, IPC_CREAT | 0666);
  Lines expected{"FATAL fMmfAttach: shmat failed (24=Too many open files)",
                 kFatal + "key=0x5A01 already created, but ZotOsMmfOpen failed (24=Too many open files)"};
  for (; !expected.empty(); expected.resize(expected.size() == 2 ? 1 : 0)) {
    const RefusedAttach refused(EMFILE);
    auto lines = createLines(0, handle, 100, nullptr);
    lines.erase(lines.begin());  // first opened, then created
    EXPECT_EQ(expected, lines);
    EXPECT_EQ((std::vector<int>{0, EMFILE, 0}), fields(handle));
    EXPECT_EQ(-1, handle.shmId);
    EXPECT_EQ(-1, shmget(kKey, 0, 0)) << "who cannot attach removes it for everybody";
  }
  handle = {-1, taken, 0, &handle, 0, {}, 0};
  EXPECT_EQ(1u, ZotOsMmfClose(&handle)) << "gone already";
  EXPECT_EQ(0u, ZotOsMmfClose(nullptr));
}

}  // namespace
