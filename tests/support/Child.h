// Child processes that report by exit code, and waits that always end.
#ifndef ZOT_TESTS_CHILD_H
#define ZOT_TESTS_CHILD_H

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>

#ifdef ZOT_COVERAGE
extern "C" void __gcov_dump();
#endif

namespace zot_test {

// Polls until condition() holds.  Returns false when the deadline came first.
template <typename Condition>
bool waitUntil(Condition condition) {
  for (int milliseconds = 0; milliseconds < 20000; ++milliseconds) {
    if (condition()) {
      return true;
    }
    usleep(1000);
  }
  return false;
}

// A forked copy of this process.  Its exit code is what body returns, or what it
// gives to exit(), and 113 when an expectation failed in it.  Whatever is still
// running at the end of the object's life is killed.
class Child {
 public:
  explicit Child(const std::function<int()>& body) {
    std::fflush(nullptr);  // or the child would write the parent's buffers again
    // By its address: after a plain call a coverage build forgets what ran inside fork().
    pid_t (*volatile const split)() = fork;
    pid_ = split();
    if (pid_ == 0) {
      const int code = body();
      std::fflush(nullptr);
#ifdef ZOT_COVERAGE
      __gcov_dump();  // _exit() would forget the counts
#endif
      _exit(testing::Test::HasFailure() ? 113 : code);
    }
  }
  Child(Child&&) = delete;
  ~Child() {
    if (pid_ > 0 && !ended_) {
      kill(SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
  }

  void kill(int signal) const {
    ::kill(pid_, signal);
  }

  // The exit code, 128 + the signal that ended the child, or -1 when it goes on running.
  int wait() {
    int status = 0;
    ended_ = pid_ > 0 && waitUntil([&] { return waitpid(pid_, &status, WNOHANG) == pid_; });
    return !ended_ ? -1 : WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }

 private:
  pid_t pid_;
  bool ended_ = false;
};

inline int runInChild(const std::function<int()>& body) {
  return Child(body).wait();
}

}  // namespace zot_test

#endif
