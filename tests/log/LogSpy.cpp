#include "LogSpy.h"

#include <sys/time.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace zot_test {

namespace {

bool pinned = false;
timeval pinnedTime{};

}  // namespace

SyslogSpy syslogSpy;

PinnedClock::PinnedClock(int64_t seconds, int milliseconds) {
  setenv("TZ", "UTC", 1);
  tzset();
  pinnedTime.tv_sec = static_cast<time_t>(seconds);
  pinnedTime.tv_usec = milliseconds * 1000 + 999;
  pinned = true;
}

PinnedClock::~PinnedClock() {
  pinned = false;
}

}  // namespace zot_test

using namespace zot_test;

extern "C" {

int __real_gettimeofday(timeval* now, void* zone);

int __wrap_gettimeofday(timeval* now, void* zone) {
  if (!pinned) {
    return __real_gettimeofday(now, zone);
  }
  *now = pinnedTime;
  return pinnedTime.tv_sec < 0 ? -1 : 0;
}

void __wrap_openlog(const char* ident, int options, int facility) {
  syslogSpy.ident = ident;
  syslogSpy.options = options;
  syslogSpy.facility = facility;
  ++syslogSpy.opened;
}

void __wrap_syslog(int priority, const char* format, ...) {
  char shown[8192];
  va_list args;
  va_start(args, format);
  std::vsnprintf(shown, sizeof shown, format, args);
  va_end(args);
  syslogSpy.calls.push_back({priority, format, shown});
}

}  // extern "C"
