// zot-ctl status.
#include <grp.h>
#include <pwd.h>

#include <algorithm>

#include "tools/common/JsonList.h"
#include "tools/common/Text.h"
#include "tools/ctl/Commands.h"
#include "tools/ctl/Level.h"
#include "tools/ctl/Processes.h"
#include "tools/ctl/SharedBlock.h"

namespace ctl {

namespace {

std::string ownerOf(const Segment& segment) {
  const passwd* const user = getpwuid(segment.owner);
  const group* const members = getgrgid(segment.group);
  return fmt::format("{}:{}", user != nullptr ? user->pw_name : std::to_string(segment.owner),
                     members != nullptr ? members->gr_name : std::to_string(segment.group));
}

// "2 days 3:20:05".
std::string ageText(int64_t seconds) {
  const std::string days =
      seconds >= 86400 ? tool::counted(static_cast<uint64_t>(seconds / 86400), "day") + " " : "";
  return fmt::format("{}{}:{:02}:{:02}", days, seconds / 3600 % 24, seconds / 60 % 60, seconds % 60);
}

int64_t ageOf(const Segment& segment) {
  return std::max<int64_t>(0, time(nullptr) - segment.created);
}

size_t slotsInUse(const Snapshot& block) {
  return static_cast<size_t>(std::count_if(std::begin(block.slots), std::end(block.slots), inUse));
}

// What does not add up; empty when all does.
std::string difference(const Snapshot& block) {
  if (block.processes > block.segment.attached) {
    return fmt::format(
        "ProcCnt counts {} more than are attached: processes ended without closing what they had open",
        block.processes - block.segment.attached);
  }
  return "";
}

tool::Json processJson(pid_t pid) {
  return {
      {"pid", pid}, {"command", alive(pid) ? tool::Json(commandOf(pid)) : nullptr}, {"alive", alive(pid)}};
}

void printJson(const Snapshot& block, const std::vector<pid_t>& pids, tool::Output& output) {
  const Segment& segment = block.segment;
  tool::Json processes = tool::Json::array();
  for (const pid_t pid : pids) {
    processes.push_back(processJson(pid));
  }
  const tool::Json words = {{"Log", block.level},
                            {"ProcCnt", block.processes},
                            {"GlobSemCnt", block.semaphores},
                            {"NamedSemCnt", block.references},
                            {"MaxNamedIdx", block.highestSlot},
                            {"slotsInUse", slotsInUse(block)}};
  const tool::Json status = {{"key", kSharedBlockKey},         {"id", segment.id},
                             {"size", segment.size},           {"mode", fmt::format("{:04o}", segment.mode)},
                             {"owner", ownerOf(segment)},      {"created", segment.created},
                             {"age", ageOf(segment)},          {"words", words},
                             {"level", namesIn(block.level)},  {"attached", segment.attached},
                             {"processes", processes},         {"creator", processJson(segment.creator)},
                             {"difference", difference(block)}};
  output.write(tool::jsonText(status, 2) + "\n");
}

void printText(const Snapshot& block, const std::vector<pid_t>& pids, tool::Output& output) {
  const Segment& segment = block.segment;
  const auto line = [&](std::string_view name, const std::string& value) {
    output.print("{}  {}\n", output.paint(tool::Colour::Bold, fmt::format("{:<11}", name)), value);
  };
  line("segment", fmt::format("{} (key {:#x}), {} bytes, mode {:04o}, {}", segment.id, kSharedBlockKey,
                              segment.size, segment.mode, ownerOf(segment)));
  line("age", ageText(ageOf(segment)));
  line("creator", shownProcess(segment.creator));
  line("Log", shownLevel(block.level));
  line("ProcCnt", std::to_string(block.processes));
  line("GlobSemCnt", std::to_string(block.semaphores));
  line("NamedSemCnt", std::to_string(block.references));
  line("MaxNamedIdx", std::to_string(block.highestSlot));
  line("slots", fmt::format("{} of {} in use", slotsInUse(block), kNamedSlots));
  line("attached", tool::counted(segment.attached, "time"));
  for (const pid_t pid : pids) {
    line("process", fmt::format("{} {}", shownProcess(pid), alive(pid) ? "alive" : ""));
  }
  if (pids.empty() && segment.attached != 0) {
    line("process", "not to be seen by this user, or in another container");
  }
  if (const std::string text = difference(block); !text.empty()) {
    line("difference", output.paint(tool::Colour::Yellow, text));
  }
}

}  // namespace

tool::Exit showStatus(bool json, Streams streams) {
  const auto block = readBlock();
  if (!block) {
    streams.output.write(json ? "null\n" : "");
    streams.output.flush();
    streams.errors.print("{}: there is no shared block\n", kNobody);
    return tool::Exit::Findings;
  }
  const std::vector<pid_t> pids = attachedTo(block->segment.id);
  (json ? printJson : printText)(*block, pids, streams.output);
  return difference(*block).empty() ? tool::Exit::Done : tool::Exit::Findings;
}

}  // namespace ctl
