#include "LogLines.h"

#include <algorithm>
#include <fstream>

namespace {

constexpr std::ptrdiff_t kMostLines = 1000;
constexpr std::streamoff kMostBytes = 1 << 18;  // of one program at a time
constexpr size_t kStampLength = 21;

}  // namespace

void LogFile::readTo(std::vector<LogLine>& lines) {
  std::ifstream file(path_, std::ios::binary | std::ios::ate);
  const std::streamoff size = file ? static_cast<std::streamoff>(file.tellg()) : at_;
  if (size < at_) {
    at_ = 0;  // the program was started anew
    rest_.clear();
  }
  at_ = std::max(at_, size - kMostBytes);
  std::string fresh(static_cast<size_t>(size - at_), '\0');
  file.seekg(at_);
  file.read(fresh.data(), size - at_);
  at_ += file.gcount();
  rest_.append(fresh, 0, static_cast<size_t>(file.gcount()));
  for (size_t end; (end = rest_.find('\n')) != std::string::npos; rest_.erase(0, end + 1)) {
    if (end > kStampLength && rest_.compare(kStampLength, 3, " - ") == 0) {
      stamp_ = rest_.substr(0, kStampLength);
    }
    lines.push_back({stamp_, program_, rest_.substr(0, end)});
  }
}

bool LogLines::update() {
  std::vector<LogLine> fresh;
  for (LogFile& file : files_) {
    file.readTo(fresh);
  }
  std::stable_sort(fresh.begin(), fresh.end(),
                   [](const LogLine& one, const LogLine& other) { return one.stamp < other.stamp; });
  lines_.insert(lines_.end(), fresh.begin(), fresh.end());
  if (std::ssize(lines_) > kMostLines) {
    lines_.erase(lines_.begin(), lines_.end() - kMostLines);
  }
  return !fresh.empty();
}

bool LogLines::has(std::string_view text, std::string_view program) const {
  return std::any_of(lines_.begin(), lines_.end(), [&](const LogLine& line) {
    return line.program == program && line.text.find(text) != std::string::npos;
  });
}
