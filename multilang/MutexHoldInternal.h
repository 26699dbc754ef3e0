// Holds a mutex of the operating-system layer until the end of a scope.
#ifndef MUTEX_HOLD_INTERNAL_H
#define MUTEX_HOLD_INTERNAL_H

#include <cstdint>

#include "os/ZotOsSync.h"

class MutexHold {
 public:
  // A mutex that could not be created is null: the wait then fails and nothing is held.
  explicit MutexHold(ZotOsMutexHandle* mutex)
      : mutex_(mutex), held_(ZotOsMutexWait(mutex, -1, nullptr) != 0) {}
  ~MutexHold() {
    if (held_) {
      ZotOsMutexRelease(mutex_);
    }
  }
  MutexHold(const MutexHold&) = delete;
  MutexHold& operator=(const MutexHold&) = delete;

  bool held() const { return held_; }

 private:
  ZotOsMutexHandle* mutex_;
  bool held_;
};

#endif
