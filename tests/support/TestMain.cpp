#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

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

// No test may leave a segment or a semaphore set behind.  A segment that is removed
// and goes with its last user does not count; the mode has a bit for that.
class LeftoverCheck : public testing::EmptyTestEventListener {
  void OnTestEnd(const testing::TestInfo&) override {
    for (const char* path : {"/proc/sysvipc/shm", "/proc/sysvipc/sem"}) {
      std::ifstream table(path);
      std::string line;
      std::getline(table, line);  // the headings
      while (std::getline(table, line)) {
        long key = 0, id = 0, mode = 0;
        std::istringstream(line) >> key >> id >> std::oct >> mode;
        EXPECT_NE(0, mode & 01000) << path << " lists " << line;
      }
    }
  }
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
  if (!enterOwnIpcNamespace()) {
    std::fprintf(stderr, "no IPC namespace of our own: %s\n", std::strerror(errno));
    return 1;
  }
  testing::UnitTest::GetInstance()->listeners().Append(new LeftoverCheck);
  return RUN_ALL_TESTS();
}
