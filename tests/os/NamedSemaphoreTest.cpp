#include "os/NamedSemaphoreInternal.h"

#include <sys/mman.h>

#include <cstring>
#include <list>
#include <thread>

#include "SyncCalls.h"
#include "log/LogLineInternal.h"
#include "os/SharedBlockLock.h"
#include "os/SharedControlBlock.h"
#include "os/ZotOsSync.h"
#include "os/ZotOsSystem.h"
#include "os/ZotOsSystemInternal.h"
#include "os/ZotOsThread.h"
#include "support/Child.h"
#include "support/LogFixture.h"

using namespace zot_test;

namespace {

constexpr uint32_t kKey = 0x5A0700;
using Words = std::vector<int>;

// An object of the test's own keeps the shared block in place, so that its words
// can be read when the processes that counted have closed everything.
class Named : public testing::Test {
 protected:
  // What forked children and their parent share.
  struct Shared {
    std::atomic<int> turn{0};
    int counter = 0;
  };

  ~Named() override {
    EXPECT_EQ(nullptr, pstLog.load()) << "a semaphore is open still";
    EXPECT_EQ(nullptr, pstShm);
    ZotOsvLogDelete(&watch);
    munmap(&shared, sizeof shared);
  }

  // What body logs while this is the shared level.
  std::string lines(const std::function<void()>& body, uint32_t level = kEveryLine) {
    block.Log.store(level);
    const auto all = stampless(body);
    block.Log.store(0);
    return all;
  }

  // ProcCnt, GlobSemCnt, NamedSemCnt, MaxNamedIdx and the first slots.
  Words words(uint32_t slots) {
    std::vector<uint32_t> all(4 + 2 * slots);
    std::memcpy(all.data(), &block.ProcCnt, 4 * all.size());
    return {all.begin(), all.end()};
  }

  ZotOsLog* watch = ZotOspLogNew();
  SharedControlBlock& block = *static_cast<SharedControlBlock*>(watch->handle.address);
  Shared& shared =
      *new (mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) Shared;
};

TEST_F(Named, AMutexTellsItsWholeLife) {
  ZotOsMutexHandle *mutex = nullptr, *again = nullptr;
  int id = -1;
  void* shm = nullptr;
  const auto text = lines([&] {
    EXPECT_EQ(1u, ZotOsMutexCreate(&mutex, kKey));
    id = mutex->semId;
    shm = pstShm;
    EXPECT_EQ((Results{1, 1001, 1999}),
              (Results{ZotOsMutexCreate(&again, kKey), waited(ZotOsMutexWait, mutex, -1),
                       waited(ZotOsMutexWait, again, 0)}));
    EXPECT_EQ((Results{1, 1, 1, 1}), (Results{ZotOsMutexRelease(again), ZotOsMutexRelease(mutex),
                                              ZotOsMutexClose(mutex), ZotOsMutexClose(again)}));
  });
  EXPECT_EQ(filled(R"(TRACE fIncNamedSemCnt(ID) new: cnt[0]=1 SemCnt=1 MaxIdx=1 (IDS)
TRACE ZotOsCreateM(ID): semval=1 LocSemCnt=1 Shm=SHM GlobSemCnt=1 NamedSemCnt=1 MaxNamedIdx=1 Log=68000005 (IDS)
TRACE fIncNamedSemCnt(ID) inc: cnt[0]=2 SemCnt=2 MaxIdx=1 (IDS)
TRACE ZotOsOpenM(ID): semval=1 LocSemCnt=2 Shm=SHM GlobSemCnt=2 NamedSemCnt=2 MaxNamedIdx=1 Log=68000005 (IDS)
DEBUG ZotOsSetM(ID) entry: semval=1 (IDS)
DEBUG ZotOsSetM(ID) exit: semval=0 (IDS)
DEBUG ZotOsSetM(ID) entry: semval=0 (IDS)
DEBUG ZotOsSetM(ID) exit-NO_WAIT: semval=0 (IDS)
DEBUG ZotOsReleaseM(ID) entry: semval=0 (IDS)
DEBUG ZotOsReleaseM(ID) exit: semval=1 (IDS)
DEBUG ZotOsReleaseM(ID) entry: semval=1 (IDS)
TRACE ZotOsCloseM(ID): LocSemCnt=2 Shm=SHM (IDS)
TRACE ZotOsClose shm: GlobSemCnt=2 NamedSemCnt=2 MaxNamedIdx=1 Log=68000005
TRACE dDecNamedSemCnt(ID): cnt[0]=1 SemCnt=1 MaxIdx=1 (IDS)
TRACE ZotOsClose shm: GlobSemCnt=1
TRACE ZotOsCloseM(ID): LocSemCnt=1 Shm=SHM (IDS)
TRACE ZotOsClose shm: GlobSemCnt=1 NamedSemCnt=1 MaxNamedIdx=1 Log=68000005
TRACE dDecNamedSemCnt(ID): cnt[0]=0 SemCnt=0 MaxIdx=1 (IDS)
TRACE ZotOsClose shm: GlobSemCnt=0
TRACE ZotOsClose: DeleteLog=0
TRACE ZotOsMmfClose(SEG): shm 2 attached processes
TRACE ZotOsMmfClose(SEG): detach shm (SHM)
)",
                   {{"ID", id}, {"SHM", shm}, {"SEG", watch->handle.shmId}}),
            text);
}

