#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>

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
  const uid_t user = geteuid();
  const gid_t group = getegid();
  if (errno != EPERM || unshare(CLONE_NEWUSER | CLONE_NEWIPC) != 0) {
    return false;
  }
  // In a user namespace a process owns nothing until its user and group are mapped.
  std::ofstream("/proc/self/setgroups") << "deny";
  std::ofstream("/proc/self/uid_map") << user << " " << user << " 1";
  std::ofstream("/proc/self/gid_map") << group << " " << group << " 1";
#endif
  return true;
}

// Where no namespace can be had, in a container without privileges, one test program
// runs at a time: own-ipc takes the same lock.  Held until the process has ended.
void waitForOtherTests() {
  if (getenv("ZOT_TESTS_LOCKED") != nullptr) {
    return;  // by own-ipc, which started this program
  }
  std::fprintf(stderr, "no IPC namespace to be had (%s); waiting for other tests instead\n",
               std::strerror(errno));
  const std::string path = testing::TempDir() + "/zotmacguiutils-tests.lock";
  const int lock = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (lock < 0 || flock(lock, LOCK_EX) != 0) {
    std::fprintf(stderr, "%s: %s\n", path.c_str(), std::strerror(errno));
  }
}

// No test may leave a segment or a semaphore set behind.
class LeftoverCheck : public testing::EmptyTestEventListener {
  void OnTestEnd(const testing::TestInfo&) override { EXPECT_EQ("", zot_test::ipcLeftovers()); }
};

}  // namespace

// Tests release mutexes that another thread holds, to see it refused.
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
extern "C" const char* __tsan_default_options() {
  return "report_mutex_bugs=0";
}
#endif
#endif

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (testing::GTEST_FLAG(list_tests)) {
    return RUN_ALL_TESTS();
  }
  if (enterOwnIpcNamespace()) {
    testing::UnitTest::GetInstance()->listeners().Append(new LeftoverCheck);
  } else {
    waitForOtherTests();
  }
  return RUN_ALL_TESTS();
}
