#include "log/ZotLog.h"

#include <fcntl.h>
#include <sys/time.h>
#include <syslog.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdarg>
#include <memory>
#include <string_view>
#include <thread>

#include "log/LogInternal.h"
#include "log/LogLineInternal.h"
#include "support/Child.h"
#include "support/LogFixture.h"

static timeval pinnedTime{0, 0};  // the time of day unless 0; a clock below 0 fails
static std::vector<std::string> opened;
static std::vector<std::pair<std::string, std::string>> logged;  // each format, and what it shows
static std::string_view slowCall;  // it takes its time, as if it held a lock of the C library
static std::atomic<bool> inSlowCall{false};

static void lingerIn(std::string_view call) {
  if (call == slowCall) {
    inSlowCall = true;
    usleep(50000);
    inSlowCall = false;
  }
}

// The linker's --wrap option sends the calls here; nothing reaches the real log.
extern "C" {

int __real_gettimeofday(timeval* now, void* zone);
int __wrap_gettimeofday(timeval* now, void* zone) {
  if (pinnedTime.tv_sec == 0) {
    return __real_gettimeofday(now, zone);
  }
  *now = pinnedTime;
  return now->tv_sec < 0 ? -1 : 0;
}

tm* __real_localtime_r(const time_t* second, tm* local);
tm* __wrap_localtime_r(const time_t* second, tm* local) {
  lingerIn("localtime_r");
  return __real_localtime_r(second, local);
}

void __wrap_openlog(const char* ident, int options, int facility) {
  EXPECT_EQ(LOG_PID, options);
  EXPECT_EQ(LOG_USER, facility);
  opened.emplace_back(ident);
}

void __wrap_syslog(int priority, const char* format, ...) {
  EXPECT_EQ(LOG_INFO, priority);
  lingerIn("syslog");
  char shown[8192];
  va_list args;
  va_start(args, format);
  std::vsnprintf(shown, sizeof shown, format, args);  // NOLINT(clang-analyzer-valist.Uninitialized)
  va_end(args);
  logged.emplace_back(format, shown);
}

}  // extern "C"