TEST_F(Named, AnEventCountsItsResets) {
  ZotOsEventHandle *event = nullptr, *opened = nullptr;
  EXPECT_EQ(0u, ZotOsEventOpen(&opened, kKey) + ZotOsEventOpen(&opened, 0)) << "nobody has made it";
  EXPECT_EQ(nullptr, opened);
  EXPECT_EQ((Results{1, 1}), (Results{ZotOsEventCreate(&event, kKey), ZotOsEventOpen(&opened, kKey)}));
  const auto text = lines([&] { EXPECT_EQ(2u, ZotOsEventSet(event) + ZotOsEventSet(opened)); });
  EXPECT_EQ(filled(R"(DEBUG ZotOsEventSet(FIRST) entry: semval=0 (IDS)
DEBUG ZotOsEventSet(FIRST): exit: semval=1 (IDS)
DEBUG ZotOsEventSet(SECOND) entry: semval=1 (IDS)
DEBUG ZotOsEventSet(SECOND): exit: semval=1 (IDS)
)",
                   {{"FIRST", event}, {"SECOND", opened}}),
            text);
  EXPECT_EQ(1u, ZotOsEventReset(event));
  EXPECT_EQ(2, ZotOsSemaphoreVal(event->semId));
  const auto wait = [&] { return waited(ZotOsEventWait, opened, 0u); };
  EXPECT_EQ((Results{1001, 1001, 1999}), (Results{wait(), wait(), wait()}));
  EXPECT_EQ(1u, ZotOsEventClose(event));
  EXPECT_EQ(0, ZotOsSemaphoreVal(opened->semId)) << "the first of two closes keeps it";
  const Output output = captured([&] {
    EXPECT_EQ(0, runInChild([&] { return static_cast<int>(ZotOsEventWait(opened, 5000, nullptr)) + 7; }));
  });
  EXPECT_EQ("Timeout in Events not supported for MacOSX (you're timeout=5000)\n", output.out);
  EXPECT_EQ(1u, ZotOsEventClose(opened));
}

TEST_F(Named, SixtyFitTheTableAndOneMoreOnlyWorks) {
  std::vector<ZotOsMutexHandle*> all(60);
  uint32_t key = kKey;
  for (auto& mutex : all) {
    EXPECT_EQ(1u, ZotOsMutexCreate(&mutex, key++));
  }
  ZotOsMutexHandle* last = nullptr;
  const auto text = lines([&] { EXPECT_EQ(1u, ZotOsMutexCreate(&last, key)); }, kErrors);
  EXPECT_EQ(
      "ERROR ZotOsCreateM(" + std::to_string(last->semId) + "): shared mem not installed or runs over\n",
      text);
  EXPECT_EQ(61u, pstLog.load()->LocSemCnt);
  EXPECT_EQ((Words{2, 61, 61, 60}), words(0));
  EXPECT_EQ(all[59]->semId, block.cnt[59].semId.load());
  EXPECT_EQ(1u, ZotOsMutexClose(last));
  EXPECT_EQ(-1, semget(static_cast<key_t>(key), 0, 0)) << "its first close removes it";

  EXPECT_EQ(1u, ZotOsMutexClose(all[7]));
  EXPECT_EQ(1u, ZotOsMutexCreate(&all[7], key));
  EXPECT_EQ(all[7]->semId, block.cnt[7].semId.load()) << "the first free slot";
  for (auto* mutex : all) {
    EXPECT_EQ(1u, ZotOsMutexClose(mutex));
  }
  EXPECT_EQ((Words{1, 0, 1, 60}), words(0)) << "the one without a slot stays counted";
  EXPECT_EQ(1u, ZotOsMutexCreate(&last, kKey));
  EXPECT_EQ((Words{2, 1, 1, 1, last->semId, 1, -1, 0}), words(2)) << "set up anew";
  EXPECT_EQ(1u, ZotOsMutexClose(last));
}

