// The clock and the system log as the test program's calls of them see both: the
// linker leads those calls here.
#ifndef ZOT_TESTS_LOG_SPY_H
#define ZOT_TESTS_LOG_SPY_H

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace zot_test {

// The seconds since the epoch (UTC) and the milliseconds that gettimeofday gives
// while one stands; the clock fails when seconds is below 0.
class PinnedClock {
 public:
  PinnedClock(int64_t seconds, int milliseconds);
  ~PinnedClock();
  PinnedClock(const PinnedClock&) = delete;
  PinnedClock& operator=(const PinnedClock&) = delete;
};

struct SyslogCall {
  int priority;
  std::string format;
  std::string shown;  // what the format makes when nobody passes an argument
};

// What reached the system log since the last reset; nothing goes to the real one.
struct SyslogSpy {
  std::atomic<int> opened = 0;
  std::string ident = {};
  int options = 0;
  int facility = 0;
  std::vector<SyslogCall> calls = {};
};
extern SyslogSpy syslogSpy;

}  // namespace zot_test

#endif
