#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <utmp.h>

#include <cstring>

#include "os/ZotOsSystem.h"
#include "support/Child.h"

namespace {

using namespace zot_test;

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