// In a block where nobody has created anything the table has no free slot.
TEST_F(Named, AnOpenNeedsALogObjectAndDoesNotSetTheTableUp) {
  int32_t id = semget(kKey, 1, IPC_CREAT | 0600);
  const auto text = lines([&] { EXPECT_EQ(1u, ZotOsOpen(&id, kKey, 'E')); }, kErrors);
  EXPECT_EQ("ERROR ZotOsOpenE(" + std::to_string(id) + "): shared mem not installed or runs over\n", text);
  EXPECT_EQ((Words{2, 1, 1, 0, 0, 0}), words(1));
  EXPECT_EQ(1u, ZotOsClose(id, 'E'));
  EXPECT_EQ((Words{1, 0, 1, 0}), words(0));
  EXPECT_EQ(0u, fIncNamedSemCnt(1)) << "no block";
  EXPECT_EQ(1u, ZotOsClose(-1, 'E'));
  EXPECT_EQ(1u, ZotOsClose(semget(kKey, 1, IPC_CREAT | 0600), 'E'));
  EXPECT_EQ(-1, semget(kKey, 0, 0)) << "nobody can count it, so it is removed";

  // The failed attachment removes the segment for everybody, so this comes last.
  const Output refused = captured([&] {
    attaches = {EMFILE, EMFILE};
    EXPECT_EQ(0u, ZotOsCreate(&id, kKey, 0, 'E'));
    EXPECT_EQ(-1, semget(kKey, 0, 0)) << "what it made is removed";
    semget(kKey, 1, IPC_CREAT | 0600);
    EXPECT_EQ(0u, ZotOsOpen(&id, kKey, 'E'));
  });
  EXPECT_EQ(filled("FATAL ZotOsOpenE(" + std::to_string(id) + "): pstLog is not created (IDS)"), refused.err);
  EXPECT_EQ(0, semctl(id, 0, IPC_RMID));
}

TEST_F(Named, AMutexReleasedTwiceAtOnceIsFreeOnce) {
  constexpr int kRounds = 1000;
  ZotOsMutexHandle* mutex = nullptr;
  ASSERT_EQ(1u, ZotOsMutexCreate(&mutex, kKey));
  std::atomic<int> begun{0}, ended{0};
  const auto await = [](const std::atomic<int>& round, int number) {
    while (round < number) {
      std::this_thread::yield();
    }
  };
  std::thread other([&] {
    for (int i = 1; i <= kRounds; ++i) {
      await(begun, i);
      ZotOsMutexRelease(mutex);
      ++ended;
    }
  });
  int most = 0;
  for (int i = 1; i <= kRounds; ++i) {
    ZotOsMutexWait(mutex, -1, nullptr);
    ++begun;
    ZotOsMutexRelease(mutex);
    await(ended, i);
    most = std::max(most, ZotOsSemaphoreVal(mutex->semId));
  }
  other.join();
  EXPECT_EQ(1, most);
  EXPECT_EQ(1u, ZotOsMutexClose(mutex));
}

// Each mutex is the process's first and last again and again.
TEST_F(Named, ThreadsComeAndGoWhileOthersLogAndFork) {
  ZotOsMutexHandle* local = nullptr;
  ASSERT_EQ(1u, ZotOsMutexCreate(&local, 0));
  std::atomic<int> running{2};
  std::atomic<bool> forking{true};
  const auto comeAndGo = [&](uint32_t key) {
    for (int i = 0; i < 1000; ++i) {
      ZotOsMutexHandle* mutex = nullptr;
      ASSERT_EQ(1u, ZotOsMutexCreate(&mutex, key));
      ASSERT_EQ(1u, ZotOsMutexClose(mutex));
    }
    --running;
  };
  const auto log = [&] {
    // Ends after the last fork: thread sanitizers take threads that have all ended, but are
    // not joined yet, for lost ones of the child's.
    while (forking) {
      EXPECT_EQ(2u, ZotOsMutexWait(local, -1, nullptr) + ZotOsMutexRelease(local));
    }
  };
  std::thread one(comeAndGo, kKey), two(comeAndGo, kKey + 1), three(log);
  while (running != 0) {
    ZotOsMutexHandle* none = nullptr;
    EXPECT_EQ(0, runInChild([&] { return static_cast<int>(ZotOsMutexOpen(&none, 1)); }));
  }
  forking = false;
  one.join(), two.join(), three.join();
  block.MaxNamedIdx.store(0);  // 1 or 2
  EXPECT_EQ((Words{1, 0, 0, 0}), words(0));
  EXPECT_EQ(1u, ZotOsMutexClose(local));
}

