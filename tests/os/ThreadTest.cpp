#include "os/ZotOsThread.h"

#include <pthread.h>
#include <sched.h>

#include <atomic>
#include <set>

#include "os/ThreadRegistryInternal.h"
#include "os/ZotOsFile.h"
#include "os/ZotOsProcess.h"
#include "os/ZotOsSystem.h"
#include "support/CallScript.h"
#include "support/Child.h"
#include "support/LogFixture.h"
#include "support/TemporaryDirectory.h"

// Of each call the code to return, or 0.
static zot_test::CallScript creations, attributes;

// The linker's --wrap option sends the calls here.
extern "C" {

ZOT_SCRIPTED(creations, int, pthread_create,
             (pthread_t * id, const pthread_attr_t* how, void* (*run)(void*), void* arg), (id, how, run, arg),
             entry)
ZOT_SCRIPTED(attributes, int, pthread_attr_init, (pthread_attr_t * made), (made), entry)

// Registers what is to run when the thread ends.  The C library ends the whole process
// when it has no memory for that.
static std::atomic<int> threadExits;
int __real___cxa_thread_atexit(void (*run)(void*), void* object, void* library);
int __wrap___cxa_thread_atexit(void (*run)(void*), void* object, void* library) {
  ++threadExits;
  return __real___cxa_thread_atexit(run, object, library);
}

}  // extern "C"

