#include "os/ZotOsThread.h"

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>

#include <atomic>
#include <set>
#include <string>
#include <vector>

#include "os/ThreadRegistryInternal.h"
#include "support/Child.h"
#include "support/LogFixture.h"

namespace {

using namespace zot_test;
using Lines = std::vector<std::string>;

// The state word as its worker and its caller share it.
std::atomic_ref<uint32_t> shared(uint32_t& state) {
  return std::atomic_ref(state);
}

size_t live() {
  return ThreadRegistry::instance().size();
}
bool allGone() {
  return waitUntil([] { return live() == 0; });
}

// Every test ends with no thread left; the counter outlives them all.
class Thread : public testing::Test {
 protected:
  ~Thread() override { EXPECT_TRUE(allGone()); }
  std::atomic<int> ended = 0;
};

// Counts the end of a scope, reached by return or by unwinding.
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

// A worker as clients write them: it ends when asked to, if it listens.
struct Worker {
  uint32_t state = 0;
  bool listens = true;
  std::atomic<bool> released = false;

  static void* run(void* self) {
    auto& worker = *static_cast<Worker*>(self);
    while (!worker.released && !(worker.listens && shared(worker.state) == 3)) {
      sched_yield();
    }
    if (worker.listens) {
      shared(worker.state) = 0;
    }
    return nullptr;
  }
};

struct Seen {
  uint32_t handle, handleInside;
  pthread_attr_t attributes;
  std::atomic<int> done;
};

void* lookAround(void* arg) {
  auto& seen = *static_cast<Seen*>(arg);
  seen.handleInside = seen.handle;
  pthread_getattr_np(pthread_self(), &seen.attributes);
  seen.done = 1;
  return nullptr;
}

TEST_F(Thread, RunsDetachedOnTheStackAskedForAndKnowsItsHandle) {
  pthread_attr_t defaults;
  pthread_attr_init(&defaults);
  size_t systemDefault = 0, stack = 0;
  pthread_attr_getstacksize(&defaults, &systemDefault);
  pthread_attr_destroy(&defaults);
  const std::pair<uint32_t, size_t> cases[] = {{0, 0x40000}, {0x100000, 0x100000}, {100, systemDefault}};
  for (const auto& c : cases) {
    Seen seen{};
    EXPECT_EQ(Lines{"TRACE ZotOsThreadBegin: ok (" + callerIds() + ")"},
              logLines([&] { EXPECT_EQ(1u, ZotOsThreadBegin(&seen.handle, lookAround, c.first, &seen)); }));
    ASSERT_TRUE(waitUntil([&] { return seen.done == 1; }));
    EXPECT_EQ(seen.handle, seen.handleInside);
    int detached = -1;
    pthread_attr_getstacksize(&seen.attributes, &stack);
    pthread_attr_getdetachstate(&seen.attributes, &detached);
    pthread_attr_destroy(&seen.attributes);
    EXPECT_EQ(c.second, stack);
    EXPECT_EQ(PTHREAD_CREATE_DETACHED, detached);
  }
  EXPECT_EQ(0u, ZotOsThreadBegin(nullptr, lookAround, 0, nullptr));
}

TEST_F(Thread, OfAThousandNoneIsLeftHoweverTheyEnd) {
  std::set<uint32_t> handles;
  for (int number = 0; number < 1000; ++number) {
    ZotOsThreadRoutine const routines[] = {returnAtOnce, endItself, waitForCancel, returnAtOnce};
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
    ASSERT_EQ(0u, ZotOsThreadCancel(&handle));
    ASSERT_NE(0u, handle);
  }
  pthread_t joinable;
  ASSERT_EQ(0, pthread_create(&joinable, nullptr, endItself, &ended));
  void* value = nullptr;
  ASSERT_EQ(0, pthread_join(joinable, &value));
  EXPECT_EQ(reinterpret_cast<void*>(1), value);
}

TEST_F(Thread, HandlesSkipZeroAndTheLiving) {
  uint32_t handles[3] = {};
  for (const int number : {0, 1, 2}) {
    if (number != 1) {
      ThreadRegistry::instance().continueAfter(UINT32_MAX - 1);
    }
    ASSERT_EQ(1u, ZotOsThreadBegin(&handles[number], waitForCancel, 0, &ended));
  }
  EXPECT_EQ((std::vector<uint32_t>{UINT32_MAX, 1, 2}), std::vector<uint32_t>(handles, handles + 3));
  const int inChild = runInChild([&] { return ZotOsThreadCancel(&handles[0]) == 0 && live() == 0 ? 7 : 1; });
  EXPECT_EQ(7, inChild) << "a forked child has none of its parent's threads";
  for (uint32_t& handle : handles) {
    EXPECT_EQ(1u, ZotOsThreadCancel(&handle));
  }
}

TEST_F(Thread, ThatCannotBeCreatedClearsHandleAndState) {
  const int code = runInChild([] {
    const rlimit none{};  // it does not hold for the superuser
    pthread_t probe;
    if ((geteuid() == 0 && setuid(65534) != 0) || setrlimit(RLIMIT_NPROC, &none) != 0 ||
        pthread_create(
            &probe, nullptr, [](void* arg) { return arg; }, nullptr) == 0) {
      return 1;
    }
    uint32_t handle = 77, started = 77, state = 0;
    const auto lines = logLines([&] {
      EXPECT_EQ(0u, ZotOsThreadBegin(&handle, returnAtOnce, 0, nullptr));
      EXPECT_EQ(0u, ZotOsThreadStart(&started, &state, returnAtOnce, nullptr));
    });
    const auto ids = callerIds() + ")";
    EXPECT_EQ(Lines(2, "ERROR ZotOsThreadBegin: failed (11=Resource temporarily unavailable " + ids), lines);
    EXPECT_EQ(0u, handle + started + state + live());
    return 0;
  });
  if (code == 1) {
    GTEST_SKIP() << "no limit on threads can be set here";
  }
  EXPECT_EQ(0, code);
}

TEST_F(Thread, StartsOncePerStateWord) {
  Worker worker;
  EXPECT_EQ(1u, ZotOsThreadStart(nullptr, &worker.state, Worker::run, &worker));
  EXPECT_EQ(1u, shared(worker.state));
  uint32_t handle = 77;
  EXPECT_EQ(1u, ZotOsThreadStart(&handle, &worker.state, returnAtOnce, &ended));
  EXPECT_EQ(77u, handle) << "nothing was started, nothing is stored";
  EXPECT_EQ(1u, live());
  shared(worker.state) = 3;
  ASSERT_TRUE(allGone());
  EXPECT_EQ(1u, ZotOsThreadStart(&handle, nullptr, returnAtOnce, &ended));
  EXPECT_NE(77u, handle);
  ASSERT_TRUE(allGone());
  EXPECT_EQ(1, ended);
}

TEST_F(Thread, IsStoppedByCountingPolls) {
  const struct {
    int32_t pollCount;
    bool listens;
    const char* timedOut;
  } cases[] = {
      {2, false, "INFO  ZotOsThreadStop: rx timed out (200 ms)"},
      {1, true, "INFO  ZotOsThreadStop: rx timed out (100 ms)"},  // ends during the last poll
      {20, true, nullptr},
      {0, true, nullptr},
      {-1, true, nullptr},
  };
  for (const auto& c : cases) {
    Worker worker;
    worker.listens = c.listens;
    ASSERT_EQ(1u, ZotOsThreadStart(nullptr, &worker.state, Worker::run, &worker));
    Lines expected{"TRACE ZotOsThreadStop: do thread rx stop", "TRACE ZotOsThreadStop: thread rx is stopped"};
    if (c.timedOut != nullptr) {
      expected.insert(expected.begin() + 1, c.timedOut);
    }
    uint32_t result = 77;
    const auto stop = [&] {
      result = ZotOsThreadStop(nullptr, &worker.state, c.pollCount, nullptr, 0, "rx");
    };
    EXPECT_EQ(expected, logLines(stop)) << c.pollCount;
    EXPECT_EQ(c.timedOut == nullptr ? 1u : 0u, result);
    if (c.listens) {
      EXPECT_TRUE(waitUntil([&] { return shared(worker.state) == 0; }));
    } else {
      EXPECT_EQ(3u, shared(worker.state));
      EXPECT_EQ(1u, live()) << "it goes on running";
    }
    worker.released = true;
    ASSERT_TRUE(allGone());
  }
}

TEST_F(Thread, BlockedInAWaitIsWokenByTheCallback) {
  static uint32_t state, gate;  // the callback knows only its number
  const auto wait = [](void*) -> void* {
    while (shared(gate) == 0) {
      sched_yield();
    }
    shared(state) = shared(state) == 3 && shared(gate) == 5 ? 0 : 9;
    return nullptr;
  };
  const auto wake = [](uint32_t number) { shared(gate) = number; };
  ASSERT_EQ(1u, ZotOsThreadStart(nullptr, &state, wait, nullptr));
  EXPECT_EQ(1u, ZotOsThreadStop(nullptr, &state, 100, wake, 5, nullptr));
  EXPECT_EQ(0u, shared(state)) << "the request comes before the wake-up";

  EXPECT_EQ(Lines{"TRACE ZotOsThreadStop: thread  is stopped"},
            logLines([&] { EXPECT_EQ(1u, ZotOsThreadStop(nullptr, &state, 1, wake, 6, nullptr)); }));
  EXPECT_EQ(5u, gate) << "an ended worker is not woken";
}

TEST_F(Thread, IsStoppedByCancelWhenItsHandleIsGiven) {
  ThreadRegistry::instance().continueAfter(0x10);
  uint32_t handle = 0, state = 0;
  ASSERT_EQ(1u, ZotOsThreadStart(&handle, &state, waitForCancel, &ended));
  const std::string ids = callerIds() + ")";
  const auto stop = [&] { EXPECT_EQ(1u, ZotOsThreadStop(&handle, &state, 1, nullptr, 0, "rx")); };
  EXPECT_EQ(
      (Lines{"TRACE ZotOsThreadStop(17=rx): do thread cancel", "TRACE ZotOsThreadCancel: hndl=0x11 (" + ids}),
      logLines(stop));
  EXPECT_EQ(0u, handle + state);
  ASSERT_TRUE(allGone());

  // A cancel that fails, or has nothing to do, changes the state all the same.
  for (const uint32_t old : {17u, 0u}) {
    handle = old;
    state = 3;
    Lines expected{"TRACE ZotOsThreadStop(" + std::to_string(old) + "=rx): do thread cancel"};
    if (old != 0) {
      expected.push_back("ERROR ZotOsThreadCancel: failed (3=No such process " + ids);
    }
    EXPECT_EQ(expected, logLines(stop));
    EXPECT_EQ(old, handle);
    EXPECT_EQ(0u, state);
  }
  EXPECT_EQ(0u, ZotOsThreadCancel(nullptr));
  EXPECT_EQ(Lines{"ERROR ZotOsThreadStop: !!! rx parameter are missing !!!"},
            logLines([] { EXPECT_EQ(1u, ZotOsThreadStop(nullptr, nullptr, 1, nullptr, 0, "rx")); }));
}

}  // namespace