// Four processes open three mutexes each, one process after the other, then count
// together under the first one, and close again one after the other.
TEST(ForkHandler, OfAProgramMayCallTheLibrary) {
  static uint32_t calls = 0;
  static bool during = true;  // this test
  const auto open = [] {
    ZotOsMutexHandle* mutex = nullptr;
    calls += during ? ZotOsMutexCreate(&mutex, kKey) + ZotOsMutexClose(mutex) : 0;
  };
  const auto start = [] {
    uint32_t handle = 0;
    const auto end = [](void*) -> void* { return nullptr; };
    calls += during ? ZotOsThreadBegin(&handle, end, 0, nullptr) : 0;
  };
  // Before the library is first used, as programs do.
  pthread_atfork(open, open, open);
  pthread_atfork(nullptr, start, start);
  ZotOsMutexHandle* mutex = nullptr;
  EXPECT_EQ(1u, ZotOsMutexCreate(&mutex, kKey + 1));
  EXPECT_EQ(5, runInChild([] { return static_cast<int>(calls); }));
  during = false;
  EXPECT_EQ(5u, calls);
  EXPECT_EQ(1u, ZotOsMutexClose(mutex));
}

TEST_F(Named, ProcessesAreKeptApartAndCountedExactly) {
  const auto await = [&](int turn) { EXPECT_TRUE(waitUntil([&] { return shared.turn >= turn; })); };
  const auto process = [&](int number) {
    ZotOsMutexHandle* mutexes[3] = {};
    await(number);
    for (uint32_t i = 0; i < 3; ++i) {
      EXPECT_EQ(1u, ZotOsMutexCreate(&mutexes[i], kKey + i));
    }
    ++shared.turn;
    await(5);
    for (int n = 0; n < 2000; ++n) {
      ZotOsMutexWait(mutexes[0], -1, nullptr);
      shared.counter = shared.counter + 1;
      ZotOsMutexRelease(mutexes[0]);
    }
    await(5 + number);
    for (auto* mutex : mutexes) {
      EXPECT_EQ(1u, ZotOsMutexClose(mutex));
    }
    ++shared.turn;
    return 0;
  };
  std::list<Child> children;
  for (int number = 0; number < 4; ++number) {
    children.emplace_back([&, number] { return process(number); });
  }
  await(4);
  Words expected{5, 12, 12, 3};
  for (int i = 0; i < 60; ++i) {
    expected.insert(expected.end(), {semget(static_cast<key_t>(kKey) + i, 0, 0), i < 3 ? 4 : 0});
  }
  EXPECT_EQ(expected, words(60));
  ++shared.turn;
  for (auto& child : children) {
    EXPECT_EQ(0, child.wait());
  }
  EXPECT_EQ(8000, shared.counter);
  EXPECT_EQ((Words{1, 0, 0, 3, -1, 0, -1, 0, -1, 0}), words(3));
}

TEST_F(Named, AKilledHolderLeavesTheMutexTaken) {
  Child holder([&] {
    ZotOsMutexHandle* mutex = nullptr;
    ZotOsMutexCreate(&mutex, kKey);
    ZotOsMutexWait(mutex, -1, nullptr);
    shared.turn = 1;
    return pause();
  });
  ASSERT_TRUE(waitUntil([&] { return shared.turn == 1; }));
  holder.kill(SIGKILL);
  EXPECT_EQ(128 + SIGKILL, holder.wait());

  ZotOsMutexHandle* mutex = nullptr;
  ASSERT_EQ(1u, ZotOsMutexOpen(&mutex, kKey));
  const int32_t id = mutex->semId;
  const auto attempt = [&] { return waited(ZotOsMutexWait, mutex, 0); };
  EXPECT_EQ((Results{1999, 1, 1001, 1}),
            (Results{attempt(), ZotOsMutexRelease(mutex), attempt(), ZotOsMutexClose(mutex)}));
  EXPECT_EQ((Words{2, 1, 1, 1, id, 1}), words(1)) << "the dead process stays counted";
  EXPECT_EQ(0, semctl(id, 0, IPC_RMID)) << "and its set stays; the segment goes";
}

