#include "support/Child.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace zot_test {

Child::Child(const std::function<int()>& body) {
  std::fflush(nullptr);  // or the child would write the parent's buffers again
  pid_ = fork();
  if (pid_ == -1) {
    std::perror("fork");
    std::abort();
  }
  if (pid_ == 0) {
    const int code = body();
    std::fflush(nullptr);
    _exit(testing::Test::HasFailure() ? kFailed : code);
  }
}

Child::~Child() {
  if (!ended_) {
    kill(SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
}

void Child::kill(int signal) const {
  ::kill(pid_, signal);
}

int Child::wait(std::chrono::milliseconds deadline) {
  int status = 0;
  if (!ended_ && waitUntil([&] { return waitpid(pid_, &status, WNOHANG) == pid_; }, deadline)) {
    ended_ = true;
    code_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }
  return code_;
}

int runInChild(const std::function<int()>& body, std::chrono::milliseconds deadline) {
  return Child(body).wait(deadline);
}

}  // namespace zot_test
