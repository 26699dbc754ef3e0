#include "OnlyWindow.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/sem.h>
#include <unistd.h>

#include <filesystem>

#include "Connection.h"
#include "SharedLog.h"
#include "os/ZotOsSystem.h"

namespace {

// Numbers of processes are used again, and a dead process may wait for its parent: what
// counts is that it runs this program.
bool isWindow(int process) {
  std::error_code failure;
  const std::string own = std::filesystem::read_symlink("/proc/self/exe");
  const std::string its = std::filesystem::read_symlink("/proc/" + std::to_string(process) + "/exe", failure);
  return failure == std::errc::permission_denied || its.starts_with(own);
}

bool lockInTime(int file) {
  const Deadline deadline(std::chrono::seconds(2));
  while (flock(file, LOCK_EX | LOCK_NB) != 0) {
    if (deadline.over()) {
      return false;
    }
    ZotOsSleep(20);
  }
  return true;
}

}  // namespace

OnlyWindow::OnlyWindow(const std::string& directory) {
  // Windows that start at the same moment look one after the other.
  const int lock = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (lock < 0 || !lockInTime(lock) || ZotOsMutexCreate(&mutex_, kWindowMutexKey) == 0) {
    close(lock);
    return;
  }
  mine_ = tryToTake();
  // A process that is killed leaves its mutex taken; the kernel knows who took it.
  if (!mine_ && !isWindow(semctl(mutex_->semId, 0, GETPID))) {
    ZotOsMutexRelease(mutex_);
    mine_ = tryToTake();
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
