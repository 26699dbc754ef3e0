#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#ifdef __linux__
#include <sched.h>
#endif

#include "support/IpcLeftovers.h"

namespace {

// System V keys are machine-wide.  In a namespace of their own, tests neither
// meet a running client nor each other, and whatever a failed test leaves behind
// vanishes with the process.
bool enterOwnIpcNamespace() {
#ifdef __linux__
  if (unshare(CLONE_NEWIPC) == 0) {
    return true;
  }
  return errno == EPERM && unshare(CLONE_NEWUSER | CLONE_NEWIPC) == 0;
#else
  return true;
#endif
}

// No test may leave a segment or a semaphore set behind.
class LeftoverCheck : public testing::EmptyTestEventListener {
  void OnTestEnd(const testing::TestInfo&) override { EXPECT_EQ("", zot_test::ipcLeftovers()); }
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (!enterOwnIpcNamespace()) {
    std::fprintf(stderr, "no IPC namespace of our own: %s\n", std::strerror(errno));
    return 1;
  }
  testing::UnitTest::GetInstance()->listeners().Append(new LeftoverCheck);
  return RUN_ALL_TESTS();
}
