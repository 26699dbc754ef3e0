#include "os/ZotOsSync.h"

#include <gmock/gmock.h>

#include "SyncCalls.h"
#include "support/Child.h"
#include "support/FailingHeap.h"
#include "support/LogFixture.h"

using namespace zot_test;

namespace {

class LocalSync : public testing::Test {
 protected:
  LocalSync() { EXPECT_EQ(2u, ZotOsMutexCreate(&mutex, 0) + ZotOsEventCreate(&event, 0)); }
  ~LocalSync() override { EXPECT_EQ(2u, ZotOsMutexClose(mutex) + ZotOsEventClose(event)); }

  uint32_t set() { return ZotOsEventSet(event); }
  uint32_t wait(uint32_t timeoutMs) { return waited(ZotOsEventWait, event, timeoutMs); }

  ZotOsMutexHandle* mutex = nullptr;
  ZotOsEventHandle* event = nullptr;
};

TEST_F(LocalSync, AMutexNeedsAsManyReleasesAsWaits) {
  EXPECT_EQ(1001u, waited(ZotOsMutexWait, mutex, -1));
  EXPECT_EQ(1u, ZotOsMutexWait(mutex, -1, nullptr));
  for (const int expected : {EBUSY, EBUSY, 0}) {
    int taken = -1;
    std::thread([&] {
      taken = pthread_mutex_trylock(&mutex->lock);
      EXPECT_EQ(1u, taken == 0 ? ZotOsMutexRelease(mutex) : 1);
    }).join();
    EXPECT_EQ(expected, taken);
    EXPECT_EQ(1u, taken != 0 ? ZotOsMutexRelease(mutex) : 1);
  }
}

// 0 tries a named mutex; on a local one it is as wrong as any number.
TEST_F(LocalSync, AMutexEndsTheProcessOnAFiniteTimeout) {
  const TestLog log;
  const Output output = captured([&] {
    EXPECT_EQ(1, runInChild([&] { return static_cast<int>(ZotOsMutexWait(mutex, 0, nullptr)) + 7; }));
  });
  const std::string text = "invalid timeout, only infinite supported for local pthread based mutexes.";
  const std::string line = "ZotOsMutexWait - " + text + "\n";
  EXPECT_EQ(line, output.err);
  EXPECT_THAT(output.out, testing::MatchesRegex(".* - ERROR ZotOsMutexWait\\(" + Shown(mutex).text + "\\) " +
                                                text + " \\(pid=[0-9]+ tid=[0-9]+\\)\n" + line));
}

TEST_F(LocalSync, AnEventIsConsumedByTheWaitItLetsPass) {
  EXPECT_EQ((Results{999, 999}), (Results{wait(0), wait(999)})) << "clear when new, over at once";
  EXPECT_EQ((Results{1, 1, 1001, 999}), (Results{set(), set(), wait(0), wait(0)})) << "two sets, one wait";
  EXPECT_EQ((Results{1, 1}), (Results{set(), ZotOsEventWait(event, UINT32_MAX, nullptr)}));
  EXPECT_EQ((Results{1, 1, 999}), (Results{set(), ZotOsEventReset(event), wait(500)})) << "a reset clears it";
}

TEST_F(LocalSync, AnEventWaitsUntilAWholeSecond) {
  for (const uint32_t timeoutMs : {999u, 3999u, 4294967294u}) {
    syncCalls.pthread_cond_timedwait = {ETIMEDOUT};
    const time_t before = std::time(nullptr);
    EXPECT_EQ(999u, wait(timeoutMs));
    const time_t start = lastDeadline.tv_sec - static_cast<time_t>(timeoutMs / 1000);
    EXPECT_EQ(0, lastDeadline.tv_nsec);
    EXPECT_TRUE(before <= start && start <= std::time(nullptr) + 1) << start;
  }
}

TEST_F(LocalSync, OneSetWakesEveryWaiterAndACancelledOneHoldsNothing) {
  syncCalls.pthread_cond_wait = {kCancelled};
  std::thread([this] { ADD_FAILURE() << wait(UINT32_MAX); }).join();
  EXPECT_EQ(1u, ZotOsEventReset(event));
  condWaits = 0;
  std::atomic<int> passed = 0;
  const auto waiter = [&] { passed += wait(UINT32_MAX) == 1001 ? 1 : 0; };
  std::thread first(waiter);
  std::thread second(waiter);
  EXPECT_TRUE(waitUntil([] { return condWaits == 2; }));
  EXPECT_EQ(1u, ZotOsEventSet(event));
  first.join();
  second.join();
  EXPECT_EQ(2, passed);
  EXPECT_EQ(999u, wait(0)) << "the waiters have cleared it";
}

TEST_F(LocalSync, AnEventTakesAnyWakeUpAndReportsErrors) {
  syncCalls.pthread_cond_wait = {-1, EPERM};
  EXPECT_EQ((Results{1001, 0}), (Results{wait(UINT32_MAX), wait(UINT32_MAX)})) << "first woken by nobody";
  syncCalls.pthread_cond_wait = {-1};
  syncCalls.pthread_mutex_unlock = {EPERM};
  EXPECT_EQ(0u, wait(UINT32_MAX)) << "woken, but the lock stays taken";
  EXPECT_EQ(0, pthread_mutex_unlock(&event->lock));
  syncCalls.pthread_mutex_lock = {EINVAL, EINVAL, EINVAL};
  EXPECT_EQ((Results{0, 0, 0}), (Results{wait(0), set(), ZotOsEventReset(event)}));
}

TEST(LocalSyncLines, TellEachStep) {
  ZotOsMutexHandle* mutex = nullptr;
  ZotOsEventHandle* event = nullptr;
  const auto lines = told([&] {
    syncCalls.pthread_mutex_lock = {0, EAGAIN};
    syncCalls.pthread_mutex_unlock = {0, EPERM};
    syncCalls.pthread_mutex_destroy = {EBUSY, EBUSY, 0, EBUSY, EINVAL};
    syncCalls.pthread_cond_destroy = {EBUSY};
    EXPECT_EQ(
        (Results{1, 1001, 1, 0, 0, 1}),
        (Results{ZotOsMutexCreate(&mutex, 0), waited(ZotOsMutexWait, mutex, -1), ZotOsMutexRelease(mutex),
                 ZotOsMutexRelease(mutex), waited(ZotOsMutexWait, mutex, -1), ZotOsMutexClose(mutex)}));
    EXPECT_EQ((Results{1, 0}), (Results{ZotOsEventCreate(&event, 0), ZotOsEventClose(event)}));
  });
  EXPECT_EQ(filled(R"(TRACE ZotOsMutexCreate(MUTEX): (IDS)
DEBUG ZotOsMutexWait(MUTEX) (IDS)
DEBUG ZotOsMutexRelease(MUTEX) (IDS)
ERROR ZotOsMutexRelease(MUTEX) rc=1=Operation not permitted (IDS)
ERROR ZotOsMutexWait(MUTEX) rc=11=Resource temporarily unavailable (IDS)
ERROR ZotOsMutexClose(MUTEX): destroy failed (rc=16=Device or resource busy)
ERROR ZotOsMutexClose(MUTEX): destroy failed (rc=16=Device or resource busy)
TRACE ZotOsMutexClose(MUTEX): rc=0 (IDS)
TRACE ZotOsEventCreate(EVENT): (IDS)
ERROR ZotOsEventClose(EVENT): pthread_cond_destroy failed (rc=16=Device or resource busy)
ERROR ZotOsEventClose(EVENT): pthread_mutex_destroy failed (rc=16=Device or resource busy)
ERROR ZotOsEventClose(EVENT): pthread_mutex_destroy failed (rc=22=Invalid argument)
TRACE ZotOsEventClose(EVENT): rc=22 (IDS)
)",
                   {{"MUTEX", mutex}, {"EVENT", event}}),
            lines);
}

