#include "OnlyWindow.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/sem.h>
#include <unistd.h>

#include <cerrno>

#include "SharedLog.h"

OnlyWindow::OnlyWindow(const std::string& directory) {
  // Windows that start at the same moment look one after the other.
  const int lock = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (lock < 0 || flock(lock, LOCK_EX) != 0 || ZotOsMutexCreate(&mutex_, kWindowMutexKey) == 0) {
    close(lock);
    return;
  }
  mine_ = tryToTake();
  if (!mine_) {
    // A process that is killed leaves its mutex taken; the kernel knows who took it.
    const pid_t holder = semctl(mutex_->semId, 0, GETPID);
    if (holder > 0 && kill(holder, 0) != 0 && errno == ESRCH) {
      ZotOsMutexRelease(mutex_);
      mine_ = tryToTake();
    }
  }
  close(lock);
}

OnlyWindow::~OnlyWindow() {
  if (mutex_ != nullptr) {
    if (mine_) {
      ZotOsMutexRelease(mutex_);
    }
    ZotOsMutexClose(mutex_);
  }
}

bool OnlyWindow::tryToTake() {
  uint32_t result = 0;
  return ZotOsMutexWait(mutex_, 0, &result) != 0 && result == kZotOsWaitSignalled;
}
