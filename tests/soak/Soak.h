// What the soak scenarios share.  Each runs for some seconds in an IPC namespace that
// is empty before it, prints one line with its figures and exits 0, or says what it met.
#ifndef ZOT_TESTS_SOAK_H
#define ZOT_TESTS_SOAK_H

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <new>
#include <random>
#include <string>
#include <vector>

#include "tests/support/IpcLeftovers.h"

namespace soak {

using Random = std::minstd_rand;

class Deadline {
 public:
  explicit Deadline(double seconds)
      : end_(std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds)) {}
  bool passed() const { return std::chrono::steady_clock::now() >= end_; }

 private:
  std::chrono::time_point<std::chrono::steady_clock, std::chrono::duration<double>> end_;
};

// Where faults are told, also when standard error goes nowhere.
inline const int complaints = dup(STDERR_FILENO);

[[noreturn]] inline void fail(const char* what, long long figure = 0) {
  dprintf(complaints, "soak: %s (%lld)\n", what, figure);
  _exit(1);
}

// Memory that forked processes share, zero at first and never given back.
template <typename Record>
Record* sharedBetweenProcesses() {
  void* block = mmap(nullptr, sizeof(Record), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  return block == MAP_FAILED ? nullptr : new (block) Record{};
}

// A process that hangs is ended by its alarm, and so fails.
inline pid_t start(unsigned int alarmSeconds, const std::function<void()>& body) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    alarm(alarmSeconds);
    body();
    std::fflush(nullptr);
    _exit(0);
  }
  return child;
}

inline void expectWell(pid_t child, const char* who) {
  int status = 0;
  if (child <= 0 || waitpid(child, &status, 0) != child || status != 0) {
    fail(who, status);
  }
}

// How many segments and sets the namespace lists.
inline long leftovers() {
  const std::string all = zot_test::ipcLeftovers();
  return std::count(all.begin(), all.end(), '\n');
}

// The library's lines about failures that are expected here go nowhere.
inline void silenceLibrary() {
  if (std::freopen("/dev/null", "w", stdout) == nullptr ||
      std::freopen("/dev/null", "w", stderr) == nullptr) {
    fail("no /dev/null");
  }
}

void exclusion(double seconds, bool keeper);
void kills(double seconds);
void cycles(double seconds);
void readers(double seconds);
void stranger(double seconds);

}  // namespace soak

#endif
