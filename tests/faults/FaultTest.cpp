// One typical life of everything that the library hands out, again and again: with the
// n-th allocation and all behind it refused, and with the n-th call of the system failing,
// for every n.  Whatever fails, a result that says success is true, nothing stays open,
// in the system's tables or locked, and the same life works afterwards.  Lost memory is for
// the address sanitizer to see.
#include <fcntl.h>
#include <pthread.h>
#include <sched.h>
#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/select.h>
#include <sys/sem.h>
#include <sys/shm.h>
#include <sys/stat.h>
#include <utime.h>

#include <csignal>
#include <cstdarg>
#include <cstring>
#include <new>

#include "ipaddr/ZotIpAddr.h"
#include "log/ZotLog.h"
#include "mif/Mif32.h"
#include "multilang/LanguageFileBytes.h"
#include "multilang/ZOT_MultiLanguage.h"
#include "os/NamedSemaphoreInternal.h"
#include "os/ThreadRegistryInternal.h"
#include "os/ZotOs.h"
#include "support/CallScript.h"
#include "support/Child.h"
#include "support/FailingHeap.h"
#include "support/IpcLeftovers.h"
#include "support/TemporaryDirectory.h"

// One script for all the calls: shmat() has it in every test program.
static zot_test::CallScript& calls = zot_test::attaches;
static unsigned int interruptions = 0;  // in a storm, of 4 transfers and waits 3 are interrupted

static int nextTransfer() {
  return interruptions != 0 && interruptions++ % 4 != 0 ? EINTR : zot_test::next(calls);
}

// The linker's --wrap option sends the calls here.  A call that gives something back has
// done so when it reports a failure.
#define FAILING(type, function, parameters, arguments, failure) \
  ZOT_SCRIPTED(calls, type, function, parameters, arguments, (errno = entry, failure))
#define INTERRUPTED(type, function, parameters, arguments)                 \
  type __real_##function parameters;                                       \
  type __wrap_##function parameters {                                      \
    const int entry = nextTransfer();                                      \
    return entry != 0 ? (errno = entry, -1) : __real_##function arguments; \
  }
#define GIVING_BACK(function, parameters, arguments)             \
  int __real_##function parameters;                              \
  int __wrap_##function parameters {                             \
    const int result = __real_##function arguments;              \
    return zot_test::fails(zot_test::next(calls)) ? -1 : result; \
  }
#define RETURNING_ERRORS(function, parameters, arguments) \
  ZOT_SCRIPTED(calls, int, function, parameters, arguments, entry)

