#include "os/ZotOsSystem.h"

#include <fcntl.h>
#include <pthread.h>
#include <pty.h>
#include <sys/select.h>
#include <termios.h>
#include <utmp.h>

#include <cstring>
#include <ctime>

#include "os/ZotOsSystemInternal.h"
#include "os/ZotOsThread.h"
#include "support/Child.h"
#include "support/LogFixture.h"

using Pause = std::pair<long, long>;  // seconds and microseconds
static std::vector<Pause> pauses;

// The linker's --wrap option sends the calls here.  Only a wait without any
// descriptor is a sleep, and no test has to sit through it.
extern "C" int __real_select(int count, fd_set* in, fd_set* out, fd_set* bad, timeval* wait);
extern "C" int __wrap_select(int count, fd_set* in, fd_set* out, fd_set* bad, timeval* wait) {
  if (count != 0) {
    return __real_select(count, in, out, bad, wait);
  }
  pauses.emplace_back(wait->tv_sec, wait->tv_usec);
  return -static_cast<int>(pauses.size());
}

namespace {

using namespace zot_test;

TEST(Sleep, DropsWhatIsLeftBesideWholeSeconds) {
  int32_t call = 0;
  for (const uint32_t milliseconds : {50u, 999u, 1000u, 1001u, 2999u, 4294967295u}) {
    EXPECT_EQ(--call, ZotOsSleep(milliseconds)) << "the result is that of the wait";
  }
  EXPECT_EQ((std::vector<Pause>{{0, 50000}, {0, 999000}, {1, 0}, {1, 1}, {2, 999}, {4294967, 295}}), pauses);
}

TEST(SystemState, GoesDownAndUpAndIsClaimedOnceByEachLibrary) {
  EXPECT_EQ(1u, ZotOsGetSystemUp());
  EXPECT_EQ("### ZotOsSetShutdown: shutd=1\n", told([] { ZotOsSetShutdown(); }, kErrors));
  EXPECT_EQ(0u, ZotOsGetSystemUp());
  ZotOsSetSystemUp();
  EXPECT_EQ(1u, ZotOsGetSystemUp());

  EXPECT_EQ(0, ZotOsIsOpenSslInitialized());
  EXPECT_EQ(1, ZotOsIsOpenSslInitialized());
  EXPECT_EQ(0, bSslInit);
  EXPECT_EQ(0, ZotOsIsSslInitialized());
  EXPECT_EQ(2, bSslInit + bOpenSslInit);
}

TEST(Time, CountsFromTheFirstInitialisation) {
  const auto now = static_cast<double>(std::time(nullptr));
  dZotOsUpTime = 0;
  EXPECT_LE(ZotOsGetUpTime(), 2u);
  EXPECT_NEAR(now, dZotOsUpTime, 2);
  for (const int32_t ago : {1000, -1000}) {  // the clock may be set back
    dZotOsUpTime = ZotOsGetTimeInSec() - ago;
    ZotOsInit();
    EXPECT_NEAR(ago, static_cast<int32_t>(ZotOsGetUpTime()), 2);
  }
  dZotOsUpTime = -2147483647;
  EXPECT_NEAR(now + 2147483647.0, ZotOsGetUpTime(), 2);
  EXPECT_LE(ZotOsGetTimeInmSec() - static_cast<uint32_t>(static_cast<uint64_t>(now) * 1000), 3000u);
}

TEST(Handles, OfLibrariesAndDescriptors) {
  void* const library = ZotOsDlLoad("libm.so.6");
  EXPECT_NE(nullptr, ZotOsDlGetAddr(library, "cos"));
  for (void* const null : {ZotOsDlLoad(nullptr), ZotOsDlLoad(""), ZotOsDlGetAddr(library, nullptr),
                           ZotOsDlGetAddr(library, ""), ZotOsDlGetAddr(nullptr, "cos")}) {
    EXPECT_EQ(nullptr, null);
  }
  EXPECT_EQ(2u, ZotOsDlFree(library) + ZotOsDlFree(nullptr));
  const int descriptor = dup(STDIN_FILENO);
  EXPECT_EQ(1u, ZotOsCloseHdl(descriptor));
  EXPECT_EQ(0u, ZotOsCloseHdl(descriptor));
}

// Here, because no other test of this program has made the process's key before.
TEST(Thread, IsNotBegunWhereItsEndWouldNotBeSeen) {
  EXPECT_EQ(0, runInChild([] {
              for (pthread_key_t key = 0; pthread_key_create(&key, nullptr) == 0;) {
              }
              uint32_t handle = 77;
              const auto run = [](void*) -> void* { return nullptr; };
              EXPECT_EQ(0u, ZotOsThreadBegin(&handle, run, 0, nullptr));
              EXPECT_EQ(0u, handle);
              return 0;
            }));
}

TEST(ComputerName, IsCutWhenItDoesNotFit) {
  char whole[256], name[260];
  ASSERT_EQ(0, gethostname(whole, sizeof whole));
  const auto length = static_cast<uint32_t>(std::strlen(whole));
  uint32_t size = length + 1;
  EXPECT_EQ(1u, ZotOsGetComputerName(name, &size));
  EXPECT_EQ(std::pair(std::string(whole), length), std::pair(std::string(name), size));
  EXPECT_EQ(0u, ZotOsGetComputerName(name, &size)) << "without room for the terminator";
  EXPECT_EQ(std::pair(std::string(whole, length - 1), length), std::pair(std::string(name), size));
  uint32_t none = 0;
  EXPECT_EQ(0u, ZotOsGetComputerName(nullptr, &size) + ZotOsGetComputerName(name, nullptr) +
                    ZotOsGetComputerName(name, &none));
}

// A terminal whose keys the test presses.  Through their end it also sees the
// settings that the program at the other end makes.
class Console : public testing::Test {
 protected:
  Console() {
    openpty(&keys, &screen, nullptr, nullptr, nullptr);
    before = settings();
  }

