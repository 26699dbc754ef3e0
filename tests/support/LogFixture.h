// A log object for a test, and the lines that code writes through it.
#ifndef ZOT_TESTS_LOG_FIXTURE_H
#define ZOT_TESTS_LOG_FIXTURE_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "log/ZotLog.h"

namespace zot_test {

struct Output {
  std::string out, err;
};

// What body writes to standard output and standard error, whether through stdio,
// straight to the descriptor, or from a child process.
Output captured(const std::function<void()>& body);

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

// The messages that body logs at every level, without their timestamps: one by one,
// and as one text with a newline behind each.
std::vector<std::string> logLines(const std::function<void()>& body, uint32_t level = kEveryLine);
std::string told(const std::function<void()>& body, uint32_t level = kEveryLine);

std::string joined(const std::vector<std::string>& lines);

// How most lines end, when the calling thread logs them.
std::string callerIds();

// Replaces each word of `values` in the lines, and IDS by callerIds().
std::string filled(std::string lines, std::map<std::string, std::string> values = {});

std::string addressText(const void* address);

}  // namespace zot_test

#endif