extern "C" {

INTERRUPTED(ssize_t, read, (int file, void* bytes, size_t count), (file, bytes, count))
INTERRUPTED(ssize_t, write, (int file, const void* bytes, size_t count), (file, bytes, count))
INTERRUPTED(ssize_t, copy_file_range,
            (int from, off64_t* fromAt, int to, off64_t* toAt, size_t count, unsigned int flags),
            (from, fromAt, to, toAt, count, flags))
FAILING(ssize_t, pread64, (int file, void* bytes, size_t count, off64_t at), (file, bytes, count, at), -1)
FAILING(int, access, (const char* path, int mode), (path, mode), -1)
FAILING(int, fchmod, (int file, mode_t mode), (file, mode), -1)
FAILING(int, fchown, (int file, uid_t owner, gid_t group), (file, owner, group), -1)
FAILING(FILE*, fopen64, (const char* path, const char* mode), (path, mode), nullptr)
FAILING(size_t, fread, (void* to, size_t size, size_t count, FILE* file), (to, size, count, file), 0)
FAILING(int, fseek, (FILE * file, long offset, int whence), (file, offset, whence), -1)
FAILING(int, fstat64, (int file, struct stat* status), (file, status), -1)
FAILING(int, fstatat64, (int directory, const char* name, struct stat* status, int flags),
        (directory, name, status, flags), -1)
FAILING(int, mkdir, (const char* path, mode_t mode), (path, mode), -1)
FAILING(void*, mmap64, (void* at, size_t size, int protection, int flags, int file, off64_t offset),
        (at, size, protection, flags, file, offset), MAP_FAILED)
FAILING(void*, mremap, (void* at, size_t size, size_t newSize, int flags, void* newAt),
        (at, size, newSize, flags, newAt), MAP_FAILED)
FAILING(int, msync, (void* at, size_t size, int flags), (at, size, flags), -1)
FAILING(DIR*, opendir, (const char* path), (path), nullptr)
FAILING(dirent*, readdir64, (DIR * directory), (directory), nullptr)
FAILING(int, rmdir, (const char* path), (path), -1)
FAILING(int, select, (int count, fd_set* in, fd_set* out, fd_set* bad, timeval* wait),
        (count, in, out, bad, wait), -1)
FAILING(int, semget, (key_t key, int count, int flags), (key, count, flags), -1)
FAILING(int, shmget, (key_t key, size_t size, int flags), (key, size, flags), -1)
FAILING(int, stat64, (const char* path, struct stat* status), (path, status), -1)
FAILING(int, system, (const char* command), (command), -1)
FAILING(int, unlink, (const char* path), (path), -1)
FAILING(int, unlinkat, (int directory, const char* name, int flags), (directory, name, flags), -1)
FAILING(int, utime, (const char* path, const utimbuf* times), (path, times), -1)
GIVING_BACK(close, (int file), (file))
GIVING_BACK(closedir, (DIR * directory), (directory))
GIVING_BACK(fclose, (FILE * file), (file))
GIVING_BACK(munmap, (void* at, size_t size), (at, size))
GIVING_BACK(shmdt, (const void* at), (at))
RETURNING_ERRORS(pthread_cond_init, (pthread_cond_t * made, const pthread_condattr_t* how), (made, how))
RETURNING_ERRORS(pthread_create,
                 (pthread_t * made, const pthread_attr_t* how, void* (*run)(void*), void* arg),
                 (made, how, run, arg))
RETURNING_ERRORS(pthread_mutex_init, (pthread_mutex_t * made, const pthread_mutexattr_t* how), (made, how))
RETURNING_ERRORS(pthread_mutexattr_init, (pthread_mutexattr_t * made), (made))
RETURNING_ERRORS(pthread_mutexattr_settype, (pthread_mutexattr_t * made, int type), (made, type))

int __real_semop(int id, sembuf* operations, size_t count);
int __wrap_semop(int id, sembuf* operations, size_t count) {
  const int entry = operations->sem_op < 0 ? nextTransfer() : zot_test::next(calls);
  return zot_test::fails(entry) ? -1 : __real_semop(id, operations, count);
}

int __real_open64(const char* path, int flags, ...);
int __wrap_open64(const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
  va_end(more);
  return zot_test::fails(zot_test::next(calls)) ? -1 : __real_open64(path, flags, mode);
}

int __real_shmctl(int id, int command, shmid_ds* status);
int __wrap_shmctl(int id, int command, shmid_ds* status) {
  const int entry = zot_test::next(calls);
  const int result = entry == 0 || command == IPC_RMID ? __real_shmctl(id, command, status) : -1;
  return zot_test::fails(entry) ? -1 : result;
}

int __real_semctl(int id, int number, int command, ...);
int __wrap_semctl(int id, int number, int command, ...) {
  va_list more;
  va_start(more, command);
  const ZotSemun argument = command == SETVAL ? va_arg(more, ZotSemun) : ZotSemun{};
  va_end(more);
  // A set that cannot be removed keeps its counts, and the process its log: no failure here.
  const bool failing = command != IPC_RMID && zot_test::fails(zot_test::next(calls));
  return failing ? -1 : __real_semctl(id, number, command, argument);
}

}  // extern "C"

// Strings and containers of the library fail with its own allocations.  The thread sanitizer
// has operators that nobody may replace.
#ifndef __has_feature
#define __has_feature(name) 0
#endif
#if !__has_feature(thread_sanitizer)
void* operator new(size_t size) {
  if (void* const block = std::malloc(size)) {
    return block;
  }
  throw std::bad_alloc();
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return std::malloc(size);
}
void operator delete(void* block) noexcept {
  std::free(block);
}
void operator delete(void* block, size_t) noexcept {
  std::free(block);
}
#endif

