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

}  // namespace

SharedControlBlock* pstShm = nullptr;

SharedBlockLock::SharedBlockLock() {
  [[maybe_unused]] static const int forkSafe = makeForkSafe();
  mutex.lock();
}

SharedBlockLock::~SharedBlockLock() {
  mutex.unlock();
}
