#include "os/ZotOsSync.h"

#include <sys/time.h>

#include <cstdio>
#include <cstring>
#include <utility>

#include "os/NamedSemaphoreInternal.h"
#include "os/SyncHandleInternal.h"

namespace {

constexpr uint32_t kLetter = 'E';

bool initLocal(ZotOsEventHandle* event, ZotOsEventHandle** out) {
  if (const int rc = pthread_mutex_init(&event->lock, nullptr); rc != 0) {
    logStepFailed("ZotOsEventCreate", out, "pthread_mutex_init", rc);
    return false;
  }
  if (const int rc = pthread_cond_init(&event->cond, nullptr); rc != 0) {
    pthread_mutex_destroy(&event->lock);
    logStepFailed("ZotOsEventCreate", out, "pthread_cond_init", rc);
    return false;
  }
  event->signalled = 0;
  return true;
}

uint32_t setNamed(ZotOsEventHandle* event) {
  auto* const address = static_cast<void*>(event);
  ZOT_LINE_IDS(ZOT_LOG_DEBUG, "DEBUG ZotOsEventSet(%p) entry: semval=%d (pid=%u tid=%ld)", address,
               ZotOsSemaphoreVal(event->semId));
  ZotSemun one{};
  one.val = 1;
  if (semctl(event->semId, 0, SETVAL, one) == -1) {
    const int error = errno;
    std::fprintf(stderr, "FATAL ZotOsEventSet(%p): semctl failed (%d=%s pid=%u tid=%ld)\n", address, error,
                 std::strerror(error), logPid(), logTid());
  }
  ZOT_LINE_IDS(ZOT_LOG_DEBUG, "DEBUG ZotOsEventSet(%p): exit: semval=%d (pid=%u tid=%ld)", address,
               ZotOsSemaphoreVal(event->semId));
  return 1;
}

// Holds an event's lock.  A thread that is cancelled in its wait unwinds with the
// lock held; without the destructor nobody could set the event again.
class Locked {
 public:
  explicit Locked(ZotOsEventHandle* event) : lock_(event->lock), held_(pthread_mutex_lock(&lock_) == 0) {}
  ~Locked() { release(); }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;

  bool held() const { return held_; }
  // Returns whether the lock was held and is free now.
  bool release() { return std::exchange(held_, false) && pthread_mutex_unlock(&lock_) == 0; }

 private:
  pthread_mutex_t& lock_;
  bool held_;
};

uint32_t setLocal(ZotOsEventHandle* event) {
  Locked lock(event);
  int broadcast = 0;
  if (lock.held() && event->signalled == 0) {
    event->signalled = 1;
    broadcast = pthread_cond_broadcast(&event->cond);
  }
  return lock.release() && broadcast == 0 ? 1 : 0;
}

// The whole second at which a wait of this length ends; what is left of the
// second in which it starts and of timeoutMs counts for nothing.
timespec deadlineIn(uint32_t timeoutMs) {
  timeval now{};
  gettimeofday(&now, nullptr);
  timespec deadline{};
  deadline.tv_sec = now.tv_sec + static_cast<time_t>(timeoutMs / 1000);
  return deadline;
}

// Returns the code of the wait.  Called with the lock held.
int waitForSignal(ZotOsEventHandle* event, uint32_t timeoutMs) {
  int rc;
  if (timeoutMs == ZOT_OS_INFINITE) {
    rc = pthread_cond_wait(&event->cond, &event->lock);
  } else {
    const timespec deadline = deadlineIn(timeoutMs);
    rc = pthread_cond_timedwait(&event->cond, &event->lock, &deadline);
  }
  // Being woken counts as the event itself, so no loop asks the flag again: of
  // several waiters that one set wakes, the first to run clears it for all.
  if (rc == 0) {
    event->signalled = 0;
  }
  return rc;
}

// Writes *result on success and on a time-out only.
uint32_t waitLocal(ZotOsEventHandle* event, uint32_t timeoutMs, uint32_t* result) {
  Locked lock(event);
  if (!lock.held()) {
    return 0;
  }
  if (event->signalled == 1) {
    event->signalled = 0;
    *result = kZotOsWaitSignalled;
    return 1;
  }
  const int rc = waitForSignal(event, timeoutMs);
  if (!lock.release()) {
    return 0;
  }
  if (rc == 0) {
    *result = kZotOsWaitSignalled;
  } else if (rc == ETIMEDOUT) {
    *result = kZotOsWaitTimeout;
  }
  return rc == 0 ? 1 : 0;
}

}  // namespace