namespace {

using namespace zot_test;

// Every test ends with no thread left; the counter outlives them all.
class Thread : public testing::Test {
 protected:
  ~Thread() override { EXPECT_TRUE(allGone()); }
  static size_t live() { return ThreadRegistry::instance().size(); }
  static bool allGone() {
    return waitUntil([] { return live() == 0; });
  }
  std::atomic<int> ended = 0;
};

// Counts the end of a worker, reached by return or by unwinding.
struct Leaving {
  ~Leaving() { ++*static_cast<std::atomic<int>*>(counter); }
  void* counter;
};
void* returnAtOnce(void* counter) {
  const Leaving leaving{counter};
  return nullptr;
}
void* endItself(void* counter) {
  const Leaving leaving{counter};
  ZotOsThreadEnd();
}
void* waitForCancel(void* counter) {
  const Leaving leaving{counter};
  for (;;) {
    pthread_testcancel();
    sched_yield();
  }
}

// A worker as clients write them, with its state word.
void* obey(void* state) {
  const std::atomic_ref shared(*static_cast<uint32_t*>(state));
  while (shared != 3) {
    sched_yield();
  }
  shared = 0;
  return nullptr;
}

TEST_F(Thread, RunsDetachedOnTheStackAskedForAndKnowsItsHandle) {
  static uint32_t handle, handleInside;
  static size_t stack;
  static int detached;
  const auto lookAround = [](void* counter) -> void* {
    const Leaving leaving{counter};
    handleInside = handle;
    pthread_attr_t own;
    pthread_getattr_np(pthread_self(), &own);
    pthread_attr_getstacksize(&own, &stack);
    pthread_attr_getdetachstate(&own, &detached);
    pthread_attr_destroy(&own);
    return nullptr;
  };
  for (const uint32_t asked : {0u, 0x100000u}) {
    EXPECT_EQ(1u, ZotOsThreadBegin(&handle, lookAround, asked, &ended));
    ASSERT_TRUE(allGone());
    EXPECT_EQ(handle, handleInside);
    EXPECT_EQ(asked == 0 ? 0x40000u : asked, stack);
    EXPECT_EQ(PTHREAD_CREATE_DETACHED, detached);
  }
}

TEST_F(Thread, OfAThousandNoneIsLeftHoweverTheyEnd) {
  const ZotOsThreadRoutine routines[] = {returnAtOnce, endItself, waitForCancel, returnAtOnce};
  std::set<uint32_t> handles;
  for (int number = 0; number < 1000; ++number) {
    uint32_t handle = 0;
    ASSERT_EQ(1u, ZotOsThreadBegin(&handle, routines[number % 4], 0, &ended));
    EXPECT_TRUE(handle != 0 && handles.insert(handle).second) << "a handle twice: " << handle;
    if (number % 4 >= 2) {  // the last of four is cancelled while it ends, before it or too late
      const uint32_t cancelled = ZotOsThreadCancel(&handle);
      EXPECT_EQ(cancelled == 1, handle == 0);
      EXPECT_TRUE(cancelled == 1 || number % 4 == 3);
    }
  }
  ASSERT_TRUE(allGone());
  EXPECT_EQ(1000, ended) << "all were unwound";
  for (uint32_t handle : handles) {
    ASSERT_TRUE(ZotOsThreadCancel(&handle) == 0 && handle != 0);
  }
  pthread_t joinable;
  pthread_create(&joinable, nullptr, endItself, &ended);
  void* value = nullptr;
  pthread_join(joinable, &value);
  EXPECT_EQ(reinterpret_cast<void*>(1), value);
}

TEST_F(Thread, StartsWithoutMemoryOfItsOwn) {
  threadExits = 0;
  uint32_t handle = 0;
  ASSERT_EQ(1u, ZotOsThreadBegin(&handle, returnAtOnce, 0, &ended));
  ASSERT_TRUE(allGone());
  EXPECT_EQ(0, threadExits);
}

class Cancelled : public TemporaryDirectory {};

TEST_F(Cancelled, CallsThatChangeSomethingFinishFirst) {
  writeFile("file", "x");
  const std::pair<const char*, std::function<uint32_t()>> calls[] = {
      {"copy", [] { return ZotOsCopyFile("file", "copy", 0); }},
      {"start", [] { return ZotOsCreateProcess("true"); }},
      {"close", [] { return ZotOsCloseHdl(dup(STDIN_FILENO)); }}};
  for (const auto& [name, call] : calls) {
    static uint32_t result;
    result = 77;
    const auto run = [](void* body) -> void* {
      pthread_cancel(pthread_self());
      result = (*static_cast<const std::function<uint32_t()>*>(body))();
      pthread_testcancel();
      return nullptr;
    };
    pthread_t thread;
    void* end = nullptr;
    ASSERT_EQ(0, pthread_create(&thread, nullptr, run, const_cast<void*>(static_cast<const void*>(&call))));
    pthread_join(thread, &end);
    EXPECT_TRUE(result == 1 && end == PTHREAD_CANCELED) << name << " gave " << result;
  }
}

TEST_F(Thread, HandlesSkipZeroAndTheLiving) {
  std::vector<uint32_t> handles(3);
  for (const size_t number : {0u, 1u, 2u}) {
    if (number != 1) {
      ThreadRegistry::instance().continueAfter(UINT32_MAX - 1);
    }
    ASSERT_EQ(1u, ZotOsThreadBegin(&handles[number], waitForCancel, 0, &ended));
  }
  EXPECT_EQ((std::vector<uint32_t>{UINT32_MAX, 1, 2}), handles);
  EXPECT_EQ(7, runInChild([&] { return ZotOsThreadCancel(&handles[0]) == 0 && live() == 0 ? 7 : 1; }))
      << "a forked child has none of its parent's threads";
  for (uint32_t& handle : handles) {
    EXPECT_EQ(1u, ZotOsThreadCancel(&handle));
  }
}

TEST_F(Thread, TellsHowItBeginsAndClearsWhatDidNot) {
  uint32_t handle = 77, failed = 77, started = 77, unset = 77, state = 0;
  const auto lines = told([&] {
    EXPECT_EQ(1u, ZotOsThreadBegin(&handle, returnAtOnce, 0, &ended));
    creations = {EAGAIN, EAGAIN};
    EXPECT_EQ(0u, ZotOsThreadBegin(&failed, returnAtOnce, 0, &ended));
    EXPECT_EQ(0u, ZotOsThreadStart(&started, &state, returnAtOnce, &ended));
    EXPECT_EQ(0u, ZotOsThreadBegin(nullptr, returnAtOnce, 0, &ended));
    attributes = {ENOMEM};
    EXPECT_EQ(0u, ZotOsThreadBegin(&unset, returnAtOnce, 0, &ended));
  });
  EXPECT_EQ(0u, failed + started + state + unset);
  EXPECT_EQ(filled(R"(TRACE ZotOsThreadBegin: ok (IDS)
ERROR ZotOsThreadBegin: failed (11=Resource temporarily unavailable IDS)
ERROR ZotOsThreadBegin: failed (11=Resource temporarily unavailable IDS)
ERROR ZotOsThreadBegin: init failed (12=Cannot allocate memory IDS)
)"),
            lines);
}

TEST_F(Thread, StartsOncePerStateWord) {
  uint32_t handle = 77, state = 0;
  EXPECT_EQ(1u, ZotOsThreadStart(nullptr, &state, obey, &state));
  EXPECT_EQ(1u, ZotOsThreadStart(&handle, &state, returnAtOnce, &ended));
  EXPECT_EQ(77u, handle) << "nothing was started, nothing is stored";
  EXPECT_EQ(1u, live());
  EXPECT_EQ(1u, std::atomic_ref(state).exchange(3));
  ASSERT_TRUE(allGone());
  EXPECT_EQ(1u, ZotOsThreadStart(&handle, nullptr, returnAtOnce, &ended));
  EXPECT_NE(77u, handle);
  ASSERT_TRUE(allGone());
  EXPECT_EQ(1, ended);
}

TEST_F(Thread, IsStoppedByCountingPolls) {
  const std::tuple<int32_t, ZotOsThreadRoutine, std::string> cases[] = {
      {2, waitForCancel, "INFO  ZotOsThreadStop: rx timed out (200 ms)\n"},
      {1, obey, "INFO  ZotOsThreadStop: rx timed out (100 ms)\n"},  // ends during the last poll
      {20, obey, ""},
      {0, obey, ""},
      {-1, obey, ""}};
  for (const auto& [pollCount, worker, late] : cases) {
    uint32_t handle = 0, state = 0, result = 77;
    void* const arg = worker == obey ? static_cast<void*>(&state) : &ended;
    ASSERT_EQ(1u, ZotOsThreadStart(&handle, &state, worker, arg));
    const auto lines =
        told([&, polls = pollCount] { result = ZotOsThreadStop(nullptr, &state, polls, nullptr, 0, "rx"); });
    EXPECT_EQ(
        "TRACE ZotOsThreadStop: do thread rx stop\n" + late + "TRACE ZotOsThreadStop: thread rx is stopped\n",
        lines);
    EXPECT_EQ(late.empty() ? 1u : 0u, result) << pollCount;
    if (worker == waitForCancel) {
      EXPECT_EQ(3u, state);
      EXPECT_EQ(1u, ZotOsThreadCancel(&handle)) << "it goes on running";
    }
    ASSERT_TRUE(allGone());
  }
}

TEST_F(Thread, BlockedInAWaitIsWokenByTheCallback) {
  static uint32_t state;
  static std::atomic_ref<uint32_t> shared(state);
  static std::atomic<uint32_t> gate;  // the callback knows only its number
  const auto wait = [](void*) -> void* {
    while (gate == 0) {
      sched_yield();
    }
    shared = shared == 3 && gate == 5 ? 0 : 9;
    return nullptr;
  };
  const auto wake = [](uint32_t number) { gate = number; };
  ASSERT_EQ(1u, ZotOsThreadStart(nullptr, &state, wait, nullptr));
  EXPECT_EQ(1u, ZotOsThreadStop(nullptr, &state, 100, wake, 5, nullptr));
  EXPECT_EQ(0u, shared) << "the request comes before the wake-up";
  EXPECT_EQ("TRACE ZotOsThreadStop: thread  is stopped\n",
            told([&] { EXPECT_EQ(1u, ZotOsThreadStop(nullptr, &state, 1, wake, 6, nullptr)); }));
  EXPECT_EQ(5u, gate) << "an ended worker is not woken";
}

TEST_F(Thread, IsStoppedByCancelWhenItsHandleIsGiven) {
  ThreadRegistry::instance().continueAfter(0x10);
  uint32_t handle = 0, state = 0;
  ASSERT_EQ(1u, ZotOsThreadStart(&handle, &state, waitForCancel, &ended));
  const auto lines = told([&] {
    for (const uint32_t given : {17u, 0u, 17u}) {  // lives, is none, has ended
      handle = given;
      state = 3;
      EXPECT_EQ(1u, ZotOsThreadStop(&handle, &state, 1, nullptr, 0, "rx"));
      EXPECT_EQ(0u, state);
      ASSERT_TRUE(allGone());
    }
    EXPECT_EQ(17u, handle);
    EXPECT_EQ(0u, ZotOsThreadCancel(nullptr));
    EXPECT_EQ(1u, ZotOsThreadStop(nullptr, nullptr, 1, nullptr, 0, "rx"));
  });
  EXPECT_EQ(filled(R"(TRACE ZotOsThreadStop(17=rx): do thread cancel
TRACE ZotOsThreadCancel: hndl=0x11 (IDS)
TRACE ZotOsThreadStop(0=rx): do thread cancel
TRACE ZotOsThreadStop(17=rx): do thread cancel
ERROR ZotOsThreadCancel: failed (3=No such process IDS)
ERROR ZotOsThreadStop: !!! rx parameter are missing !!!
)"),
            lines);
}

}  // namespace
