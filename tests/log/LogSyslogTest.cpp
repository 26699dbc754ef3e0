#include <gtest/gtest.h>
#include <syslog.h>

#include <cerrno>
#include <string>

#include "LogSpy.h"
#include "log/LogInternal.h"
#include "support/LogFixture.h"

namespace {

using namespace zot_test;

constexpr uint32_t kToSystemLog = 0x68000004;

class SystemLog : public testing::Test {
 protected:
  SystemLog() {
    dLogOpen = 0;
    syslogSpy.opened = 0;
    syslogSpy.calls.clear();
  }

  std::string last() const { return syslogSpy.calls.empty() ? "(none)" : syslogSpy.calls.back().shown; }

  TestLog log{kToSystemLog};
};

TEST_F(SystemLog, IsOpenedOnceAndGetsTheMessageAlone) {
  const auto written = captured([&] {
    ZotOsvLog(&log.object, 4, "FATAL f: %d", 1);
    ZotOsvLogData(&log.object, 4, "the caller's text", nullptr, 9, 1);
    ZotOsvvLogData(&log.object, 4, "AB", 2, 1, "dump");
  });
  EXPECT_EQ("", written.out);
  EXPECT_EQ(1, syslogSpy.opened);
  EXPECT_EQ("ZotOsLog", syslogSpy.ident);
  EXPECT_EQ(LOG_PID, syslogSpy.options);
  EXPECT_EQ(LOG_USER, syslogSpy.facility);
  ASSERT_EQ(3u, syslogSpy.calls.size());
  EXPECT_EQ(LOG_INFO, syslogSpy.calls[0].priority);
  EXPECT_EQ("FATAL f: 1\n", syslogSpy.calls[0].format);
  EXPECT_EQ("\npvData = NULL !!!", syslogSpy.calls[1].format);
  EXPECT_EQ("dump len=    2\n          41 42" + std::string(45, ' ') + "AB\n\n", syslogSpy.calls[2].format);
}

TEST_F(SystemLog, OpensByAllButOneBitOfItsCounter) {
  const struct {
    uint32_t before;
    int opened;
    uint32_t after;
  } cases[] = {{0, 1, 1}, {1, 0, 1}, {0x10000000, 1, 0x10000001}, {0x20000000, 0, 0x20000000}};
  for (const auto& c : cases) {
    dLogOpen = c.before;
    syslogSpy.opened = 0;
    vWrLog(0, nullptr, "x");
    EXPECT_EQ(c.opened, syslogSpy.opened) << std::hex << c.before;
    EXPECT_EQ(c.after, dLogOpen) << std::hex << c.before;
  }
}

TEST_F(SystemLog, InterpretsOnlyConversionsThatNeedNoArgument) {
  const struct {
    const char* message;
    const char* shown;
  } cases[] = {
      {"50%% of %m", "50% of Invalid cross-device link"},
      {"%s %d %n %5.2f %*d", "%s %d %n %5.2f %*d"},
      {"%1$s %ls %hhn %'d", "%1$s %ls %hhn %'d"},
      {"%9999999m", "%9999999m"},
      {"%%s %%%s", "%s %%s"},
      {"end %", "end %"},
      {"", ""},
  };
  for (const auto& c : cases) {
    errno = EXDEV;
    ZotOsvLog(&log.object, 4, "%s", c.message);
    EXPECT_EQ(std::string(c.shown) + "\n", last());
    EXPECT_EQ(EXDEV, errno);
  }
  const std::string percents(1541, '%');
  ZotOsvLog(&log.object, 4, "%s", percents.c_str());
  EXPECT_EQ(std::string(771, '%') + "\n", last());
  std::string conversions;
  while (conversions.size() < 1540) {
    conversions += "%s";
  }
  ZotOsvLog(&log.object, 4, "%s", conversions.c_str());
  EXPECT_EQ(conversions + "\n", last());
}

}  // namespace