uint32_t ZotOsEventCreate(ZotOsEventHandle** event, uint32_t key) {
  auto handle = allocateHandle("ZotOsEventCreate", event);
  if (handle == nullptr) {
    return 0;
  }
  if (key != 0) {
    return ZotOsCreate(&handle->semId, key, 0, kLetter) != 0 ? giveHandle(handle, 1, event) : 0;
  }
  if (!initLocal(handle.get(), event)) {
    return 0;
  }
  giveHandle(handle, 0, event);
  ZOT_LINE_IDS(ZOT_LOG_TRACE, "TRACE ZotOsEventCreate(%p): (pid=%u tid=%ld)", static_cast<void*>(*event));
  return 1;
}

uint32_t ZotOsEventOpen(ZotOsEventHandle** event, int32_t key) {
  auto handle = allocateHandle("ZotOsEventOpen", event);
  if (handle == nullptr || ZotOsOpen(&handle->semId, key, kLetter) == 0) {
    return 0;
  }
  return giveHandle(handle, 1, event);
}

uint32_t ZotOsEventSet(ZotOsEventHandle* event) {
  if (refuseNull(event, "ZotOsEventSet", "aEvent")) {
    return 0;
  }
  return event->isNamed != 0 ? setNamed(event) : setLocal(event);
}

uint32_t ZotOsEventReset(ZotOsEventHandle* event) {
  if (refuseNull(event, "ZotOsEventReset", "aEvent")) {
    return 0;
  }
  if (event->isNamed != 0) {
    // A named event is consumed by the wait that it lets pass; callers rely on a
    // reset releasing one more.
    return ZotOsRelease(event->semId, kLetter);
  }
  Locked lock(event);
  if (lock.held()) {
    event->signalled = 0;
  }
  return lock.release() ? 1 : 0;
}

uint32_t ZotOsEventWait(ZotOsEventHandle* event, uint32_t timeoutMs, uint32_t* result) {
  if (refuseNull(event, "ZotOsEventWait", "aEvent")) {
    return 0;
  }
  uint32_t unwanted;
  uint32_t* const got = result != nullptr ? result : &unwanted;
  *got = kZotOsWaitFailed;
  if (event->isNamed != 0) {
    return ZotOsSet(event->semId, got, kLetter, timeoutMs == 0 ? IPC_NOWAIT : 0, timeoutMs);
  }
  return waitLocal(event, timeoutMs, got);
}

uint32_t ZotOsEventClose(ZotOsEventHandle* event) {
  const Malloced<ZotOsEventHandle> owned(event);
  if (event->isNamed != 0) {
    return ZotOsClose(event->semId, kLetter);
  }
  const int cond =
      destroyIdle(pthread_cond_destroy, &event->cond, "ZotOsEventClose", event, "pthread_cond_destroy");
  const int lock =
      destroyIdle(pthread_mutex_destroy, &event->lock, "ZotOsEventClose", event, "pthread_mutex_destroy");
  ZOT_LINE_IDS(ZOT_LOG_TRACE, "TRACE ZotOsEventClose(%p): rc=%d (pid=%u tid=%ld)", static_cast<void*>(event),
               lock);
  return cond == 0 && lock == 0 ? 1 : 0;
}