namespace {

using namespace zot_test;

constexpr uint32_t kKey = 0x5A00;
const std::string bytes(200000, 'b');
const char* broken;  // the promise that did not hold

void must(bool condition, const char* promise) {
  if (!condition) {
    broken = promise;
  }
}

// Each part of a life returns whether every result said success.

bool records() {
  Mif32 mif;
  const bool first = mif.AddInt(1, 7) != 0;
  const bool grown = mif.AddBin(2, reinterpret_cast<const unsigned char*>(bytes.data()), 5000) != 0;
  unsigned int number = 7, length = 5000;
  unsigned char* value = nullptr;
  must((mif.GetInt(1, &number, 1) == 1) == (first && grown) && number == 7, "a growth keeps all or nothing");
  must((mif.GetBinPtr(2, &value, &length, 1) == 1) == grown && length == 5000, "what was added is there");
  const bool updated = mif.UpdStr(1, "a longer value than before", 1) != 0;
  char text[64] = {};
  must(!updated || (mif.GetStr(1, text, sizeof text, 1) != 0 && text[0] == 'a'), "an update is there");
  return first && grown && updated && mif.AddEndKz() != 0;
}

bool addressText() {
  ZotIpAddr address("192.168.1.254");
  const char* const text = address.GetStr();
  must(text != nullptr && (*text == '\0' || std::strcmp(text, "192.168.1.254") == 0), "the text, or none");
  return text != nullptr && *text != '\0';
}

// The key 0 makes them local.
template <uint32_t key>
bool eventAndMutex() {
  ZotOsEventHandle* event = nullptr;
  ZotOsMutexHandle *mutex = nullptr, *again = nullptr;
  uint32_t passed = 77, held = 77;
  uint32_t all = ZotOsEventCreate(&event, key) & ZotOsMutexCreate(&mutex, key == 0 ? 0 : key + 1);
  if (event != nullptr) {
    all &= ZotOsEventSet(event) & ZotOsEventWait(event, 0, &passed);
    all &= ZotOsEventClose(event);
  }
  if (mutex != nullptr) {
    all &= key == 0 ? 1 : ZotOsMutexOpen(&again, key + 1);
    if (ZotOsMutexWait(mutex, key == 0 ? -1 : 0, &held) == 1 && held == kZotOsWaitSignalled) {
      must(key == 0 || ZotOsSemaphoreVal(mutex->semId) <= 0, "a mutex that is held");
      all &= ZotOsMutexRelease(mutex);
    }
    all &= again != nullptr ? ZotOsMutexClose(again) : 1;
    all &= ZotOsMutexClose(mutex);
  }
  return all == 1 && passed == kZotOsWaitSignalled && held == kZotOsWaitSignalled;
}

uint32_t closeSegment(ZotOsMmfHandle& handle) {
  const uint32_t closed = ZotOsMmfClose(&handle);
  if (handle.address != nullptr) {
    ZotOsMmfClose(&handle);  // its state could not be read, or its removal was not reported
    return 0;
  }
  return closed;
}

bool segment() {
  ZotOsMmfHandle made = {}, opened = {};
  if (ZotOsMmfCreate(&made, 100, nullptr, kKey, 1) == 0) {
    return false;
  }
  must(made.address != nullptr && made.created == 1, "a new segment");
  const uint32_t second = ZotOsMmfOpen(&opened, 0, kKey);
  const uint32_t closed = second != 0 ? closeSegment(opened) : 0;
  return (closeSegment(made) & second & closed) == 1;
}

bool mappedFile() {
  ZotOsMmfHandle handle = {};
  uint32_t all = ZotOsMmfCreate(&handle, 8192, "new/map", 0, 1);
  if (all != 0) {
    std::memset(handle.address, 'm', 8192);
    all &= ZotOsMmfFlush(&handle, handle.address, 8192);
  }
  if (handle.fd != -1) {
    all &= ZotOsMmfClose(&handle);
  }
  return all == 1;
}

bool logObject() {
  ZotOsLog* log = ZotOspLogNew();
  const bool made = log != nullptr;
  must(!made || ZotOsdGetLogLevel(log) == 0, "a level");
  ZotOsvLogDelete(&log);
  must(log == nullptr, "a pointer that is cleared");
  return made;
}

// Without memory for its buffer a copy is empty and good; callers rely on that.
bool copy() {
  uint32_t size = 0;
  return (ZotOsCopyFile("source", "new/copy", 0) & ZotOsGetFileSize("new/copy", &size)) == 1 && size != 0;
}

bool search() {
  static ZotOsFindData find;
  char name[ZOT_OS_FIND_TEXT];
  uint32_t size = 0, all = 0, hits = 0;
  uint32_t found = ZotOsFindFirst(&find, "tree/*.txt", name, nullptr, nullptr, &size);
  for (; found != 0; ++hits) {
    all += size;
    found = ZotOsFindNext(&find, name, nullptr, nullptr, &size);
  }
  return ZotOsFindClose(&find) == 1 && hits == 2 && all == 2;
}

bool texts() {
  ZOT_MultiLanguage loader;
  loader.SetLanguageFileName("language");
  ProgramTexts* const table = loader.loadProgramTexts(1, 0, 0, nullptr);
  const char* const text = table != nullptr ? table->getPrgTextDefA(3, 4, 1, "default", nullptr, 0) : "none";
  const bool loaded = std::strcmp(text, "a text") == 0;
  must(loaded || table == nullptr || std::strcmp(text, "default") == 0, "the text or its default");
  delete table;
  return loaded;
}

bool process() {
  uint32_t code = 77;
  const uint32_t result = ZotOsCreateProcessEx("true", 0, &code);
  must((result == 1) == (code == 0) && (result == 1 || code == UINT32_MAX), "an exit code");
  return result == 1;
}

bool thread() {
  static uint32_t state;
  const auto obey = [](void*) -> void* {
    const std::atomic_ref shared(state);
    while (shared != 3) {
      sched_yield();
    }
    shared = 0;
    return nullptr;
  };
  uint32_t handle = 77;
  const bool started = ZotOsThreadStart(&handle, &state, obey, nullptr) == 1;
  must((handle != 0) == started, "a handle");
  must(ZotOsThreadStop(nullptr, &state, 0, nullptr, 0, "life") == 1 && state == 0, "a thread that ends");
  return started;
}

struct Life {
  const char* name;
  bool (*live)();
  // Whether a success is true; asked when nothing fails any more.  May be null.
  bool (*holds)();
};
void PrintTo(const Life& life, std::ostream* out) {
  *out << life.name;
}

const Life kLives[] = {
    {"namedObjects", eventAndMutex<kKey>, nullptr},
    {"copy", copy,
     [] {
       return readFile("new/copy") == bytes &&
              std::filesystem::status("new/copy").permissions() == std::filesystem::perms{04640};
     }},
    {"records", records, nullptr},
    {"address", addressText, nullptr},
    {"localObjects", eventAndMutex<0>, nullptr},
    {"segment", segment, nullptr},
    {"mappedFile", mappedFile, [] { return readFile("new/map") == std::string(8192, 'm'); }},
    {"log", logObject, nullptr},
    {"search", search, nullptr},
    {"deletion", [] { return ZotOsDeleteDirTree("tree") == 1; },
     [] { return !std::filesystem::exists("tree"); }},
    {"directory", [] { return ZotOsChkAndCreateDir("new/b/c") == 1; },
     [] { return std::filesystem::is_directory("new/b/c"); }},
    {"texts", texts, nullptr},
    {"process", process, nullptr},
    {"thread", thread, nullptr}};

class Fault : public TemporaryDirectory, public testing::WithParamInterface<Life> {
 protected:
  static void prepare() {
    std::filesystem::remove_all("new");
    std::filesystem::create_directories("new");
    std::filesystem::create_directories("tree/below");
    for (const char* file : {"tree/a.txt", "tree/b.txt", "tree/c", "tree/below/d"}) {
      writeFile(file, "x");
    }
    writeFile("source", bytes);
    chmod("source", 04640);
    writeFile("language", oneForm(1, {textRecord(3, 4, "a text"), textRecord(3, 5, "another")}));
    broken = nullptr;
  }

