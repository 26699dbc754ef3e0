// Single keys from the console.
#include <sys/select.h>
#include <termios.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

#include "os/ZotOsSystem.h"

namespace {

// While it lives, the terminal hands over keys one by one.  A thread that is cancelled
// as it waits for one also puts the terminal back.
class SingleKeys {
 public:
  explicit SingleKeys(int32_t echo) {
    if (tcgetattr(STDIN_FILENO, &saved_) != 0) {
      return;
    }
    termios single = saved_;
    single.c_lflag &= ~static_cast<tcflag_t>(ICANON);
    if (echo == 0) {
      single.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    }
    single.c_cc[VMIN] = 1;
    single.c_cc[VTIME] = 0;
    on_ = tcsetattr(STDIN_FILENO, TCSANOW, &single) == 0;
  }
  ~SingleKeys() { end(); }
  SingleKeys(const SingleKeys&) = delete;
  SingleKeys& operator=(const SingleKeys&) = delete;

  bool on() const { return on_; }
  // Returns whether the terminal is as it was before.
  bool end() { return !std::exchange(on_, false) || tcsetattr(STDIN_FILENO, TCSANOW, &saved_) == 0; }

 private:
  termios saved_{};
  bool on_ = false;
};

template <typename Read>
int32_t withSingleKeys(int32_t echo, Read read) {
  SingleKeys keys(echo);
  if (!keys.on()) {
    return -1;
  }
  const int key = read();
  return keys.end() ? key : -1;
}

// Compilers think that getchar() cannot unwind and would leave out what must run when it
// does; they cannot see through this pointer.
int waitForKey() {
  int (*volatile const read)() = std::getchar;
  return read();
}

// The byte when one came, else what select() answered: 1 stands for a terminal
// that was ready and gave no byte, and callers rely on it.
int pollKey() {
  fd_set input;
  FD_ZERO(&input);
  FD_SET(STDIN_FILENO, &input);
  timeval wait{0, 100};
  const int ready = select(STDIN_FILENO + 1, &input, nullptr, nullptr, &wait);
  unsigned char key = 0;
  return ready > 0 && read(STDIN_FILENO, &key, 1) == 1 ? key : ready;
}

}  // namespace

int32_t ZotOsGetCh(int32_t echo) {
  return withSingleKeys(echo, waitForKey);
}

int32_t ZotOsGetChNoWait(int32_t echo) {
  return withSingleKeys(echo, pollKey);
}