namespace {

using namespace zot_test;

TEST(LogLine, IsStampMessageAndNewline) {
  const TestLog log(0x20000001);
  setenv("TZ", "UTC", 1);
  tzset();
  const std::pair<timeval, std::string> cases[] = {
      {{1768465805, 123999}, "26-00-15 08:30:05,123"},
      {{946684799, 7000}, "99-11-31 23:59:59,007"},
      {{946684800, 0}, "100-00-01 00:00:00,000"},  // the year 2000 alone has three digits
      {{978307200, 999999}, "01-00-01 00:00:00,999"},
      {{-1, 0}, "01-00-01 00:00:00,999"},                              // without a clock: the last one again
      {{static_cast<time_t>(INT64_MAX), 0}, "01-00-01 00:00:00,999"},  // in a year too large, too
  };
  for (const auto& [time, stamp] : cases) {
    pinnedTime = time;
    const auto written = captured([] { ZotOsvLog(pstLog, 0x20000000, "TRACE %s(%d): ok", "f", 7); });
    EXPECT_EQ(stamp + " - TRACE f(7): ok\n", written.out + written.err);
    EXPECT_EQ(stamp, cpszGetTime());
  }
  pinnedTime = {};
}

TEST(LogLine, HasTheTimeOfItsZoneAndThread) {
  pinnedTime = {1768465805, 123999};
  const char* const mine = cpszGetTime();
  for (const auto& [zone, hour] : {std::pair("UTC", "08"), {"AAA-2", "10"}, {"AAA-3", "11"}, {"UTC", "08"}}) {
    setenv("TZ", zone, 1);
    EXPECT_EQ("26-00-15 " + std::string(hour) + ":30:05,123", cpszGetTime());
  }
  pinnedTime.tv_sec += 60;
  std::thread([&] { EXPECT_STREQ("26-00-15 08:31:05,123", cpszGetTime()); }).join();
  EXPECT_STREQ("26-00-15 08:30:05,123", mine);
  pinnedTime = {};
}

TEST(LogLine, IsWrittenWhenMaskAndLevelShareMoreThanBitZero) {
  const std::tuple<uint32_t, uint32_t, bool> cases[] = {
      {0x20000001, 0x20000000, true}, {0x20000001, 0x40000000, false}, {0x00000001, 0xFFFFFFFF, false},
      {0x00000005, 0x00000004, true}, {0x00000003, 0x00000003, true},  {0x80000001, 0x68000004, false}};
  for (const auto& [level, mask, passes] : cases) {
    const TestLog log(level);
    const auto written = captured([&, mask = mask] {
      ZotOsvLog(pstLog, mask, "a");
      ZotOsvLogData(pstLog, mask, "b", "", 0, 0);
      ZotOsvvLogData(pstLog, mask, "", 0, 0, "c");
    });
    EXPECT_EQ(passes ? 5 : 0, std::count(written.out.begin(), written.out.end(), '\n'))
        << level << " " << mask;
  }
}

TEST(LogLine, IsCutAtItsBuffer) {
  const TestLog log;
  for (const size_t length : {0u, 1541u, 1542u, 4000u}) {
    const std::string text(length, 'x');
    EXPECT_EQ(length < 1542 ? text + "\n" : std::string(1542, 'x'),
              captured([&] { ZotOsvLog(pstLog, 4, "%s", text.c_str()); }).out.substr(24));
  }
  const char* const none = nullptr;
  EXPECT_EQ("\n", captured([&] { ZotOsvLog(pstLog, 4, none, 0); }).out.substr(24));
  EXPECT_EQ("a\n", captured([] { ZotOsvLog(pstLog, 4, "a%cb", 0); }).out.substr(24)) << "a zero ends it";
}

TEST(LogLine, GoesToAStreamWithoutADescriptor) {
  const TestLog log;
  char* text = nullptr;
  size_t size = 0;
  FILE* const whole = std::exchange(stdout, open_memstream(&text, &size));
  std::fputs("before ", stdout);
  ZotOsvLog(pstLog, 4, "line");
  std::fclose(std::exchange(stdout, whole));
  EXPECT_EQ("before ", std::string(text, 7));
  EXPECT_STREQ(" - line\n", text + 28);
  std::free(text);
}

TEST(LogLine, IsNotLostToSignals) {
  const TestLog log;
  int ends[2];
  ASSERT_EQ(0, pipe(ends));
  fcntl(ends[1], F_SETFL, O_NONBLOCK);
  size_t filled = 0;
  while (write(ends[1], "#", 1) == 1) {
    ++filled;
  }
  fcntl(ends[1], F_SETFL, 0);

  struct sigaction interrupt {
  }, before{};
  interrupt.sa_handler = [](int) {};
  sigaction(SIGALRM, &interrupt, &before);
  sigset_t alarms;
  sigemptyset(&alarms);
  sigaddset(&alarms, SIGALRM);
  pthread_sigmask(SIG_BLOCK, &alarms, nullptr);
  std::string all;
  std::thread reader([&] {
    usleep(50000);  // so long is the line held up
    char piece[4096];
    for (ssize_t count; (count = read(ends[0], piece, sizeof piece)) > 0;) {
      all.append(piece, static_cast<size_t>(count));
    }
  });
  pthread_sigmask(SIG_UNBLOCK, &alarms, nullptr);

  std::fflush(stdout);
  const int terminal = dup(STDOUT_FILENO);
  dup2(ends[1], STDOUT_FILENO);
  close(ends[1]);
  const itimerval often{{0, 1000}, {0, 1000}}, never{};
  setitimer(ITIMER_REAL, &often, nullptr);
  ZotOsvLog(pstLog, 4, "line");
  setitimer(ITIMER_REAL, &never, nullptr);
  dup2(terminal, STDOUT_FILENO);
  close(terminal);
  reader.join();
  close(ends[0]);
  sigaction(SIGALRM, &before, nullptr);
  EXPECT_EQ(" - line\n", all.substr(filled + std::min<size_t>(21, all.size() - filled)));
}

TEST(LogLine, StaysWholeBesideOtherThreads) {
  const auto write = [](char letter) {
    for (int i = 0; i < 200; ++i) {
      ZotOsvLog(pstLog, 4, "%s", std::string(100, letter).c_str());
      ZotOsvSetLogLevel(pstLog, 2);
    }
  };
  std::istringstream lines(told([&] {
    std::thread other(write, 'b');
    write('a');
    other.join();
  }));
  std::map<std::string, int> counts;
  for (std::string line; std::getline(lines, line);) {
    ++counts[line];
  }
  EXPECT_EQ((std::map<std::string, int>{{std::string(100, 'a'), 200}, {std::string(100, 'b'), 200}}), counts);
}

TEST(LogLine, OfACancelledThreadIsWrittenBeforeItEnds) {
  EXPECT_EQ("last\nnext\n", told([] {
              std::thread([] {
                pthread_cancel(pthread_self());
                ZotOsvLog(pstLog, 4, "last");
                pthread_testcancel();
                ADD_FAILURE() << "the cancel is pending no longer";
              }).join();
              ASSERT_EQ(0, ftrylockfile(stdout)) << "the stream is locked";
              funlockfile(stdout);
              ZotOsvLog(pstLog, 4, "next");
            }));
}

TEST(LogLevel, IsReadAndChangedThroughThePointerIfThereIsOne) {
  uint32_t shared = 0x40000000;
  ZotOsLog log{0, &shared, ZOT_LOG_SILENT, {}};
  ZotOsvSetLogLevel(&log, 0x20000001);
  EXPECT_EQ(0x60000001u, shared);
  ZotOsvResLogLevel(&log, 0x40000000);
  EXPECT_EQ(0x20000001u, ZotOsdGetLogLevel(&log));
  EXPECT_EQ(0x80000000u, log.localLevel);

  log.level = nullptr;  // half built
  for (ZotOsLog* none : {static_cast<ZotOsLog*>(nullptr), &log}) {
    ZotOsvSetLogLevel(none, 0xFFFFFFFF);
    ZotOsvResLogLevel(none, 1);
    ZotOsvLog(none, 0xFFFFFFFF, "x");
    EXPECT_EQ(0u, ZotOsdGetLogLevel(none));
  }
}

TEST(LibraryLine, AsksForItsArgumentsOnlyWhenItIsOn) {
  int evaluated = 0;
  const TestLog log(ZOT_LOG_ERROR | ZOT_LOG_STDOUT);
  ZOT_LINE_ERR_IDS(ZOT_LOG_DEBUG, EXDEV, "%d (%d=%s pid=%u tid=%ld)", ++evaluated);
  EXPECT_EQ(0, evaluated);
}

TEST(SystemLog, IsOpenedOnceAndGetsTheMessageAlone) {
  const TestLog log(0x68000004);
  dLogOpen = 0x10000000;  // this bit does not count
  const auto written = captured([] {
    ZotOsvLog(pstLog, 4, "FATAL f: %d", 1);
    ZotOsvLogData(pstLog, 4, "the caller's text", nullptr, 9, 1);
    ZotOsvvLogData(pstLog, 4, "AB", 2, 0, "dump");
  });
  EXPECT_EQ("", written.out);
  EXPECT_EQ(std::vector<std::string>{"ZotOsLog"}, opened);
  EXPECT_EQ(0x10000001u, dLogOpen);
  ASSERT_EQ(3u, logged.size());
  EXPECT_EQ("FATAL f: 1\n|\npvData = NULL !!!|dump len=    2\n\n",
            logged[0].first + "|" + logged[1].first + "|" + logged[2].first);
}

TEST(SystemLog, InterpretsOnlyConversionsThatNeedNoArgument) {
  std::string conversions;
  for (int i = 0; i < 770; ++i) {
    conversions += "%s";
  }
  const std::pair<std::string, std::string> cases[] = {
      {"50%% of %m", "50% of Invalid cross-device link"},
      {"%s %n %5.2f %*d %1$s %'d %9999999m", "%s %n %5.2f %*d %1$s %'d %9999999m"},
      {"%%s %%%s end %", "%s %%s end %"},
      {std::string(1541, '%'), std::string(771, '%')},
      {conversions, conversions},
  };
  const TestLog log(0x68000004);
  for (const auto& [message, shown] : cases) {
    errno = EXDEV;
    ZotOsvLog(pstLog, 4, "%s", message.c_str());
    EXPECT_EQ(EXDEV, errno);
    EXPECT_EQ(shown + "\n", logged.back().second);
  }
}

const std::string kNine(9, ' ');

std::string dump(const void* data, long length, int mode, unsigned int size = 1280) {
  // A block of exactly this size, so that a write past its end is caught.
  const auto text = std::make_unique<char[]>(size);
  vPrepLogData(text.get(), size, data, length, mode);
  return text.get();
}

TEST(HexDump, ShowsFullAndPaddedLines) {
  const unsigned char bytes[] = {0x00, 0x1F, 0x20, 0x41, 0x7E, 0x7F, 0x80, 0xFF, '%', 's',
                                 'J',  'K',  'L',  'M',  'N',  'O',  'P',  'Q',  'R', 0x0A};
  const std::string line = kNine + " 00 1F 20 41 7E 7F 80 FF 25 73 4A 4B 4C 4D 4E 4F   .. A~\x7F..%sJKLMNO\n";
  EXPECT_EQ(" len=   20\n" + line + kNine + " 50 51 52 0A" + std::string(36, ' ') + "   PQR.\n\n",
            dump(bytes, 20, 1));
  EXPECT_EQ(" len=   16\n" + line + "\n", dump(bytes, 16, 1)) << "no empty line behind full ones";
  EXPECT_EQ(" len=    0\n\n", dump(bytes, 0, 1));
  EXPECT_EQ(" len=   -5\n\n", dump(bytes, -5, 1));
  const std::string whole = dump(std::string(100, 'A').data(), 100, 1);
  EXPECT_EQ(" len=  100\n" + kNine + " 41", whole.substr(0, 23));
  EXPECT_EQ(11u + 4 * 77 + 1, whole.size()) << "64 bytes at most";
}

TEST(HexDump, EndsWhereItsRoomEnds) {
  const char bytes[] = "ABCDEFGHIJKLMNOPQRST";
  const std::string full = kNine + " 41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F 50   ABCDEFGHIJKLMNOP\n";
  const std::string tail = full + kNine + " 51 52 53 54", gap(39, ' ');
  // By the characters that may stand behind the length line.  Two more bytes are
  // kept; a line cut within its characters has its newline in one of them.
  const std::map<unsigned int, std::string> cases{{8, "\n"},
                                                  {12, kNine + " 41\n"},
                                                  {59, full.substr(0, 57) + "\n"},
                                                  {60, full.substr(0, 60) + "\n\n"},
                                                  {75, full.substr(0, 75) + "\n"},
                                                  {76, full},
                                                  {86, full + kNine + "\n"},
                                                  {133, tail + "\n"},
                                                  {138, tail + gap + "Q\n"},
                                                  {142, tail + gap + "QRST\n\n"}};
  for (const auto& [limit, expected] : cases) {
    // What the kept bytes cannot take is cut from the end.
    EXPECT_EQ(" len=   20\n" + expected.substr(0, limit + 1), dump(bytes, 20, 1, 11 + limit + 2)) << limit;
  }
  for (unsigned int size = 1; size < 150; ++size) {
    EXPECT_LT(dump(bytes, 20, 1, size).size() + dump(bytes, 5, 2, size).size(), 2 * size);
  }
}

TEST(NumberDump, ListsUpToSixteenNumbers) {
  const int32_t numbers[] = {1, 3, 6, -2147483647 - 1, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17};
  EXPECT_EQ(" len=    3\n   1.3.6\n", dump(numbers, 3, 2));
  EXPECT_EQ(" len=   17\n   1.3.6.-2147483648.5.6.7.8.9.10.11.12.13.14.15.16\n", dump(numbers, 17, 2));
  EXPECT_EQ(" len=    0\n  \n", dump(numbers, 0, 2)) << "the last blank goes where a dot would stand";
  EXPECT_EQ(" len=    3\n\n", dump(numbers, 3, 3));
}

TEST(DataLine, HasItsTextInFrontAndIsCut) {
  const TestLog log;
  const std::string ab = " len=    2\n" + kNine + " 41 42" + std::string(45, ' ') + "AB\n\n";
  const auto withText = [](const std::string& text, const void* data) {
    return captured([&] { ZotOsvLogData(pstLog, 4, text.c_str(), data, 2, 1); }).out.substr(24);
  };
  EXPECT_EQ("ERROR f" + ab, withText("ERROR f", "AB"));
  EXPECT_EQ("ERROR f\npvData = NULL !!!", withText("ERROR f", nullptr));
  for (const size_t length : {232u, 242u, 243u, 1000u}) {
    EXPECT_EQ(std::string(232, 't') + ab, withText(std::string(length, 't'), "AB"));
  }
  const auto withFormat = [](const std::string& text, const void* data) {
    return captured([&] { ZotOsvvLogData(pstLog, 4, data, 2, 1, "%s", text.c_str()); }).out.substr(24);
  };
  EXPECT_EQ("TRACE f:" + ab, withFormat("TRACE f:", "AB"));
  EXPECT_EQ("TRACE f:\npvData = NULL !!!", withFormat("TRACE f:", nullptr));
  EXPECT_EQ("a" + ab, captured([] { ZotOsvvLogData(pstLog, 4, "AB", 2, 1, "a%cb", 0); }).out.substr(24));
  EXPECT_EQ(std::string(1270, 'x') + "\npvData =", withFormat(std::string(1270, 'x'), nullptr));
  EXPECT_EQ(std::string(1279, 'x'), withFormat(std::string(5000, 'x'), "AB"));
}

TEST(ForkedChild, FindsNoLockOfTheCLibraryTaken) {
  for (const auto& [call, level] : {std::pair("localtime_r", kEveryLine), {"syslog", kEveryLine - 1}}) {
    const TestLog log(level);
    slowCall = call;
    std::atomic<bool> ended{false};
    int inCall = -1;
    captured([&] {
      // Detached, or a thread sanitizer misses the join in the child.
      std::thread([&] {
        ZotOsvLog(pstLog, 4, "line");
        ended = true;
      }).detach();
      waitUntil([] { return inSlowCall.load(); });
      inCall = runInChild([] { return inSlowCall ? 1 : 0; });
      waitUntil([&] { return ended.load(); });
    });
    EXPECT_EQ(0, inCall) << call;
    slowCall = {};
  }
}

}  // namespace
