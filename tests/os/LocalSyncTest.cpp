#include "os/ZotOsSync.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

TEST(LocalMutex, NeedsAsManyReleasesAsWaits) {
  ZotOsMutexHandle* mutex = nullptr;
  ASSERT_EQ(1u, ZotOsMutexCreate(&mutex, 0));
  EXPECT_EQ(0u, mutex->isNamed);
  uint32_t result = 77;
  EXPECT_EQ(1u, ZotOsMutexWait(mutex, -1, &result));
  EXPECT_EQ(1u, result);
  EXPECT_EQ(1u, ZotOsMutexWait(mutex, -1, nullptr));

  const auto tryLock = [mutex] {
    int rc = -1;
    std::thread([mutex, &rc] {
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
  EXPECT_EQ(0u, ZotOsMutexRelease(mutex)) << "it is free";
  EXPECT_EQ(1u, ZotOsMutexClose(mutex));
}

TEST(LocalMutex, KeepsThreadsApart) {
  ZotOsMutexHandle* mutex = nullptr;
  ASSERT_EQ(1u, ZotOsMutexCreate(&mutex, 0));
  int counter = 0;  // the mutex alone guards it
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int n = 0; n < 2000; ++n) {
        ZotOsMutexWait(mutex, -1, nullptr);
        ++counter;
        ZotOsMutexRelease(mutex);
      }
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(8000, counter);
  EXPECT_EQ(1u, ZotOsMutexClose(mutex));
}

TEST(LocalEvent, IsConsumedByTheWaitItLetsPass) {
  ZotOsEventHandle* event = nullptr;
  ASSERT_EQ(1u, ZotOsEventCreate(&event, 0));
  const struct {
    uint32_t (*before)(ZotOsEventHandle*);
    uint32_t timeoutMs;
    uint32_t passed;
    uint32_t result;
  } cases[] = {
      {nullptr, 0, 0, 999},               // clear when new
      {nullptr, 999, 0, 999},             // over at once
      {ZotOsEventSet, 0, 1, 1},           //
      {nullptr, 0, 0, 999},               // the wait has cleared it
      {ZotOsEventSet, UINT32_MAX, 1, 1},  //
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    if (c.before != nullptr) {
      EXPECT_EQ(1u, c.before(event));
    }
    uint32_t result = 77;
    EXPECT_EQ(c.passed, ZotOsEventWait(event, c.timeoutMs, &result));
    EXPECT_EQ(c.result, result);
  }
  EXPECT_EQ(1u, ZotOsEventSet(event));
  EXPECT_EQ(1u, ZotOsEventSet(event));
  EXPECT_EQ(1u, ZotOsEventWait(event, UINT32_MAX, nullptr));
  EXPECT_EQ(0u, ZotOsEventWait(event, 0, nullptr)) << "two sets let one wait pass";
  EXPECT_EQ(1u, ZotOsEventSet(event));
  EXPECT_EQ(1u, ZotOsEventReset(event));
  EXPECT_EQ(0u, ZotOsEventWait(event, 0, nullptr)) << "a reset clears it";
  EXPECT_EQ(1u, ZotOsEventClose(event));
}

}  // namespace
