#include "tools/ctl/Semaphores.h"

#include <fmt/format.h>
#include <sys/ipc.h>
#include <sys/sem.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "tools/ctl/Processes.h"

namespace ctl {

namespace {

constexpr unsigned int kLibraryMode = 0666;

union SemaphoreArgument {  // what semctl wants; the system's headers leave it to the caller
  int val;
  semid_ds* buf;
  unsigned short* array;
};

// How often an identifier stands in the table.
int64_t timesInTable(const Snapshot& block, int32_t semId) {
  return std::count_if(std::begin(block.slots), std::end(block.slots),
                       [semId](const Slot& slot) { return inUse(slot) && slot.semId == semId; });
}

std::string differenceOf(const Slot& slot, const std::optional<SystemSet>& set, const Snapshot& block) {
  if (!set) {
    return "the system has no such set of one semaphore";
  }
  if (timesInTable(block, slot.semId) > 1) {
    return "stands in the table more than once";
  }
  if (slot.count == 0) {
    return "in use without a reference";
  }
  if (slot.index >= block.highestSlot) {
    return "behind MaxNamedIdx, where nobody looks";
  }
  return set->key == IPC_PRIVATE || set->mode != kLibraryMode ? "not made by the library" : "";
}

}  // namespace

std::optional<SystemSet> systemSet(int32_t id) {
  semid_ds status{};
  SemaphoreArgument argument{};
  argument.buf = &status;
  if (semctl(id, 0, IPC_STAT, argument) == -1 || status.sem_nsems != 1) {
    return std::nullopt;
  }
  const SystemSet set{.id = id,
                      .key = status.sem_perm.__key,
                      .mode = status.sem_perm.mode & 0777u,
                      .value = semctl(id, 0, GETVAL),
                      .last = semctl(id, 0, GETPID),
                      .waiters = semctl(id, 0, GETNCNT) + semctl(id, 0, GETZCNT)};
  return set.value >= 0 && set.last >= 0 && set.waiters >= 0 ? std::optional(set) : std::nullopt;
}

std::vector<SystemSet> systemSets() {
  std::vector<SystemSet> sets;
  std::ifstream file("/proc/sysvipc/sem");
  std::string line;
  std::getline(file, line);  // the headings
  while (std::getline(file, line)) {
    int32_t key = 0;
    int32_t id = 0;
    std::istringstream(line) >> key >> id;
    if (const auto set = systemSet(id)) {
      sets.push_back(*set);
    }
  }
  return sets;
}

std::vector<SemaphoreRow> matched(const Snapshot& block, const std::vector<SystemSet>& sets) {
  std::vector<SemaphoreRow> rows;
  for (const Slot& slot : block.slots) {
    if (!inUse(slot)) {
      continue;
    }
    const auto found =
        std::find_if(sets.begin(), sets.end(), [&](const SystemSet& set) { return set.id == slot.semId; });
    SemaphoreRow row{
        .slot = slot, .set = found != sets.end() ? std::optional(*found) : std::nullopt, .difference = {}};
    row.difference = differenceOf(slot, row.set, block);
    row.left = row.set && row.difference.empty() && isLeftBehind(*row.set);
    rows.push_back(row);
  }
  for (const SystemSet& set : sets) {
    if (timesInTable(block, set.id) == 0) {
      rows.push_back({.slot = std::nullopt, .set = set, .difference = {}});
    }
  }
  return rows;
}

std::string countDifference(const Snapshot& block) {
  uint64_t references = 0;
  for (const Slot& slot : block.slots) {
    references += inUse(slot) ? slot.count : 0;
  }
  if (references != block.references) {
    return fmt::format("the references add up to {}, NamedSemCnt says {}", references, block.references);
  }
  return references != 0 && block.semaphores == 0
             ? "GlobSemCnt is 0: the next semaphore that is created clears the table"
             : "";
}

bool isLeftBehind(const SystemSet& set) {
  return set.key != IPC_PRIVATE && set.mode == kLibraryMode && set.last > 0 && !alive(set.last) &&
         set.waiters == 0;
}

}  // namespace ctl
