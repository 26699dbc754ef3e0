#include "os/ZotOsMmf.h"

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/shm.h>
#include <sys/stat.h>

#include <cstddef>
#include <cstring>
#include <regex>
#include <thread>

#include "support/CallScript.h"
#include "support/Child.h"
#include "support/FailingHeap.h"
#include "support/LogFixture.h"
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
using namespace std::string_literals;

constexpr int32_t kKey = 0x5A01;

static_assert(offsetof(ZotOsMmfHandle, shmId) == 4 && offsetof(ZotOsMmfHandle, size) == 8 &&
              offsetof(ZotOsMmfHandle, lastError) == offsetof(ZotOsMmfHandle, created) + 4);

std::vector<size_t> fields(const ZotOsMmfHandle& handle) {
  return {handle.created, static_cast<size_t>(handle.lastError), handle.size};
}

class MappedFile : public TemporaryDirectory {
 protected:
  ZotOsMmfHandle handle;
};

TEST_F(MappedFile, IsMadeExtendedOrMappedAsItIs) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "\0\0\0\0\0"s}, {"abc", "abc\0\0"s}, {"abcdefg", "abcdefg"}};
  for (const auto& c : cases) {
    unlink("f");
    if (!c.first.empty()) {
      writeFile("f", c.first);
    }
    const auto lines = told([&] {
      EXPECT_EQ(1u, ZotOsMmfCreate(&handle, 5, "f", kKey, 1));
      ASSERT_EQ((std::vector<size_t>{c.first.empty(), 0, c.second.size()}), fields(handle));
      EXPECT_EQ(c.second, std::string(static_cast<char*>(handle.address), handle.size));
      EXPECT_EQ(FD_CLOEXEC, fcntl(handle.fd, F_GETFD));
      struct stat status {};
      fstat(handle.fd, &status);
      EXPECT_TRUE(!c.first.empty() || (status.st_mode & 0777) == 0600);
      static_cast<char*>(handle.address)[1] = 'X';
      EXPECT_EQ(1u, ZotOsMmfClose(&handle));
    });
    EXPECT_EQ('X', readFile("f").at(1));
    EXPECT_EQ(filled("TRACE ZotOsMmfCreate: mmap( BLOCK, SIZE ) ok\nTRACE ZotOsMmfClose: unmap(BLOCK) now\n",
                     {{"BLOCK", handle.address}, {"SIZE", c.second.size()}}),
              lines);
  }
}

TEST_F(MappedFile, ReportsEachFailure) {
  const std::tuple<const char*, size_t, bool> cases[] = {{"no/f", ENOENT, false},
                                                         {".", EISDIR, false},
                                                         {"/dev/full", ENOSPC, true},
                                                         {"f", ENOSPC, true},
                                                         {"/dev/null", ENODEV, true}};
  const auto failures = [&] {
    const rlimit small{4096, RLIM_INFINITY};
    setrlimit(RLIMIT_FSIZE, &small);
    const auto lines = told([&] {
      for (const auto& [path, error, open] : cases) {
        EXPECT_EQ(0u, ZotOsMmfCreate(&handle, 9000, path, kKey, 1));
        EXPECT_EQ(error, fields(handle)[1]);
        EXPECT_EQ(0, handle.created);
        EXPECT_EQ(open, fcntl(handle.fd, F_GETFD) != -1) << "left for the close";
        EXPECT_EQ(1u, ZotOsMmfClose(&handle));
      }
      const FailingHeap none;
      EXPECT_EQ(0u, ZotOsMmfCreate(&handle, 5, "g", kKey, 1));
      EXPECT_EQ(ENOMEM, handle.lastError);
      EXPECT_EQ(1u, ZotOsMmfClose(&handle));
      handle = {-1, -1, 5, &handle, 0, {}, 0};  // no page begins there
      EXPECT_EQ(0u, ZotOsMmfClose(&handle));
    });
    EXPECT_EQ(filled(R"(FATAL ZotOsMmfCreate: file no/f could not be created (2=No such file or directory)
FATAL ZotOsMmfCreate: file . could not be opened (21=Is a directory)
FATAL ZotOsMmfCreate: write (0 bytes) to created file /dev/full failed (28=No space left on device)
FATAL ZotOsMmfCreate: write (4096 bytes) to created file f failed (28=No space left on device)
TRACE ZotOsMmfCreate: mmap( (nil), 9000 ) ok
FATAL ZotOsMmfCreate: no write buffer availabel (12=Cannot allocate memory)
TRACE ZotOsMmfClose: unmap(HANDLE) now
ERROR ZotOsMmfClose: unmap(HANDLE) failed (22=Invalid argument)
)",
                     {{"HANDLE", &handle}}),
              lines);
    const rlimit whole{RLIM_INFINITY, RLIM_INFINITY};
    setrlimit(RLIMIT_FSIZE, &whole);  // the counts of a coverage build are still to be written
    return 0;
  };
  EXPECT_EQ(0, runInChild(failures)) << "in a process of its own, since the limit holds for all its files";
}

TEST_F(MappedFile, IsMadeAndClosedByAThreadThatIsBeingCancelled) {
  uint32_t done = 0;
  std::thread([&] {
    pthread_cancel(pthread_self());
    done = ZotOsMmfCreate(&handle, 5, "f", kKey, 1);
    done += ZotOsMmfClose(&handle);
  }).join();
  EXPECT_EQ(2u, done);
}