  ~Console() override {
    const termios after = settings();
    EXPECT_EQ(before.c_lflag, after.c_lflag);
    EXPECT_EQ(0, std::memcmp(before.c_cc, after.c_cc, sizeof before.c_cc)) << "not put back";
    close(keys);
    close(screen);
  }

  // A child with the terminal as its standard input; its exit code is the key.
  Child reader(const std::function<int32_t()>& read) const {
    return Child([=, this] {
      dup2(screen, STDIN_FILENO);
      return read() & 0xFF;
    });
  }

  termios settings() const {
    termios now{};
    tcgetattr(keys, &now);
    return now;
  }

  int keys = -1, screen = -1;
  termios before{};
};

TEST_F(Console, GivesOneKeyWithoutALine) {
  for (const bool echo : {false, true}) {
    Child child = reader([=] { return ZotOsGetCh(echo ? 2 : 0); });
    EXPECT_TRUE(waitUntil([&] { return (settings().c_lflag & (ICANON | ECHO)) == (echo ? ECHO : 0u); }));
    EXPECT_EQ(1, write(keys, "k", 1));
    EXPECT_EQ('k', child.wait());
    char shown[8] = {};
    fcntl(keys, F_SETFL, O_NONBLOCK);
    EXPECT_EQ(echo ? 1 : -1, read(keys, shown, sizeof shown));
    EXPECT_STREQ(echo ? "k" : "", shown);
  }
}

TEST_F(Console, IsPutBackWhenTheReaderIsCancelled) {
  EXPECT_EQ(7, reader([] {
                 pthread_t waiting;
                 void* result = nullptr;
                 const auto readCancelled = [](void*) -> void* {
                   pthread_cancel(pthread_self());
                   ZotOsGetCh(0);
                   return nullptr;
                 };
                 pthread_create(&waiting, nullptr, readCancelled, nullptr);
                 pthread_join(waiting, &result);
                 return result == PTHREAD_CANCELED ? 7 : 1;
               }).wait());
}

TEST_F(Console, IsPolledWithoutWaiting) {
  EXPECT_EQ(0, reader([] { return ZotOsGetChNoWait(0); }).wait());
  EXPECT_EQ(2, write(keys, "\xE9x", 2));
  EXPECT_EQ(0xE9, reader([] { return ZotOsGetChNoWait(1); }).wait());
  // A process in the background that ignores the stop signals cannot read its
  // terminal, however ready that is.
  EXPECT_EQ(1, reader([] {
                 setsid();
                 login_tty(dup(STDIN_FILENO));
                 std::signal(SIGTTIN, SIG_IGN);
                 std::signal(SIGTTOU, SIG_IGN);
                 return runInChild([] {
                   setpgid(0, 0);
                   return ZotOsGetChNoWait(0);
                 });
               }).wait());
}

TEST_F(Console, GivesMinusOneWithoutATerminal) {
  close(screen);
  screen = open("/dev/null", O_RDONLY);
  EXPECT_EQ(0xFF, reader([] { return ZotOsGetCh(0); }).wait());
  EXPECT_EQ(0xFF, reader([] { return ZotOsGetChNoWait(0); }).wait());
}

}  // namespace
