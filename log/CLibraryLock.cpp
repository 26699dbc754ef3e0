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

// Before a program registers fork handlers of its own: those then run while the lock is
// free, and may write lines.
[[maybe_unused]] const int atLoad = CLibraryLock::makeForkSafe();

}  // namespace

int CLibraryLock::makeForkSafe() {
  static const int registered = pthread_atfork(lock, unlock, unlock);
  return registered;
}

CLibraryLock::CLibraryLock() {
  lock();
}

CLibraryLock::~CLibraryLock() {
  unlock();
}
