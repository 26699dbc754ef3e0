// Sixteen processes take, hold and give back twenty named mutexes that come and go.
#include <array>
#include <atomic>

#include "os/SharedControlBlock.h"
#include "os/ZotOsSync.h"
#include "log/ZotLog.h"
#include "tests/soak/Soak.h"

namespace soak {

namespace {

constexpr int kProcesses = 16;
constexpr uint32_t kKeys = 20;
constexpr uint32_t kFirstKey = 0x50AC0000;
constexpr size_t kSets = 32768;  // an identifier modulo this is the set's place in the system's table

struct Board {
  std::array<std::atomic<uint32_t>, kSets> holder;  // identifier of the set that is held there, and 1
  std::array<int64_t, kKeys> counted;               // guarded by the keys' mutexes alone
  std::array<int64_t, kProcesses> rounds;
};

void round(Board& board, uint32_t key, bool keeper, int64_t& rounds) {
  ZotOsMutexHandle* mutex = nullptr;
  uint32_t result = kZotOsWaitFailed;
  if (ZotOsMutexCreate(&mutex, kFirstKey + key) == 0) {
    // Without a keeper the set may vanish between the steps of creating and opening.
    return keeper ? fail("a mutex could not be opened", key) : void();
  }
  if (ZotOsMutexWait(mutex, -1, &result) == 1 && result == kZotOsWaitSignalled) {
    const uint32_t held = static_cast<uint32_t>(mutex->semId) + 1;
    std::atomic<uint32_t>& holder = board.holder[static_cast<size_t>(mutex->semId) % kSets];
    if (holder.exchange(held) == held) {
      fail("two processes hold one mutex", mutex->semId);
    }
    board.counted[key] += keeper ? 1 : 0;
    uint32_t expected = held;
    holder.compare_exchange_strong(expected, 0);
    ++rounds;
    ZotOsMutexRelease(mutex);
  } else if (keeper) {
    fail("a wait failed", result);
  }
  ZotOsMutexClose(mutex);
}

// With a keeper each mutex has one reference left, that of the keeper.
void expectCountsExact() {
  ZotOsLog* log = ZotOspLogNew();
  auto& shared = *static_cast<SharedControlBlock*>(log->handle.address);
  if (shared.NamedSemCnt.load() != kKeys || shared.GlobSemCnt.load() != kKeys) {
    fail("references were miscounted", shared.NamedSemCnt.load());
  }
  ZotOsvLogDelete(&log);
}

}  // namespace

void exclusion(double seconds, bool keeper) {
  auto* board = sharedBetweenProcesses<Board>();
  std::vector<ZotOsMutexHandle*> kept(keeper ? kKeys : 0);
  for (uint32_t key = 0; key < kept.size(); ++key) {
    ZotOsMutexCreate(&kept[key], kFirstKey + key);
  }
  std::vector<pid_t> children;
  for (int i = 0; i < kProcesses; ++i) {
    children.push_back(start(static_cast<unsigned int>(seconds) + 60, [=] {
      Random random(static_cast<unsigned int>(getpid()));
      for (const Deadline deadline(seconds); !deadline.passed();) {
        round(*board, static_cast<uint32_t>(random() % kKeys), keeper, board->rounds[static_cast<size_t>(i)]);
      }
    }));
  }
  int64_t rounds = 0;
  for (int i = 0; i < kProcesses; ++i) {
    expectWell(children[static_cast<size_t>(i)], "a process crashed, hung or met a fault");
    rounds += board->rounds[static_cast<size_t>(i)];
  }
  int64_t counted = 0;
  for (const int64_t each : board->counted) {
    counted += each;
  }
  if (keeper && counted != rounds) {
    fail("a count was lost", rounds - counted);
  }
  if (keeper) {
    expectCountsExact();
  }
  for (ZotOsMutexHandle* mutex : kept) {
    ZotOsMutexClose(mutex);
  }
  if (keeper && leftovers() != 0) {
    fail("objects stayed behind", leftovers());
  }
  std::printf("%d processes, %u keys: %lld rounds%s\n", kProcesses, kKeys, static_cast<long long>(rounds),
              keeper ? ", all counts exact" : ", never two holders");
}

}  // namespace soak
