#include "os/SharedBlockLock.h"

#include <pthread.h>

#include <mutex>

namespace {

std::mutex mutex;

}  // namespace

SharedControlBlock* pstShm = nullptr;

SharedBlockLock::SharedBlockLock() {
  // Forking waits until no thread is in the middle of counting, so that the child
  // inherits whole counts and a lock that somebody is left to open.
  [[maybe_unused]] static const int forkSafe =
      pthread_atfork([] { mutex.lock(); }, [] { mutex.unlock(); }, [] { mutex.unlock(); });
  mutex.lock();
}

SharedBlockLock::~SharedBlockLock() {
  mutex.unlock();
}
