#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>
#include <utmp.h>

#include <csignal>
#include <cstring>
#include <functional>
#include <string>

#include "os/ZotOsSystem.h"
#include "support/Child.h"

namespace {

using namespace zot_test;

// A terminal whose keys the test presses.  Through the master's end it also sees
// the settings that the program at the other end makes.
class Console : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(0, openpty(&keys, &screen, nullptr, nullptr, nullptr));
    ASSERT_EQ(0, tcgetattr(keys, &before));
  }
  void TearDown() override {
    close(keys);
    close(screen);
  }

  // A child with the terminal as its standard input; its exit code is the key.
  Child reader(const std::function<int32_t()>& read) {
    return Child([=, this] {
      setsid();
      dup2(screen, STDIN_FILENO);
      return read() & 0xFF;
    });
  }

  tcflag_t flags() const {
    termios now{};
    tcgetattr(keys, &now);
    return now.c_lflag & (ICANON | ECHO);
  }

  void press(const char* text) const { ASSERT_EQ(1, write(keys, text, 1)); }

  std::string shown() const {
    char text[64];
    fcntl(keys, F_SETFL, O_NONBLOCK);
    const ssize_t got = read(keys, text, sizeof text);
    return {text, got > 0 ? static_cast<size_t>(got) : 0};
  }

  void expectRestored() const {
    termios after{};
    tcgetattr(keys, &after);
    EXPECT_EQ(before.c_lflag, after.c_lflag);
    EXPECT_EQ(0, std::memcmp(before.c_cc, after.c_cc, sizeof before.c_cc));
  }

  int keys = -1;
  int screen = -1;
  termios before{};
};

TEST_F(Console, GivesOneKeyWithoutALine) {
  for (const int32_t echo : {0, 2}) {
    Child child = reader([=] { return ZotOsGetCh(echo); });
    const tcflag_t expected = echo != 0 ? ECHO : 0;
    EXPECT_TRUE(waitUntil([&] { return flags() == expected; }));
    press("k");
    EXPECT_EQ('k', child.wait());
    EXPECT_EQ(echo != 0 ? "k" : "", shown());
    expectRestored();
  }
}

TEST_F(Console, IsPolledWithoutWaiting) {
  EXPECT_EQ(0, reader([] { return ZotOsGetChNoWait(0); }).wait());
  expectRestored();
  // The program changes the mode only while it polls, so it has to poll until the
  // key arrives.
  Child child = reader([] {
    int32_t key = 0;
    waitUntil([&] { return (key = ZotOsGetChNoWait(1)) != 0; });
    return key;
  });
  press("\xE9");
  EXPECT_EQ(0xE9, child.wait());
  expectRestored();
}

TEST_F(Console, AnswersOneWhenReadyGaveNoByte) {
  before.c_lflag &= ~static_cast<tcflag_t>(ICANON);
  tcsetattr(keys, TCSANOW, &before);
  press("x");
  // A process in the background that ignores the stop signals cannot read its
  // terminal, however ready that is.
  EXPECT_EQ(1, reader([&] {
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