  static void expectWhole(bool claimed, long descriptors) {
    EXPECT_STREQ(nullptr, broken);
    EXPECT_TRUE(!claimed || GetParam().holds == nullptr || GetParam().holds());
    EXPECT_EQ(descriptors, openDescriptors());
    EXPECT_TRUE(waitUntil([] { return ThreadRegistry::instance().size() == 0; }));
  }

  // Lives while the n-th step fails and then once more; false when there is no n-th.
  template <typename Failing>
  static bool survives(unsigned int n, Failing liveFailing) {
    SCOPED_TRACE(n);
    prepare();
    const long descriptors = openDescriptors();
    bool failed = false;
    const bool claimed = liveFailing(n, failed);
    EXPECT_TRUE(claimed || failed);
    expectWhole(claimed, descriptors);
    prepare();
    const bool works = GetParam().live();
    EXPECT_TRUE(works);
    expectWhole(works, descriptors);
    // A block that could not be examined stays, until the next life takes it along.
    EXPECT_EQ("", ipcLeftovers());
    return failed && !HasFailure();
  }
};

TEST_P(Fault, OfTheHeap) {
  for (unsigned int n = 0; survives(n,
                                    [](unsigned int after, bool&failed) {
                                      const FailingHeap heap(after);
                                      const bool claimed = GetParam().live();
                                      failed = heap.refused();
                                      return claimed;
                                    });
       ++n) {
  }
}

TEST_P(Fault, OfTheSystem) {
  for (unsigned int n = 0; survives(n,
                                    [](unsigned int before, bool&failed) {
                                      calls.assign(before, 0);
                                      calls.push_back(EIO);
                                      const bool claimed = GetParam().live();
                                      failed = calls.empty();
                                      calls.clear();
                                      return claimed;
                                    });
       ++n) {
  }
}

INSTANTIATE_TEST_SUITE_P(Life, Fault, testing::ValuesIn(kLives),
                         [](const auto& life) { return std::string(life.param.name); });

class Signals : public Fault {};

TEST_P(Signals, InterruptOnlyForAMoment) {
  prepare();
  const long descriptors = openDescriptors();
  interruptions = 1;
  const bool claimed = GetParam().live();
  interruptions = 0;
  EXPECT_TRUE(claimed);
  expectWhole(claimed, descriptors);
}

INSTANTIATE_TEST_SUITE_P(Life, Signals, testing::ValuesIn(kLives, kLives + 2),
                         [](const auto& life) { return std::string(life.param.name); });

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
  writeFile("source", bytes);
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
