#include "os/ZotOsSync.h"

#include <gmock/gmock.h>
#include <sys/time.h>

#include <optional>
#include <thread>

#include "SyncCalls.h"
#include "support/Child.h"
#include "support/FailingHeap.h"
#include "support/LogFixture.h"

using namespace zot_test;

namespace {

class LocalSync : public testing::Test {
 protected:
  LocalSync() {
    EXPECT_EQ(1u, ZotOsMutexCreate(&mutex, 0));
    EXPECT_EQ(1u, ZotOsEventCreate(&event, 0));
  }
  ~LocalSync() override {
    EXPECT_EQ(1u, ZotOsMutexClose(mutex));
    EXPECT_EQ(1u, ZotOsEventClose(event));
  }

  // What a wait on the event returns, times 1000, and its result word.
  uint32_t wait(uint32_t timeoutMs) {
    uint32_t result = 77;
    const uint32_t passed = ZotOsEventWait(event, timeoutMs, &result);
    return passed * 1000 + result;
  }

  ZotOsMutexHandle* mutex = nullptr;
  ZotOsEventHandle* event = nullptr;
};

TEST_F(LocalSync, AMutexNeedsAsManyReleasesAsWaits) {
  uint32_t result = 77;
  EXPECT_EQ(1u, ZotOsMutexWait(mutex, -1, &result));
  EXPECT_EQ(1u, result);
  EXPECT_EQ(1u, ZotOsMutexWait(mutex, -1, nullptr));
  const auto tryLock = [this] {
    int rc = -1;
    std::thread([this, &rc] {
      rc = pthread_mutex_trylock(&mutex->lock);
      EXPECT_EQ(rc == 0 ? 1u : 0u, ZotOsMutexRelease(mutex)) << "only its owner releases it";
    }).join();
    return rc;
  };
  EXPECT_EQ(EBUSY, tryLock());
  EXPECT_EQ(1u, ZotOsMutexRelease(mutex));
  EXPECT_EQ(EBUSY, tryLock());
  EXPECT_EQ(1u, ZotOsMutexRelease(mutex));
  EXPECT_EQ(0, tryLock());
}

TEST_F(LocalSync, AMutexKeepsThreadsApart) {
  int counter = 0;  // the mutex alone guards it
  const auto work = [&] {
    for (int n = 0; n < 5000; ++n) {
      ZotOsMutexWait(mutex, -1, nullptr);
      ++counter;
      ZotOsMutexRelease(mutex);
    }
  };
  std::thread other(work);
  work();
  other.join();
  EXPECT_EQ(10000, counter);
}

// 0 tries a named mutex; on a local one it is as wrong as any number.
TEST_F(LocalSync, AMutexEndsTheProcessOnAFiniteTimeout) {
  for (const int32_t timeoutMs : {0, 5000}) {
    const TestLog log;
    std::string pid;
    const Output output = captured([&] {
      Child child([&] { return static_cast<int>(ZotOsMutexWait(mutex, timeoutMs, nullptr)) + 7; });
      EXPECT_EQ(1, child.wait());
      pid = std::to_string(child.pid());
    });
    const std::string text =
        "ZotOsMutexWait - invalid timeout, only infinite supported for local pthread based mutexes.\n";
    EXPECT_EQ(text, output.err);
    EXPECT_THAT(output.out, testing::EndsWith(" - ERROR ZotOsMutexWait(" + addressText(mutex) +
                                              ") invalid timeout, only infinite supported for local pthread "
                                              "based mutexes. (pid=" +
                                              pid + " tid=" + pid + ")\n" + text));
  }
}

TEST_F(LocalSync, AnEventIsConsumedByTheWaitItLetsPass) {
  EXPECT_EQ(999u, wait(0)) << "clear when new";
  EXPECT_EQ(999u, wait(999)) << "over at once";
  EXPECT_EQ(1u, ZotOsEventSet(event));
  EXPECT_EQ(1u, ZotOsEventSet(event));
  EXPECT_EQ(1001u, wait(0));
  EXPECT_EQ(999u, wait(0)) << "two sets let one wait pass";
  EXPECT_EQ(1u, ZotOsEventSet(event));
  EXPECT_EQ(1u, ZotOsEventWait(event, UINT32_MAX, nullptr));
  EXPECT_EQ(1u, ZotOsEventSet(event));
  EXPECT_EQ(1u, ZotOsEventReset(event));
  EXPECT_EQ(999u, wait(500)) << "a reset clears it";
}

TEST_F(LocalSync, AnEventWaitsUntilAWholeSecond) {
  for (const uint32_t timeoutMs : {999u, 3999u, 4294967294u}) {
    syncCalls.pthread_cond_timedwait = {ETIMEDOUT};
    timeval before{};
    timeval after{};
    gettimeofday(&before, nullptr);
    EXPECT_EQ(999u, wait(timeoutMs));
    gettimeofday(&after, nullptr);
    const auto seconds = static_cast<time_t>(timeoutMs / 1000);
    EXPECT_EQ(0, lastDeadline.tv_nsec);
    EXPECT_LE(before.tv_sec + seconds, lastDeadline.tv_sec);
    EXPECT_GE(after.tv_sec + seconds, lastDeadline.tv_sec);
  }
}

TEST_F(LocalSync, OneSetWakesEveryWaiterAndACancelledOneHoldsNothing) {
  condWaits = 0;
  std::atomic<int> passed = 0;
  const auto waiter = [&] { passed += wait(UINT32_MAX) == 1001 ? 1 : 0; };
  std::thread first(waiter);
  std::thread second(waiter);
  std::thread cancelled(waiter);
  EXPECT_TRUE(waitUntil([] { return condWaits == 3; }));
  EXPECT_EQ(0, pthread_cancel(cancelled.native_handle()));
  cancelled.join();
  EXPECT_EQ(1u, ZotOsEventSet(event));
  first.join();
  second.join();
  EXPECT_EQ(2, passed);
  EXPECT_EQ(999u, wait(0)) << "the waiters have cleared it";
}

TEST_F(LocalSync, AnEventTakesAnyWakeUpAndReportsErrors) {
  syncCalls.pthread_cond_wait = {-1, EPERM};
  EXPECT_EQ(1001u, wait(UINT32_MAX)) << "woken by nobody";
  EXPECT_EQ(0u, wait(UINT32_MAX));
  syncCalls.pthread_mutex_lock = {EINVAL, EINVAL, EINVAL};
  EXPECT_EQ(0u, wait(0));
  EXPECT_EQ(0u, ZotOsEventSet(event));
  EXPECT_EQ(0u, ZotOsEventReset(event));
}

TEST(LocalSyncLines, TellEachStep) {
  ZotOsMutexHandle* mutex = nullptr;
  ZotOsEventHandle* event = nullptr;
  const auto lines = logLines([&] {
    uint32_t result = 77;
    ZotOsMutexCreate(&mutex, 0);
    ZotOsMutexWait(mutex, -1, nullptr);
    ZotOsMutexRelease(mutex);
    ZotOsMutexRelease(mutex);
    syncCalls.pthread_mutex_lock = {EAGAIN};
    EXPECT_EQ(0u, ZotOsMutexWait(mutex, -1, &result));
    EXPECT_EQ(0u, result);
    syncCalls.pthread_mutex_destroy = {EBUSY, EBUSY, 0, EBUSY, EINVAL};
    EXPECT_EQ(1u, ZotOsMutexClose(mutex));
    ZotOsEventCreate(&event, 0);
    syncCalls.pthread_cond_destroy = {EBUSY};
    EXPECT_EQ(0u, ZotOsEventClose(event));
  });
  EXPECT_EQ(
      filled({"TRACE ZotOsMutexCreate(MUTEX): (IDS)", "DEBUG ZotOsMutexWait(MUTEX) (IDS)",
              "DEBUG ZotOsMutexRelease(MUTEX) (IDS)",
              "ERROR ZotOsMutexRelease(MUTEX) rc=1=Operation not permitted (IDS)",
              "ERROR ZotOsMutexWait(MUTEX) rc=11=Resource temporarily unavailable (IDS)",
              "ERROR ZotOsMutexClose(MUTEX): destroy failed (rc=16=Device or resource busy)",
              "ERROR ZotOsMutexClose(MUTEX): destroy failed (rc=16=Device or resource busy)",
              "TRACE ZotOsMutexClose(MUTEX): rc=0 (IDS)", "TRACE ZotOsEventCreate(EVENT): (IDS)",
              "ERROR ZotOsEventClose(EVENT): pthread_cond_destroy failed (rc=16=Device or resource busy)",
              "ERROR ZotOsEventClose(EVENT): pthread_mutex_destroy failed (rc=16=Device or resource busy)",
              "ERROR ZotOsEventClose(EVENT): pthread_mutex_destroy failed (rc=22=Invalid argument)",
              "TRACE ZotOsEventClose(EVENT): rc=22 (IDS)"},
             {{"MUTEX", addressText(mutex)}, {"EVENT", addressText(event)}}),
      lines);
}

TEST(LocalSyncLines, TellWhyNothingWasMade) {
  const struct {
    CallScript SyncCalls::*call;  // null: the heap
    bool event;
    const char* line;
  } cases[] = {
      {&SyncCalls::pthread_mutex_init, true, "ZotOsEventCreate(OUT): pthread_mutex_init failed (rc"},
      {&SyncCalls::pthread_cond_init, true, "ZotOsEventCreate(OUT): pthread_cond_init failed (rc"},
      {&SyncCalls::pthread_mutexattr_init, false, "ZotOsMutexCreate(OUT): pthread_mutexattr_init failed (rc"},
      {&SyncCalls::pthread_mutexattr_settype, false,
       "ZotOsMutexCreate(OUT): pthread_mutexattr_settype failed (rc"},
      {&SyncCalls::pthread_mutex_init, false, "ZotOsMutexCreate(OUT): pthread_mutex_init failed (rc"},
      {nullptr, true, "ZotOsEventCreate(OUT): malloc failed (errno"},
      {nullptr, false, "ZotOsMutexCreate(OUT): malloc failed (errno"},
  };
  for (const auto& c : cases) {
    ZotOsEventHandle unset{};
    ZotOsEventHandle* event = &unset;
    auto* mutex = reinterpret_cast<ZotOsMutexHandle*>(&unset);
    const auto lines = logLines([&] {
      std::optional<FailingHeap> heap;
      if (c.call != nullptr) {
        (syncCalls.*c.call) = {ENOMEM};
      } else {
        heap.emplace();
      }
      EXPECT_EQ(0u, c.event ? ZotOsEventCreate(&event, 0) : ZotOsMutexCreate(&mutex, 0));
    });
    const auto out = addressText(c.event ? static_cast<void*>(&event) : static_cast<void*>(&mutex));
    EXPECT_EQ(filled({std::string("ERROR ") + c.line + "=12=Cannot allocate memory)"}, {{"OUT", out}}),
              lines);
    EXPECT_TRUE(c.event ? event == nullptr : mutex == nullptr);
  }
}

TEST(LocalSyncLines, TellOfNullHandles) {
  const auto lines = logLines([] {
    EXPECT_EQ(0u, ZotOsEventSet(nullptr));
    EXPECT_EQ(0u, ZotOsEventReset(nullptr));
    EXPECT_EQ(0u, ZotOsEventWait(nullptr, 0, nullptr));
    EXPECT_EQ(0u, ZotOsMutexWait(nullptr, 0, nullptr));
    EXPECT_EQ(0u, ZotOsMutexRelease(nullptr));
    EXPECT_EQ(0u, ZotOsMutexClose(nullptr));
  });
  std::vector<std::string> expected;
  for (const char* call :
       {"EventSet", "EventReset", "EventWait", "MutexWait", "MutexRelease", "MutexClose"}) {
    const std::string name = call;
    expected.push_back("ERROR ZotOs" + name + "((nil)) a" + name.substr(0, 5) + " is NULL (IDS)");
  }
  EXPECT_EQ(filled(expected), lines);
}

}  // namespace