TEST_F(Named, FailuresAreTold) {
  ZotOsEventHandle* event = nullptr;
  ASSERT_EQ(1u, ZotOsEventCreate(&event, kKey));
  const auto wait = [&] { return waited(ZotOsEventWait, event, UINT32_MAX); };
  const uint32_t started = ZotOsGetTimeInmSec();
  const auto text = lines([&] {
    int32_t other = 77;
    EXPECT_EQ(0u, ZotOsCreate(nullptr, 0xABCD, 1, 'M') + ZotOsOpen(nullptr, kKey, 'M'));
    syncCalls.semget = {ENOSPC, EEXIST, ENOENT};
    EXPECT_EQ(0u, ZotOsCreate(&other, 0xABCD, 1, 'M'));
    EXPECT_EQ(-1, other);
    EXPECT_EQ(0u, ZotOsCreate(&other, 0xABCD, 1, 'M'));
    EXPECT_EQ(0u, ZotOsCreate(&other, 0xABCD, 32768, 'M'));
    EXPECT_EQ(-1, semget(0xABCD, 0, 0)) << "a set without its value is removed";
    syncCalls.semop = {EINTR, EINTR, EIDRM, EAGAIN, ERANGE, EINTR};
    EXPECT_EQ((Results{0, 1999, 0}), (Results{wait(), wait(), ZotOsEventReset(event)}));
    fShutdown = 1;
    EXPECT_EQ(0u, wait());
    fShutdown = 0;
    block.Log.store(kErrors);
    syncCalls.semctl = {EPERM, EINVAL};
    EXPECT_EQ(0u, ZotOsClose(event->semId, 'E'));
  });
  EXPECT_LE(150u, ZotOsGetTimeInmSec() - started) << "50 before each new try";
  EXPECT_EQ(filled(R"(FATAL ZotOsCreateM: semget (key=0xABCD) failed (28=No space left on device IDS)
FATAL ZotOsOpenM(-1): semctl failed (2=No such file or directory IDS)
FATAL ZotOsCreateM: key=0xABCD already created, but ZotOsOpen failed (2=No such file or directory IDS)
FATAL ZotOsCreateM: semctl failed (34=Numerical result out of range IDS)
DEBUG ZotOsSetE(ID) entry: semval=0 (IDS)
!!!!!! semop interrupted: 4=Interrupted system call shutd=0
!!!!!! semop interrupted: 4=Interrupted system call shutd=0
ERROR ZotOsSetE(ID): semop failed (semval=0) (43=Identifier removed IDS)
DEBUG ZotOsSetE(ID) entry: semval=0 (IDS)
DEBUG ZotOsSetE(ID) exit-TIMEOUT: semval=0 (IDS)
DEBUG ZotOsReleaseE(ID) entry: semval=0 (IDS)
ERROR ZotOsReleaseE(ID): semop failed (semval=0) (34=Numerical result out of range IDS)
DEBUG ZotOsSetE(ID) entry: semval=0 (IDS)
!!!!!! semop interrupted: 4=Interrupted system call shutd=1
ERROR ZotOsSetE(ID): semop failed (semval=0) (4=Interrupted system call IDS)
ERROR ZotOsCloseE: semctl failed (1=Operation not permitted IDS)
)",
                   {{"ID", event->semId}}),
            text);
  EXPECT_EQ((Words{2, 1, 0, 1, -1, 0}), words(1)) << "the reference is gone, the counts are not";
  const Output output = captured([&] { EXPECT_EQ(1u, ZotOsEventSet(event)) << "callers rely on 1"; });
  EXPECT_EQ(
      filled("FATAL ZotOsEventSet(" + Shown(event).text + "): semctl failed (22=Invalid argument IDS)\n"),
      output.err);
  EXPECT_EQ(1u, ZotOsEventClose(event));
}

}  // namespace
