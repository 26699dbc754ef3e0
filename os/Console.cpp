// Single keys from the console.
#include <sys/select.h>
#include <termios.h>
#include <unistd.h>

#include <cstdio>

#include "os/ZotOsSystem.h"

namespace {

// Takes one key, as int, while the terminal hands over keys one by one.
template <typename Read>
int32_t withSingleKeys(int32_t echo, Read read) {
  termios saved{};
  if (tcgetattr(STDIN_FILENO, &saved) != 0) {
    return -1;
  }
  termios single = saved;
  single.c_lflag &= ~static_cast<tcflag_t>(ICANON);
  if (echo == 0) {
    single.c_lflag &= ~static_cast<tcflag_t>(ECHO);
  }
  single.c_cc[VMIN] = 1;
  single.c_cc[VTIME] = 0;
  if (tcsetattr(STDIN_FILENO, TCSANOW, &single) != 0) {
    return -1;
  }
  const int key = read();
  return tcsetattr(STDIN_FILENO, TCSANOW, &saved) == 0 ? key : -1;
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
  return withSingleKeys(echo, [] { return std::getchar(); });
}

int32_t ZotOsGetChNoWait(int32_t echo) {
  return withSingleKeys(echo, pollKey);
}
