#include "support/LogFixture.h"

#include <regex>

namespace zot_test {

Output captured(const std::function<void()>& body) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  body();
  std::string err = testing::internal::GetCapturedStderr();
  return {testing::internal::GetCapturedStdout(), std::move(err)};
}

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

std::string told(const std::function<void()>& body, uint32_t level) {
  return joined(logLines(body, level));
}

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const auto& line : lines) {
    text += line + "\n";
  }
  return text;
}

std::string callerIds() {
  return "pid=" + std::to_string(getpid()) + " tid=" + std::to_string(gettid());
}

std::string filled(std::string lines, std::map<std::string, std::string> values) {
  values["IDS"] = callerIds();
  for (const auto& [word, value] : values) {
    lines = std::regex_replace(lines, std::regex(word + "\\b"), value);
  }
  return lines;
}

std::string addressText(const void* address) {
  return (std::ostringstream() << address).str();
}

}  // namespace zot_test
