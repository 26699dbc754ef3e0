// Child processes that report by exit code, and waits that always end.
#ifndef ZOT_TESTS_CHILD_H
#define ZOT_TESTS_CHILD_H

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <thread>

namespace zot_test {

inline constexpr std::chrono::seconds kDeadline{20};

// Polls until condition() holds.  Returns false when the deadline came first.
template <typename Condition>
bool waitUntil(Condition condition, std::chrono::milliseconds deadline = kDeadline) {
  const auto end = std::chrono::steady_clock::now() + deadline;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

// A forked copy of this process.  Its exit code is what body returns, or what it
// gives to exit(), and kFailed when an expectation failed in it.  Whatever is
// still running at the end of the object's life is killed.
class Child {
 public:
  static constexpr int kFailed = 113;
  static constexpr int kTimedOut = -1;

  explicit Child(const std::function<int()>& body);
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child();

  pid_t pid() const { return pid_; }
  void kill(int signal) const;

  // The exit code, 128 + the signal that ended the child, or kTimedOut.
  int wait(std::chrono::milliseconds deadline = kDeadline);

 private:
  pid_t pid_;
  int code_ = kTimedOut;
  bool ended_ = false;
};

// Runs body in a child and waits for its end.
int runInChild(const std::function<int()>& body, std::chrono::milliseconds deadline = kDeadline);

}  // namespace zot_test

#endif
