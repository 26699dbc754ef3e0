// Sees to it that there is one window: its process holds a named mutex.
#ifndef DEMO_ONLY_WINDOW_H
#define DEMO_ONLY_WINDOW_H

#include <string>

#include "os/ZotOsSync.h"

class OnlyWindow {
 public:
  // directory is where all windows keep their files.
  explicit OnlyWindow(const std::string& directory);
  ~OnlyWindow();
  OnlyWindow(const OnlyWindow&) = delete;
  OnlyWindow& operator=(const OnlyWindow&) = delete;

  bool isMine() const { return mine_; }

 private:
  bool tryToTake();

  ZotOsMutexHandle* mutex_ = nullptr;
  bool mine_ = false;
};

#endif
