#include "log/CLibraryLockInternal.h"

#include <pthread.h>

#include <atomic>

namespace {

// No mutex of the threads' library: a line may tell of one that fails.
std::atomic_flag taken;

void lock() {
  while (taken.test_and_set(std::memory_order_acquire)) {
    taken.wait(true);
  }
}

void unlock() {
  taken.clear(std::memory_order_release);
  taken.notify_one();
}

}  // namespace

void CLibraryLock::makeForkSafe() {
  [[maybe_unused]] static const int registered = pthread_atfork(lock, unlock, unlock);
}

CLibraryLock::CLibraryLock() {
  makeForkSafe();
  lock();
}

CLibraryLock::~CLibraryLock() {
  unlock();
}
