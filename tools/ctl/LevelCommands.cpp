// zot-ctl level, and its set, clear and watch.
#include <time.h>
#include <unistd.h>

#include "log/ZotLog.h"
#include "tools/common/JsonList.h"
#include "tools/ctl/Commands.h"
#include "tools/ctl/Level.h"
#include "tools/ctl/SharedBlock.h"

namespace ctl {

namespace {

tool::Json jsonOf(const std::optional<Snapshot>& block) {
  if (!block) {
    return nullptr;
  }
  return {{"level", block->level}, {"names", namesIn(block->level)}, {"attached", block->segment.attached}};
}

void tellLeftBehind(const std::optional<Snapshot>& block, tool::Output& errors) {
  if (block && block->segment.attached == 0) {
    errors.print("{}; processes that were killed left the block behind, and the next one takes it over\n",
                 kNobody);
  }
}

// change: ZotOsvSetLogLevel or ZotOsvResLogLevel.
tool::Exit change(void (*change)(ZotOsLog*, uint32_t), uint32_t bits, Streams streams) {
  const bool changed = changeBlock([&](SharedControlBlock& block) {
    ZotOsLog log{};
    log.level = &block.Log.value;
    change(&log, bits);
  });
  if (!changed) {
    streams.errors.print("{}: a level set now would be gone with this command\n", kNobody);
    return tool::Exit::Findings;
  }
  return showLevel(false, streams);
}

std::string now() {
  timespec time{};
  clock_gettime(CLOCK_REALTIME, &time);
  tm parts{};
  localtime_r(&time.tv_sec, &parts);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts);
  return fmt::format("{}.{:03}", text, time.tv_nsec / 1000000);
}

}  // namespace

tool::Exit showLevel(bool json, Streams streams) {
  const auto block = readBlock();
  if (json) {
    streams.output.write(tool::jsonText(jsonOf(block), 2) + "\n");
  } else if (block) {
    streams.output.print("{}\n", shownLevel(block->level));
  } else {
    streams.errors.print("{}\n", kNobody);
  }
  streams.output.flush();
  tellLeftBehind(block, streams.errors);
  return block ? tool::Exit::Done : tool::Exit::Findings;
}

tool::Exit setLevel(const std::vector<std::string>& names, Streams streams) {
  return change(ZotOsvSetLogLevel, bitsOf(names), streams);
}

tool::Exit clearLevel(const std::vector<std::string>& names, Streams streams) {
  return change(ZotOsvResLogLevel, bitsOf(names), streams);
}

tool::Exit watchLevel(uint32_t every, bool json, Streams streams) {
  std::optional<uint32_t> shown;  // nothing while no client is there
  for (bool first = true;; first = false, usleep(every * 1000)) {
    const auto block = readBlock();
    const auto level = block ? std::optional(block->level) : std::nullopt;
    if (!first && level == shown) {
      continue;
    }
    shown = level;
    if (json) {
      tool::Json element = jsonOf(block);
      streams.output.write(tool::jsonText({{"time", now()}, {"state", element}}) + "\n");
    } else {
      streams.output.print("{}  {}\n", now(), level ? shownLevel(*level) : kNobody);
    }
    streams.output.flush();
  }
}

}  // namespace ctl