TEST(LocalSyncLines, TellWhyNothingWasDone) {
  ZotOsEventHandle* event = nullptr;
  ZotOsMutexHandle* mutex = nullptr;
  syncCalls.pthread_mutex_init = {EAGAIN, 0, EAGAIN};
  syncCalls.pthread_cond_init = syncCalls.pthread_mutexattr_init =
      syncCalls.pthread_mutexattr_settype = {EAGAIN};
  const auto lines = told([&] {
    const uint32_t created = ZotOsEventCreate(&event, 0) + ZotOsEventCreate(&event, 0) +
                             ZotOsMutexCreate(&mutex, 0) + ZotOsMutexCreate(&mutex, 0) +
                             ZotOsMutexCreate(&mutex, 0);
    const FailingHeap heap;
    const uint32_t made = ZotOsEventCreate(&event, 0) + ZotOsEventOpen(&event, 1) +
                          ZotOsMutexCreate(&mutex, 0) + ZotOsMutexOpen(&mutex, 1);
    const uint32_t used = ZotOsEventSet(nullptr) + ZotOsEventReset(nullptr) +
                          ZotOsEventWait(nullptr, 0, nullptr) + ZotOsMutexWait(nullptr, 0, nullptr) +
                          ZotOsMutexRelease(nullptr) + ZotOsMutexClose(nullptr);
    EXPECT_EQ(0u, created + made + used);
  });
  EXPECT_EQ(
      filled(
          R"(ERROR ZotOsEventCreate(EVENT): pthread_mutex_init failed (rc=11=Resource temporarily unavailable)
ERROR ZotOsEventCreate(EVENT): pthread_cond_init failed (rc=11=Resource temporarily unavailable)
ERROR ZotOsMutexCreate(MUTEX): pthread_mutexattr_init failed (rc=11=Resource temporarily unavailable)
ERROR ZotOsMutexCreate(MUTEX): pthread_mutexattr_settype failed (rc=11=Resource temporarily unavailable)
ERROR ZotOsMutexCreate(MUTEX): pthread_mutex_init failed (rc=11=Resource temporarily unavailable)
ERROR ZotOsEventCreate(EVENT): malloc failed (errno=12=Cannot allocate memory)
ERROR ZotOsEventOpen(EVENT): malloc failed (errno=12=Cannot allocate memory)
ERROR ZotOsMutexCreate(MUTEX): malloc failed (errno=12=Cannot allocate memory)
ERROR ZotOsMutexOpen(MUTEX): malloc failed (errno=12=Cannot allocate memory)
ERROR ZotOsEventSet((nil)) aEvent is NULL (IDS)
ERROR ZotOsEventReset((nil)) aEvent is NULL (IDS)
ERROR ZotOsEventWait((nil)) aEvent is NULL (IDS)
ERROR ZotOsMutexWait((nil)) aMutex is NULL (IDS)
ERROR ZotOsMutexRelease((nil)) aMutex is NULL (IDS)
ERROR ZotOsMutexClose((nil)) aMutex is NULL (IDS)
)",
          {{"EVENT", &event}, {"MUTEX", &mutex}}),
      lines);
}

}  // namespace
