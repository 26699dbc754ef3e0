#include "os/ZotOsThread.h"

#include <pthread.h>

#include <cerrno>

#include "log/LogLineInternal.h"
#include "os/ThreadRegistryInternal.h"
#include "os/ZotOsSystem.h"

namespace {

constexpr uint32_t kEnded = 0;
constexpr uint32_t kRunning = 1;
constexpr uint32_t kStopRequested = 3;

constexpr size_t kDefaultStackCap = 0x40000;
constexpr uint32_t kPollMilliseconds = 100;

class ThreadAttributes {
 public:
  ThreadAttributes() : error_(pthread_attr_init(&attributes_)) {}
  ~ThreadAttributes() {
    if (error_ == 0) {
      pthread_attr_destroy(&attributes_);
    }
  }
  ThreadAttributes(const ThreadAttributes&) = delete;
  ThreadAttributes& operator=(const ThreadAttributes&) = delete;

  int error() const { return error_; }
  const pthread_attr_t& get() const { return attributes_; }

  void setDetached() { pthread_attr_setdetachstate(&attributes_, PTHREAD_CREATE_DETACHED); }

  void setStack(size_t size) {
    size_t systemDefault = 0;
    if (size == 0 && pthread_attr_getstacksize(&attributes_, &systemDefault) == 0 &&
        systemDefault > kDefaultStackCap) {
      size = kDefaultStackCap;
    }
    if (size != 0) {
      pthread_attr_setstacksize(&attributes_, size);
    }
  }

 private:
  pthread_attr_t attributes_;
  int error_;
};

// A worker that has seen the state also sees what its caller wrote before, and the
// other way round.
uint32_t load(const uint32_t* state) {
  return __atomic_load_n(state, __ATOMIC_ACQUIRE);
}

void store(uint32_t* state, uint32_t value) {
  __atomic_store_n(state, value, __ATOMIC_RELEASE);
}

// Of two callers that start the same worker at once, only one wins.
bool claim(uint32_t* state) {
  uint32_t expected = kEnded;
  return __atomic_compare_exchange_n(state, &expected, kRunning, false, __ATOMIC_ACQ_REL, __ATOMIC_ACQUIRE);
}

// A worker that ends by itself in this moment has the last word: its 0 is not
// overwritten, or nobody would ever answer the request.
void requestStop(uint32_t* state) {
  uint32_t seen = load(state);
  while (seen != kEnded && !__atomic_compare_exchange_n(state, &seen, kStopRequested, true, __ATOMIC_ACQ_REL,
                                                        __ATOMIC_ACQUIRE)) {
  }
}

uint32_t stopThroughState(uint32_t* state, int32_t pollCount, ZotOsThreadWake wake, uint32_t wakeArg,
                          const char* name) {
  if (load(state) != kEnded) {
    ZOT_LINE(ZOT_LOG_TRACE, "TRACE ZotOsThreadStop: do thread %s stop", name);
    requestStop(state);
    if (wake != nullptr) {
      wake(wakeArg);
    }
  }
  const uint32_t limit = pollCount == 0 ? UINT32_MAX : static_cast<uint32_t>(pollCount);
  uint32_t polls = 0;
  for (; load(state) == kStopRequested && polls < limit; ++polls) {
    ZotOsSleep(kPollMilliseconds);
  }
  // The count decides, not the state: callers rely on a worker that ends during the
  // very last poll being reported as late.
  const bool timedOut = polls == limit;
  if (timedOut) {
    ZOT_LINE(ZOT_LOG_ERROR, "INFO  ZotOsThreadStop: %s timed out (%lu ms)", name,
             static_cast<unsigned long>(limit) * kPollMilliseconds);
  }
  ZOT_LINE(ZOT_LOG_TRACE, "TRACE ZotOsThreadStop: thread %s is stopped", name);
  return timedOut ? 0 : 1;
}

}  // namespace

uint32_t ZotOsThreadBegin(uint32_t* thread, ZotOsThreadRoutine start, uint32_t stackSize, void* arg) {
  if (thread == nullptr) {
    return 0;
  }
  ThreadAttributes attributes;
  if (attributes.error() != 0) {
    ZOT_LINE_ERR_IDS(ZOT_LOG_ERROR, attributes.error(),
                     "ERROR ZotOsThreadBegin: init failed (%d=%s pid=%u tid=%ld)");
    *thread = 0;
    return 0;
  }
  attributes.setStack(stackSize);
  attributes.setDetached();
  const int error = ThreadRegistry::instance().start(attributes.get(), start, arg, thread);
  if (error != 0) {
    ZOT_LINE_ERR_IDS(ZOT_LOG_ERROR, error, "ERROR ZotOsThreadBegin: failed (%d=%s pid=%u tid=%ld)");
    return 0;
  }
  ZOT_LINE_IDS(ZOT_LOG_TRACE, "TRACE ZotOsThreadBegin: ok (pid=%u tid=%ld)");
  return 1;
}

void ZotOsThreadEnd() {
  pthread_exit(reinterpret_cast<void*>(1));
}

uint32_t ZotOsThreadCancel(uint32_t* thread) {
  if (thread == nullptr || *thread == 0) {
    return 0;
  }
  const int error = ThreadRegistry::instance().cancel(*thread);
  if (error != 0) {
    ZOT_LINE_ERR_IDS(ZOT_LOG_ERROR, error, "ERROR ZotOsThreadCancel: failed (%d=%s pid=%u tid=%ld)");
    return 0;
  }
  ZOT_LINE_IDS(ZOT_LOG_TRACE, "TRACE ZotOsThreadCancel: hndl=%p (pid=%u tid=%ld)",
               reinterpret_cast<void*>(static_cast<uintptr_t>(*thread)));
  *thread = 0;
  return 1;
}

uint32_t ZotOsThreadStart(uint32_t* thread, uint32_t* state, ZotOsThreadRoutine start, void* arg) {
  if (state != nullptr && !claim(state)) {
    return 1;
  }
  uint32_t unwanted = 0;
  if (ZotOsThreadBegin(thread != nullptr ? thread : &unwanted, start, 0, arg) == 1) {
    return 1;
  }
  if (state != nullptr) {
    store(state, kEnded);
  }
  return 0;
}

uint32_t ZotOsThreadStop(uint32_t* thread, uint32_t* state, int32_t pollCount, ZotOsThreadWake wake,
                         uint32_t wakeArg, const char* name) {
  if (name == nullptr) {
    name = "";
  }
  if (thread != nullptr) {
    ZOT_LINE(ZOT_LOG_TRACE, "TRACE ZotOsThreadStop(%lu=%s): do thread cancel",
             static_cast<unsigned long>(*thread), name);
    ZotOsThreadCancel(thread);
    if (state != nullptr) {
      store(state, kEnded);
    }
    return 1;
  }
  if (state != nullptr) {
    return stopThroughState(state, pollCount, wake, wakeArg, name);
  }
  ZOT_LINE(ZOT_LOG_ERROR, "ERROR ZotOsThreadStop: !!! %s parameter are missing !!!", name);
  return 1;
}
