#include "support/LogFixture.h"

#include <regex>
#include <sstream>

namespace zot_test {

std::vector<std::string> withoutStamps(const std::string& text) {
  static const std::regex kStamp("^\\d\\d-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d,\\d\\d\\d - ");
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    std::smatch stamp;
    EXPECT_TRUE(std::regex_search(line, stamp, kStamp)) << line;
    lines.push_back(stamp.suffix());
  }
  return lines;
}

std::vector<std::string> logLines(const std::function<void()>& body, uint32_t level) {
  const TestLog log(level);
  return withoutStamps(captured(body).out);
}

}  // namespace zot_test
