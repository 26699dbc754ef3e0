// Processes that are killed at any moment, and a stranger who writes into the shared block.
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/shm.h>

#include <csignal>

#include "log/ZotLog.h"
#include "os/SharedControlBlock.h"
#include "os/ZotOsMmf.h"
#include "os/ZotOsSync.h"
#include "os/ZotOsSystem.h"
#include "tests/soak/Soak.h"

namespace soak {

namespace {

constexpr uint32_t kFirstKey = 0x50AC1000;
constexpr uint32_t kKeys = 8;

// One process's day with keyed objects; nothing waits, for whoever held it may be dead.
void live(Random& random) {
  const auto key = kFirstKey + static_cast<uint32_t>(random() % kKeys);
  ZotOsMutexHandle* mutex = nullptr;
  ZotOsEventHandle* event = nullptr;
  ZotOsMmfHandle memory;
  uint32_t result = 0;
  ZotOsMutexCreate(&mutex, key);
  ZotOsEventCreate(&event, key + 0x100);
  const bool shared = ZotOsMmfCreate(&memory, 4096, nullptr, static_cast<int32_t>(key + 0x200), 1) == 1;
  if (mutex != nullptr && ZotOsMutexWait(mutex, 0, &result) == 1 && result == kZotOsWaitSignalled) {
    ZotOsMutexRelease(mutex);
  }
  if (event != nullptr) {
    ZotOsEventSet(event);
    ZotOsEventWait(event, 0, &result);
    ZotOsEventClose(event);
  }
  if (shared) {
    ZotOsMmfClose(&memory);
  }
  if (mutex != nullptr) {
    ZotOsMutexClose(mutex);
  }
}

// A new process with a key of its own does all it should, whatever others left.
void worksAsNew(uint32_t key) {
  ZotOsMutexHandle* mutex = nullptr;
  uint32_t result = 0;
  if (ZotOsMutexCreate(&mutex, key) == 0 || ZotOsMutexWait(mutex, -1, &result) == 0 ||
      result != kZotOsWaitSignalled || ZotOsMutexWait(mutex, 0, &result) == 0 ||
      result != kZotOsWaitTimeout || ZotOsMutexRelease(mutex) == 0) {
    fail("a new process does not work", result);
  }
  ZotOsMutexClose(mutex);
}

// What an administrator does at last: everything can be removed.
void removeAll() {
  for (uint32_t key = kFirstKey; key < kFirstKey + 0x300; ++key) {
    if (const int set = semget(static_cast<key_t>(key), 0, 0); set != -1) {
      semctl(set, 0, IPC_RMID);
    }
    if (const int segment = shmget(static_cast<key_t>(key), 0, 0); segment != -1) {
      shmctl(segment, IPC_RMID, nullptr);
    }
  }
  if (const int block = shmget(kSharedBlockKey, 0, 0); block != -1) {
    shmctl(block, IPC_RMID, nullptr);
  }
  if (leftovers() != 0) {
    fail("objects cannot be cleaned up", leftovers());
  }
}

}  // namespace

void kills(double seconds) {
  Random random(1);
  int killed = 0;
  for (const Deadline deadline(seconds); !deadline.passed() || killed < 200; ++killed) {
    const auto seed = static_cast<unsigned int>(random());
    const pid_t victim = start(60, [=] {
      silenceLibrary();
      for (Random own(seed);;) {
        live(own);
      }
    });
    usleep(static_cast<useconds_t>(random() % 5000));
    kill(victim, SIGKILL);
    int status = 0;
    waitpid(victim, &status, 0);
    if (!WIFSIGNALED(status) || WTERMSIG(status) != SIGKILL) {
      fail("a process ended by itself", status);
    }
    expectWell(start(20, [=] { worksAsNew(kFirstKey + 0x1000 + static_cast<uint32_t>(killed)); }),
               "a new process crashed or hung");
  }
  removeAll();
  expectWell(start(20, [] { worksAsNew(kFirstKey); }), "no start after the cleaning");
  if (leftovers() != 0) {
    fail("objects stayed behind", leftovers());
  }
  std::printf("%d processes killed, a new one worked after each, all was cleaned up\n", killed);
}

void stranger(double seconds) {
  auto* writes = sharedBetweenProcesses<int64_t>();
  auto* lives = sharedBetweenProcesses<std::array<int64_t, 4>>();
  std::vector<pid_t> children;
  for (size_t i = 0; i < lives->size(); ++i) {
    children.push_back(start(static_cast<unsigned int>(seconds) + 60, [=] {
      silenceLibrary();
      Random random(static_cast<unsigned int>(i) + 1);
      for (const Deadline deadline(seconds); !deadline.passed(); ++(*lives)[i]) {
        live(random);
      }
    }));
  }
  Random random(7);
  for (const Deadline deadline(seconds); !deadline.passed();) {
    const int segment = shmget(kSharedBlockKey, 0, 0);
    void* const block = segment == -1 ? MAP_FAILED : shmat(segment, nullptr, 0);
    if (block == MAP_FAILED) {
      continue;
    }
    for (int i = 0; i < 1000; ++i, ++*writes) {
      const auto word = random() % (kSharedBlockSize / 4);
      const auto value = static_cast<uint32_t>(random() % 4 == 0 ? random() : random() % 70);
      // Lines go to standard output, not into the machine's log.
      __atomic_store_n(static_cast<uint32_t*>(block) + word, word == 0 ? value | 1 : value, __ATOMIC_RELAXED);
    }
    shmdt(block);
  }
  int64_t lived = 0;
  for (size_t i = 0; i < children.size(); ++i) {
    expectWell(children[i], "nonsense in the block brought a process down");
    lived += (*lives)[i];
  }
  removeAll();
  std::printf("%lld words of nonsense written, %lld lives beside them, nobody fell\n",
              static_cast<long long>(*writes), static_cast<long long>(lived));
}

}  // namespace soak
