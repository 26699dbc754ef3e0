#include "support/LogFixture.h"

#include <regex>

namespace zot_test {

Output captured(const Body& body) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  body();
  std::string err = testing::internal::GetCapturedStderr();
  return {testing::internal::GetCapturedStdout(), std::move(err)};
}

std::string stampless(const Body& body) {
  static const std::regex kStamp("^\\d\\d-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d,\\d\\d\\d - ");
  std::istringstream lines(captured(body).out);
  std::string all;
  for (std::string line; std::getline(lines, line);) {
    EXPECT_TRUE(std::regex_search(line, kStamp)) << line;
    all += std::regex_replace(line, kStamp, "") + "\n";
  }
  return all;
}

std::string told(const Body& body, uint32_t level) {
  const TestLog log(level);
  return stampless(body);
}

std::string filled(std::string lines, std::map<std::string, Shown> values) {
  values.insert({"IDS", "pid=" + std::to_string(getpid()) + " tid=" + std::to_string(gettid())});
  for (const auto& [word, value] : values) {
    lines = std::regex_replace(lines, std::regex(word + "\\b"), value.text);
  }
  return lines;
}

}  // namespace zot_test
