// zot-ctl sem list and sem clean.
#include <fmt/format.h>
#include <sys/ipc.h>
#include <sys/sem.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "tools/common/JsonList.h"
#include "tools/common/Text.h"
#include "tools/ctl/Commands.h"
#include "tools/ctl/Processes.h"
#include "tools/ctl/Semaphores.h"

namespace ctl {

namespace {

using tool::Colour;

constexpr char kNoTable[] = "no process of the client is attached: there is no table of semaphores";

std::string noteOf(const SemaphoreRow& row) {
  if (!row.difference.empty()) {
    return row.difference;
  }
  if (row.left) {
    return "left behind";
  }
  return row.slot ? "" : "not in the table";
}

template <typename Value>
std::string orDash(bool there, const Value& value) {
  return there ? fmt::format("{}", value) : "-";
}

void printRow(const SemaphoreRow& row, tool::Output& output) {
  const SystemSet set = row.set.value_or(SystemSet{});
  const Slot slot = row.slot.value_or(Slot{});
  const bool known = row.set.has_value();
  const std::string line = fmt::format(
      "{:>4}  {:<10}  {:>10}  {:>5}  {:>4}  {:>7}  {:<20}", orDash(row.slot.has_value(), slot.index),
      known ? fmt::format("{:#010x}", static_cast<uint32_t>(set.key)) : "-", known ? set.id : slot.semId,
      orDash(known, set.value), orDash(row.slot.has_value(), slot.count), orDash(known, set.waiters),
      known ? shownProcess(set.last) : "-");
  const Colour colour = row.difference.empty() ? Colour::Dim : Colour::Yellow;
  const std::string note = noteOf(row);
  output.print("{}\n", note.empty() ? line.substr(0, line.find_last_not_of(' ') + 1)
                                    : fmt::format("{}  {}", line, output.paint(colour, note)));
}

tool::Json jsonOf(const SemaphoreRow& row) {
  tool::Json element = {{"slot", nullptr}, {"key", nullptr}, {"id", row.set ? row.set->id : row.slot->semId}};
  if (row.slot) {
    element["slot"] = row.slot->index;
    element["references"] = row.slot->count;
  }
  if (row.set) {
    element["key"] = static_cast<uint32_t>(row.set->key);
    element["value"] = row.set->value;
    element["waiters"] = row.set->waiters;
    element["last"] = {{"pid", row.set->last}, {"alive", alive(row.set->last)}};
  }
  element["leftBehind"] = row.left;
  element["note"] = noteOf(row);
  return element;
}

void lower(SharedWord<uint32_t>& word, uint32_t by) {
  for (uint32_t seen = word.load(); !word.replace(seen, seen - std::min(seen, by));) {
    seen = word.load();
  }
}

// As the last close would have done: the set goes, then its slot and its references.
void remove(const SemaphoreRow& row) {
  if (semctl(row.set->id, 0, IPC_RMID) == -1 && errno != EINVAL && errno != EIDRM) {
    throw tool::Failure(fmt::format("semaphore {}: {}", row.set->id, std::strerror(errno)));
  }
  changeBlock([&](SharedControlBlock& block) {
    SharedControlBlock::Slot& slot = block.cnt[row.slot->index];
    if (slot.semId.replace(row.set->id, kFreeSlot)) {
      slot.count.store(0);
      lower(block.NamedSemCnt, row.slot->count);
      lower(block.GlobSemCnt, row.slot->count);
    }
  });
}

// Whether it is still so: another process may have taken the semaphore up meanwhile.
bool stillLeft(const SemaphoreRow& row) {
  const auto set = systemSet(row.set->id);
  return set && set->key == row.set->key && isLeftBehind(*set);
}

}  // namespace

tool::Exit listSemaphores(bool json, Streams streams) {
  // Without a table there are still the sets in the system.
  const auto block = readBlock();
  bool differences = !block;
  tool::JsonList list(streams.output);
  if (!json && streams.output.terminal()) {
    streams.output.print(
        "{}\n", streams.output.paint(Colour::Bold,
                                     "slot  key         identifier  value  refs  waiters  last process"));
  }
  for (const SemaphoreRow& row : matched(block.value_or(Snapshot{}), systemSets())) {
    differences = differences || !row.difference.empty();
    if (json) {
      list.add(jsonOf(row));
    } else {
      printRow(row, streams.output);
    }
  }
  if (json) {
    list.finish();
  }
  const std::string counts = block ? countDifference(*block) : kNoTable;
  streams.output.flush();
  if (!counts.empty()) {
    streams.errors.print("{}\n", counts);
  }
  return differences || !counts.empty() ? tool::Exit::Findings : tool::Exit::Done;
}

tool::Exit cleanSemaphores(bool yes, bool json, Streams streams) {
  const auto block = readBlock();
  if (!block) {
    streams.output.write(json ? "[]\n" : "");
    streams.output.flush();
    streams.errors.print("{}\n", kNoTable);
    return tool::Exit::Findings;
  }
  tool::JsonList list(streams.output);
  uint64_t left = 0;
  for (const SemaphoreRow& row : matched(*block, systemSets())) {
    if (!row.left || !stillLeft(row)) {
      continue;
    }
    ++left;
    if (yes) {
      remove(row);
    }
    if (json) {
      tool::Json element = jsonOf(row);
      element["removed"] = yes;
      list.add(element);
    } else {
      streams.output.print("{} semaphore {} (key {:#010x}, {}), last used by {}\n",
                           yes ? "removed" : "would remove", row.set->id, static_cast<uint32_t>(row.set->key),
                           tool::counted(row.slot->count, "reference"), shownProcess(row.set->last));
    }
  }
  if (json) {
    list.finish();
  } else if (left == 0) {
    streams.output.print("nothing is left behind\n");
  } else if (!yes) {
    streams.output.print("with --yes: {}\n", left == 1 ? "this one" : "these");
  }
  return left != 0 && !yes ? tool::Exit::Findings : tool::Exit::Done;
}

}  // namespace ctl
