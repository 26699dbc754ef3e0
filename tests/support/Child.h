// Child processes that report by exit code, and waits that always end.
#ifndef ZOT_TESTS_CHILD_H
#define ZOT_TESTS_CHILD_H

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <thread>

namespace zot_test {

// Polls until condition() holds.  Returns false when the deadline came first.
template <typename Condition>
bool waitUntil(Condition condition) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

// A forked copy of this process.  Its exit code is what body returns, or what it
// gives to exit(), and 113 when an expectation failed in it.  Whatever is still
// running at the end of the object's life is killed.
class Child {
 public:
  explicit Child(const std::function<int()>& body) {
    std::fflush(nullptr);  // or the child would write the parent's buffers again
    pid_ = fork();
    if (pid_ == 0) {
      const int code = body();
      std::fflush(nullptr);
      _exit(testing::Test::HasFailure() ? 113 : code);
    }
    if (pid_ == -1) {
      std::perror("fork");
      std::abort();
    }
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    if (!ended_) {
      kill(SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
  }

  pid_t pid() const { return pid_; }
  void kill(int signal) const { ::kill(pid_, signal); }

  // The exit code, 128 + the signal that ended the child, or -1 when it goes on running.
  int wait() {
    int status = 0;
    ended_ = waitUntil([&] { return waitpid(pid_, &status, WNOHANG) == pid_; });
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
