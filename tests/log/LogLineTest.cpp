#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <thread>

#include "LogSpy.h"
#include "log/LogInternal.h"
#include "log/LogLineInternal.h"
#include "support/LogFixture.h"

namespace {

using namespace zot_test;

constexpr int64_t kJanuary2026 = 1768465805;  // 15 January 2026, 08:30:05 UTC

// Taken before anything is logged: a clock that never worked gives no stamp.
const std::string kStampAtStart = [] {
  const PinnedClock broken(-1, 0);
  return std::string(cpszGetTime());
}();

TEST(LogLine, IsStampMessageAndNewline) {
  TestLog log(0x20000001);
  const PinnedClock clock(kJanuary2026, 123);
  const auto written = captured([&] { ZotOsvLog(&log.object, 0x20000000, "TRACE %s(%d): ok", "f", 7); });
  EXPECT_EQ("26-00-15 08:30:05,123 - TRACE f(7): ok\n", written.out);
  EXPECT_EQ("", written.err);
}

TEST(LogLine, StampHasItsOwnYearAndMonth) {
  const struct {
    int64_t seconds;
    int milliseconds;
    const char* expected;
  } cases[] = {
      {946684799, 7, "99-11-31 23:59:59,007"},    // the last second of 1999
      {946684800, 0, "100-00-01 00:00:00,000"},   // 2000 alone has three digits
      {978307200, 999, "01-00-01 00:00:00,999"},  // 2001
      {1798761599, 50, "26-11-31 23:59:59,050"},
  };
  EXPECT_EQ("", kStampAtStart);
  for (const auto& c : cases) {
    const PinnedClock clock(c.seconds, c.milliseconds);
    EXPECT_STREQ(c.expected, cpszGetTime());
  }
  const PinnedClock broken(-1, 0);
  EXPECT_STREQ("26-11-31 23:59:59,050", cpszGetTime()) << "a clock that fails keeps the last text";
}

TEST(LogLine, IsWrittenWhenMaskAndLevelShareMoreThanBitZero) {
  const struct {
    uint32_t level;
    uint32_t mask;
    bool written;
  } cases[] = {
      {0x20000001, 0x20000000, true},  {0x20000001, 0x40000000, false}, {0x00000001, 0xFFFFFFFF, false},
      {0x00000005, 0x00000004, true},  {0x00000003, 0x00000003, true},  {0x08000001, 0x08000001, true},
      {0x80000001, 0x68000004, false}, {0x80000001, 0x80000000, true},  {0, 0xFFFFFFFF, false},
  };
  for (const auto& c : cases) {
    TestLog log(c.level);
    const auto written = captured([&] {
      ZotOsvLog(&log.object, c.mask, "a");
      ZotOsvLogData(&log.object, c.mask, "b", "", 0, 0);
      ZotOsvvLogData(&log.object, c.mask, "", 0, 0, "c");
    });
    EXPECT_EQ(c.written ? 5 : 0, std::count(written.out.begin(), written.out.end(), '\n'))
        << std::hex << c.level << " " << c.mask;
  }
}

TEST(LogLine, IsCutAtItsBuffer) {
  const TestLog log;
  for (const size_t length : {1541u, 1542u, 1543u, 4000u}) {
    const std::string text(length, 'x');
    const auto lines = captured([&] { ZotOsvLog(pstLog, 4, "%s", text.c_str()); }).out.substr(24);
    EXPECT_EQ(length < 1542 ? text + "\n" : std::string(1542, 'x'), lines) << length;
  }
}

TEST(LogLine, WithoutFormatIsEmpty) {
  const char* const none = nullptr;
  EXPECT_EQ(std::vector<std::string>{""}, logLines([&] { ZotOsvLog(pstLog, 4, none); }));
}

TEST(LogLevel, IsSetResetAndReadThroughThePointer) {
  uint32_t shared = 0x40000000;
  ZotOsLog log{};
  log.localLevel = ZOT_LOG_SILENT;
  log.level = &shared;
  ZotOsvSetLogLevel(&log, 0x20000001);
  EXPECT_EQ(0x60000001u, shared);
  ZotOsvResLogLevel(&log, 0x40000000);
  EXPECT_EQ(0x20000001u, ZotOsdGetLogLevel(&log));
  EXPECT_EQ(0x80000000u, log.localLevel);
}

TEST(LogLevel, OfNoObjectOrAHalfBuiltOneIsZero) {
  ZotOsLog half{};
  for (ZotOsLog* log : {static_cast<ZotOsLog*>(nullptr), &half}) {
    const auto written = captured([&] {
      ZotOsvSetLogLevel(log, 0xFFFFFFFF);
      ZotOsvResLogLevel(log, 1);
      ZotOsvLog(log, 0xFFFFFFFF, "x");
      ZotOsvLogData(log, 0xFFFFFFFF, "x", "x", 1, 1);
      ZotOsvvLogData(log, 0xFFFFFFFF, "x", 1, 1, "x");
    });
    EXPECT_EQ(0u, ZotOsdGetLogLevel(log));
    EXPECT_EQ("", written.out);
  }
}

TEST(LibraryLine, EndsInTheErrorAndTheIds) {
  const std::string ids = "(pid=" + std::to_string(getpid()) + " tid=" + std::to_string(getpid()) + ")";
  const auto lines = logLines([] {
    ZOT_LINE(ZOT_LOG_TRACE, "TRACE plain");
    ZOT_LINE_IDS(ZOT_LOG_TRACE, "TRACE ids(%d) (pid=%u tid=%ld)", 1);
    ZOT_LINE_ERR(ZOT_LOG_ERROR, ENOENT, "ERROR err (%d=%s)");
    ZOT_LINE_ERR_IDS(ZOT_LOG_FATAL, EEXIST, "FATAL both(%s) (%d=%s pid=%u tid=%ld)", "k");
  });
  const std::vector<std::string> expected{"TRACE plain", "TRACE ids(1) " + ids,
                                          "ERROR err (2=No such file or directory)",
                                          "FATAL both(k) (17=File exists " + ids.substr(1)};
  EXPECT_EQ(expected, lines) << "the first thread's id is the process's";
}

TEST(LibraryLine, EvaluatesNothingWhileItIsOff) {
  int evaluated = 0;
  const auto count = [&] { return ++evaluated; };
  const auto lines = logLines(
      [&] {
        ZOT_LINE_ERR_IDS(ZOT_LOG_DEBUG, count(), "%d (%d=%s pid=%u tid=%ld)", count());
        ZOT_LINE(ZOT_LOG_TRACE, "%d", count());
      },
      ZOT_LOG_ERROR | ZOT_LOG_STDOUT);
  EXPECT_EQ(0, evaluated);
  EXPECT_TRUE(lines.empty());
}

TEST(LogLine, LeavesErrnoAlone) {
  const TestLog log;
  captured([] {
    errno = EXDEV;
    ZotOsvLog(pstLog, 4, "x");
    EXPECT_EQ(EXDEV, errno);
  });
}

TEST(LogLine, StaysWholeBesideOtherThreads) {
  const auto lines = logLines([] {
    const auto writer = [](char letter) {
      for (int i = 0; i < 200; ++i) {
        ZotOsvLog(pstLog, 4, "%s", std::string(100, letter).c_str());
        ZotOsvSetLogLevel(pstLog, 2);
        ZotOsvResLogLevel(pstLog, 2);
      }
    };
    std::thread other(writer, 'b');
    writer('a');
    other.join();
  });
  EXPECT_EQ(200, std::count(lines.begin(), lines.end(), std::string(100, 'a')));
  EXPECT_EQ(200, std::count(lines.begin(), lines.end(), std::string(100, 'b')));
}

}  // namespace
