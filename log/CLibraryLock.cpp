#include "log/CLibraryLockInternal.h"

#include <pthread.h>

#include <mutex>

namespace {

std::mutex mutex;

}  // namespace

void CLibraryLock::makeForkSafe() {
  [[maybe_unused]] static const int registered =
      pthread_atfork([] { mutex.lock(); }, [] { mutex.unlock(); }, [] { mutex.unlock(); });
}

CLibraryLock::CLibraryLock() {
  makeForkSafe();
  mutex.lock();
}

CLibraryLock::~CLibraryLock() {
  mutex.unlock();
}
