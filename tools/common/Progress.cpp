#include "tools/common/Progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>

namespace tool {

namespace {

constexpr auto kPatience = std::chrono::seconds(1);
constexpr auto kPause = std::chrono::milliseconds(100);  // between two pictures

bool shown = false;

}  // namespace

Progress::Progress(std::string what, uint64_t total)
    : what_(std::move(what)),
      total_(total),
      wanted_(isatty(STDERR_FILENO) != 0),
      next_(std::chrono::steady_clock::now() + kPatience) {}

Progress::~Progress() {
  hide();
}

void Progress::hide() {
  if (shown) {
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
    shown = false;
  }
}

void Progress::show(uint64_t done) {
  const auto now = std::chrono::steady_clock::now();
  if (now < next_) {
    return;
  }
  next_ = now + kPause;
  const std::string figure = total_ != 0 ? fmt::format("{} %", done * 100 / total_) : fmt::format("{}", done);
  fmt::print(stderr, "\r{} {}\033[K", what_, figure);
  std::fflush(stderr);
  shown = true;
}

}  // namespace tool
