// A log object for a test, and the lines that code writes through it.
#ifndef ZOT_TESTS_LOG_FIXTURE_H
#define ZOT_TESTS_LOG_FIXTURE_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <functional>
#include <map>
#include <sstream>

#include "log/LogLineInternal.h"

namespace zot_test {

using Body = std::function<void()>;
using Results = std::vector<uint32_t>;  // of several calls, in their order

struct Output {
  std::string out, err;
};

// What body writes to standard output and standard error, whether through stdio,
// straight to the descriptor, or from a child process.
Output captured(const Body& body);

inline constexpr uint32_t kEveryLine = 0x68000005;  // all masks, to standard output
inline constexpr uint32_t kErrors = ZOT_LOG_ERROR | ZOT_LOG_STDOUT;

// While it lives, pstLog is an object with this level word and no shared block.
class TestLog {
 public:
  explicit TestLog(uint32_t level = kEveryLine) : object{0, &object.localLevel, level, {}} {
    pstLog = &object;
  }
  TestLog(TestLog&&) = delete;
  ~TestLog() { pstLog = before_; }

  ZotOsLog object;

 private:
  ZotOsLog* before_ = pstLog;
};

// The lines of body's standard output without the timestamp that each begins with,
// and of what it logs at this level.
std::string stampless(const Body& body);
std::string told(const Body& body, uint32_t level = kEveryLine);

// Anything as a stream shows it.
struct Shown {
  template <typename Value>
  Shown(const Value& value) : text((std::ostringstream() << value).str()) {}
  std::string text;
};

// Replaces words in the lines, and IDS by the process and the calling thread.
std::string filled(std::string lines, std::map<std::string, Shown> values = {});

}  // namespace zot_test

#endif
