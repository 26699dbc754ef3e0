// Mutexes, events and shared memory, each free of contention, beside the standard
// library's classes and the bare system calls.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/sem.h>
#include <sys/shm.h>
#include <unistd.h>

#include <condition_variable>
#include <mutex>
#include <thread>

#include "Row.h"
#include "os/ZotOsMmf.h"
#include "os/ZotOsSync.h"

namespace {

constexpr int32_t kKey = 0x5A4F5442;

// The C library leaves the atomic operations out until a process starts its first
// thread; programs that need a lock have done that.
void startFirstThread() {
  static const bool started = (std::thread([] {}).join(), true);
  benchmark::DoNotOptimize(started);
}

// Take and release; both mutexes are recursive.
void localMutex(benchmark::State& state) {
  startFirstThread();
  ZotOsMutexHandle* mutex = nullptr;
  ZotOsMutexCreate(&mutex, 0);
  measure(state, [&] {
    ZotOsMutexWait(mutex, -1, nullptr);
    ZotOsMutexRelease(mutex);
  });
  ZotOsMutexClose(mutex);
}

void localMutexStd(benchmark::State& state) {
  startFirstThread();
  std::recursive_mutex mutex;
  measure(state, [&] {
    benchmark::DoNotOptimize(mutex);
    mutex.lock();
    mutex.unlock();
  });
}

BENCHMARK(localMutex)->Name("local_mutex/ours");
BENCHMARK(localMutexStd)->Name("local_mutex/std");

// Set, then a wait that passes and clears.
void localEvent(benchmark::State& state) {
  startFirstThread();
  ZotOsEventHandle* event = nullptr;
  ZotOsEventCreate(&event, 0);
  measure(state, [&] {
    ZotOsEventSet(event);
    ZotOsEventWait(event, ZOT_OS_INFINITE, nullptr);
  });
  ZotOsEventClose(event);
}

void localEventStd(benchmark::State& state) {
  startFirstThread();
  std::mutex mutex;
  std::condition_variable condition;
  bool signalled = false;
  measure(state, [&] {
    {
      const std::lock_guard lock(mutex);
      signalled = true;
      condition.notify_all();
    }
    std::unique_lock lock(mutex);
    condition.wait(lock, [&] { return signalled; });
    signalled = false;
  });
}

BENCHMARK(localEvent)->Name("local_event/ours");
BENCHMARK(localEventStd)->Name("local_event/std");

// Take and release; the peer is two calls of semop on the same kind of semaphore,
// without what makes ours a mutex: a release of a free one that changes nothing.
void namedMutex(benchmark::State& state) {
  ZotOsMutexHandle* mutex = nullptr;
  require(ZotOsMutexCreate(&mutex, kKey) == 1, "no named mutex");
  measure(state, [&] {
    ZotOsMutexWait(mutex, -1, nullptr);
    ZotOsMutexRelease(mutex);
  });
  ZotOsMutexClose(mutex);
}

void namedMutexSemop(benchmark::State& state) {
  const int set = semget(IPC_PRIVATE, 1, 0666 | IPC_CREAT);
  require(set != -1 && semctl(set, 0, SETVAL, 1) == 0, "no semaphore");
  sembuf take = {0, -1, 0};
  sembuf release = {0, 1, 0};
  measure(state, [&] {
    semop(set, &take, 1);
    semop(set, &release, 1);
  });
  semctl(set, 0, IPC_RMID);
}

BENCHMARK(namedMutex)->Name("named_mutex/ours");
BENCHMARK(namedMutexSemop)->Name("named_mutex/semop");

// A block of 64 KiB made, written to and removed from the system and from the address
// space; our close leaves the last mapping to the process, so the caller unmaps it.
constexpr uint32_t kBlockSize = 64 * 1024;

void sharedMemory(benchmark::State& state) {
  measure(state, [&] {
    ZotOsMmfHandle handle;
    require(ZotOsMmfCreate(&handle, kBlockSize, nullptr, kKey, 1) == 1, "no shared memory");
    void* block = handle.address;
    *static_cast<char*>(block) = 1;
    ZotOsMmfClose(&handle);
    shmdt(block);
  });
}

void sharedMemoryPosix(benchmark::State& state) {
  measure(state, [&] {
    const int fd = shm_open("/zot-bench", O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666);
    require(fd != -1 && ftruncate(fd, kBlockSize) == 0, "no POSIX shared memory");
    void* block = mmap(nullptr, kBlockSize, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    *static_cast<char*>(block) = 1;
    close(fd);
    shm_unlink("/zot-bench");
    munmap(block, kBlockSize);
  });
}

BENCHMARK(sharedMemory)->Name("shared_memory/ours");
BENCHMARK(sharedMemoryPosix)->Name("shared_memory/posix");

}  // namespace
