// A log object for a test, and the lines that code writes through it.
#ifndef ZOT_TESTS_LOG_FIXTURE_H
#define ZOT_TESTS_LOG_FIXTURE_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <vector>

#include "log/ZotLog.h"
#include "support/Capture.h"

namespace zot_test {

inline constexpr uint32_t kEveryLine = 0x68000005;  // all masks, to standard output

// While it lives, pstLog is an object with this level word and no shared block.
class TestLog {
 public:
  explicit TestLog(uint32_t level = kEveryLine) : before_(pstLog) {
    object.localLevel = level;
    object.level = &object.localLevel;
    pstLog = &object;
  }
  TestLog(const TestLog&) = delete;
  TestLog& operator=(const TestLog&) = delete;
  ~TestLog() { pstLog = before_; }

  ZotOsLog object{};

 private:
  ZotOsLog* before_;
};

// The lines of a text; each has to begin with a timestamp, which is taken off.
std::vector<std::string> withoutStamps(const std::string& text);

// The messages that body logs at every level, without their timestamps.
std::vector<std::string> logLines(const std::function<void()>& body, uint32_t level = kEveryLine);

// How most lines end, when the calling thread logs them.
inline std::string callerIds() {
  return "pid=" + std::to_string(getpid()) + " tid=" + std::to_string(gettid());
}

}  // namespace zot_test

#endif