TEST_F(MappedFile, IsFlushedFromTheStartOfAPage) {
  const auto page = static_cast<uint32_t>(getpagesize());
  ASSERT_EQ(1u, ZotOsMmfCreate(&handle, 2 * page, "f", kKey, 1));
  char* const start = static_cast<char*>(handle.address);
  EXPECT_EQ(1u, ZotOsMmfFlush(nullptr, start + page + 100, 20));
  EXPECT_EQ(1u, ZotOsMmfFlush(&handle, start, 2 * page));
  EXPECT_EQ((std::vector<std::pair<void*, size_t>>{{start + page, 120}, {start, 2 * page}}), flushed);
  EXPECT_EQ("ERROR ZotOsMmfFlush: msync failed (12=Cannot allocate memory)\n",
            told([&] { EXPECT_EQ(0u, ZotOsMmfFlush(nullptr, start, UINT32_MAX)); }))
      << "no mapping is that long";
  EXPECT_EQ(1u, ZotOsMmfClose(&handle));
}

TEST(Segment, IsMadeOnceAndRemovedByTheLastToClose) {
  ZotOsMmfHandle first, second;
  void *one = nullptr, *two = nullptr;
  int id = -1;
  const auto lines = told([&] {
    EXPECT_EQ(1u, ZotOsMmfCreate(&first, 100, "", kKey, 1));
    EXPECT_EQ((std::vector<size_t>{1, 0, 0}), fields(first));
    EXPECT_EQ(1u, ZotOsMmfCreate(&second, 50, nullptr, kKey, 1));
    EXPECT_EQ((std::vector<size_t>{0, EEXIST, 0}), fields(second));
    one = first.address, two = second.address, id = first.shmId;
    std::strcpy(static_cast<char*>(two), "hello");
    EXPECT_EQ(1u, ZotOsMmfClose(&second));
    EXPECT_TRUE(second.shmId == id && second.address == nullptr);
    EXPECT_EQ(1u, ZotOsMmfClose(&first));
    EXPECT_TRUE(first.shmId == -1 && first.address == nullptr);
  });
  EXPECT_STREQ("hello", static_cast<char*>(one)) << "still mapped until this process ends";
  EXPECT_EQ(filled(R"(TRACE ZotOsMmfCreate(ID): shm (key=0x5A01) is created
TRACE fMmfAttach(ID): shm (addr=ONE) is attached now: 1
TRACE ZotOsMmfOpen(ID): shm (key=0x5A01) is opened
TRACE fMmfAttach(ID): shm (addr=TWO) is attached now: 2
TRACE ZotOsMmfClose(ID): shm 2 attached processes
TRACE ZotOsMmfClose(ID): detach shm (TWO)
TRACE ZotOsMmfClose(ID): shm 1 attached processes
TRACE ZotOsMmfClose(ID): close shm
)",
                   {{"ID", id}, {"ONE", one}, {"TWO", two}}),
            lines);
}

TEST(Segment, ReportsEachFailure) {
  ZotOsMmfHandle handle{-1, -1, 77, nullptr, 1, {}, 0};
  int id = -1;
  const auto lines = told([&] {
    EXPECT_EQ(0u, ZotOsMmfOpen(&handle, 0, kKey));
    EXPECT_EQ((std::vector<size_t>{1, ENOENT, 77}), fields(handle)) << "opening leaves the others alone";
    EXPECT_EQ(0u, ZotOsMmfCreate(&handle, 0, nullptr, kKey, 1));
    EXPECT_EQ(EINVAL, handle.lastError);
    id = shmget(kKey, 100, IPC_CREAT | 0666);
    attaches = {EMFILE, EMFILE};
    for (int step = 0; step < 2; ++step) {  // opens it and creates another, which lives no longer
      EXPECT_EQ(0u, ZotOsMmfCreate(&handle, 100, nullptr, kKey, 1));
      EXPECT_EQ((std::vector<size_t>{0, EMFILE, 0}), fields(handle));
      EXPECT_EQ(-1, handle.shmId);
      EXPECT_EQ(-1, shmget(kKey, 0, 0)) << "who cannot attach removes it for everybody";
    }
  });
  EXPECT_EQ(R"(ERROR ZotOsMmfOpen: open shm (key=0x5A01) failed (2=No such file or directory)
FATAL ZotOsMmfCreate: shm (key=0x5A01) failed (22=Invalid argument)
TRACE ZotOsMmfOpen(N): shm (key=0x5A01) is opened
FATAL fMmfAttach: shmat failed (24=Too many open files)
FATAL ZotOsMmfCreate: key=0x5A01 already created, but ZotOsMmfOpen failed (24=Too many open files)
TRACE ZotOsMmfCreate(N): shm (key=0x5A01) is created
FATAL fMmfAttach: shmat failed (24=Too many open files)
)",
            std::regex_replace(lines, std::regex("\\((\\d+)\\)"), "(N)"));
  handle = {-1, id, 0, &handle, 0, {}, 0};
  EXPECT_EQ(1u, ZotOsMmfClose(&handle)) << "gone already";
  EXPECT_EQ(0u, ZotOsMmfClose(nullptr) + ZotOsMmfCreate(nullptr, 100, nullptr, kKey, 1) +
                    ZotOsMmfOpen(nullptr, 0, kKey));
}

}  // namespace
