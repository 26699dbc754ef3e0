#include "os/SharedBlockLock.h"

#include <pthread.h>

#include <mutex>

#include "log/CLibraryLockInternal.h"

namespace {

std::mutex mutex;

// Forking waits until no thread is in the middle of counting, so that the child inherits
// whole counts and a lock that somebody is left to open.
int makeForkSafe() {
  CLibraryLock::makeForkSafe();
  return pthread_atfork([] { mutex.lock(); }, [] { mutex.unlock(); }, [] { mutex.unlock(); });
}

// Before a program registers fork handlers of its own: those then run while the lock is
// free, and may open what is named.
[[maybe_unused]] const int atLoad = makeForkSafe();

}  // namespace

SharedControlBlock* pstShm = nullptr;

SharedBlockLock::SharedBlockLock() {
  mutex.lock();
}

SharedBlockLock::~SharedBlockLock() {
  mutex.unlock();
}
