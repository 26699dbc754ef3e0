// The bits of the log level by name.
#ifndef ZOT_TOOLS_CTL_LEVEL_H
#define ZOT_TOOLS_CTL_LEVEL_H

#include <cstdint>
#include <string>
#include <vector>

namespace ctl {

// "trace", and for ZOT_LOG_STDOUT "stdout"; bits without a name as one hexadecimal number.
std::vector<std::string> namesIn(uint32_t level);

// "trace stdout (0x20000001)", "none (0x00000000)".
std::string shownLevel(uint32_t level);

// The bits of names, or of numbers; commas separate them too.  Throws tool::Failure.
uint32_t bitsOf(const std::vector<std::string>& names);

// The same bit for a line of one class: "trace".  Throws tool::Failure.
uint32_t classBit(const std::string& name);

inline constexpr char kLevelNames[] = "debug,trace,error,fatal,stdout";

}  // namespace ctl

#endif
