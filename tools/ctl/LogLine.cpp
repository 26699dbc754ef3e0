// zot-ctl log.
#include <fmt/format.h>

#include <algorithm>

#include "log/ZotLog.h"
#include "tools/common/Text.h"
#include "tools/ctl/Commands.h"
#include "tools/ctl/Level.h"
#include "tools/ctl/SharedBlock.h"

namespace ctl {

tool::Exit logLine(const std::string& lineClass, const std::string& text, Streams streams) {
  const auto block = readBlock();
  if (!block) {
    streams.errors.print("{}: nothing is written\n", kNobody);
    return tool::Exit::Findings;
  }
  const uint32_t mask = classBit(lineClass);
  if ((block->level & mask) == 0) {
    streams.errors.print("the level is {}: lines of the class {} are not written\n", shownLevel(block->level),
                         lineClass);
    return tool::Exit::Findings;
  }
  std::string word = lineClass;
  std::transform(word.begin(), word.end(), word.begin(),
                 [](char letter) { return static_cast<char>(letter - 32); });
  // An object of our own with a copy of the level: a real one would attach the block.
  ZotOsLog log{};
  log.localLevel = block->level;
  log.level = &log.localLevel;
  ZotOsvLog(&log, mask, "%s zot-ctl: %s", word.c_str(), tool::visible(text).c_str());
  if ((block->level & ZOT_LOG_STDOUT) == 0) {
    streams.errors.print("written to the system log under \"ZotOsLog\"\n");
  }
  return tool::Exit::Done;
}

}  // namespace ctl
