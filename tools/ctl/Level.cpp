#include "tools/ctl/Level.h"

#include <fmt/format.h>

#include <sstream>

#include "log/ZotLog.h"
#include "tools/common/Failure.h"
#include "tools/common/Text.h"

namespace ctl {

namespace {

struct Bit {
  const char* name;
  uint32_t mask;
};

constexpr Bit kBits[] = {{"debug", ZOT_LOG_DEBUG},
                         {"trace", ZOT_LOG_TRACE},
                         {"error", ZOT_LOG_ERROR},
                         {"fatal", ZOT_LOG_FATAL},
                         {"stdout", ZOT_LOG_STDOUT}};

uint32_t bitOf(const std::string& name) {
  for (const Bit& bit : kBits) {
    if (name == bit.name) {
      return bit.mask;
    }
  }
  const auto number = tool::numberFrom(name, UINT32_MAX);
  if (!number) {
    throw tool::Failure(
        fmt::format("'{}' is neither a number nor one of {}", tool::visible(name), kLevelNames));
  }
  return static_cast<uint32_t>(*number);
}

}  // namespace

std::vector<std::string> namesIn(uint32_t level) {
  std::vector<std::string> names;
  for (const Bit& bit : kBits) {
    if ((level & bit.mask) != 0) {
      names.push_back(bit.name);
      level &= ~bit.mask;
    }
  }
  if (level != 0) {
    names.push_back(fmt::format("{:#x}", level));
  }
  return names;
}

std::string shownLevel(uint32_t level) {
  const std::vector<std::string> names = namesIn(level);
  return fmt::format("{} ({:#010x})", names.empty() ? "none" : fmt::format("{}", fmt::join(names, " ")),
                     level);
}

uint32_t bitsOf(const std::vector<std::string>& names) {
  uint32_t bits = 0;
  for (const std::string& list : names) {
    std::istringstream words(list);
    for (std::string name; std::getline(words, name, ',');) {
      bits |= bitOf(name);
    }
  }
  return bits;
}

uint32_t classBit(const std::string& name) {
  return bitOf(name);
}

}  // namespace ctl
