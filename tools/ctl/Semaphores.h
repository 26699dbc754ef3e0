// Named semaphores: what the block's table says beside what the system has.
#ifndef ZOT_TOOLS_CTL_SEMAPHORES_H
#define ZOT_TOOLS_CTL_SEMAPHORES_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/ctl/SharedBlock.h"

namespace ctl {

// A set of one semaphore, as the system knows it.
struct SystemSet {
  int32_t id;
  int32_t key;
  unsigned int mode;  // permission bits
  int value;
  pid_t last;   // who changed the value last; 0 for nobody, or somebody out of our sight
  int waiters;  // threads that wait for it to rise, or to fall to 0
};

// All sets of one semaphore that this user may see; the library makes no others.
std::vector<SystemSet> systemSets();

// The same of one set; nothing when it is gone, cannot be looked at, or has more semaphores.
std::optional<SystemSet> systemSet(int32_t id);

// One semaphore on both sides.
struct SemaphoreRow {
  std::optional<Slot> slot;      // nothing: not in the table
  std::optional<SystemSet> set;  // nothing: the system has none
  std::string difference;        // empty when both sides agree
  bool left = false;             // its last user is gone and nobody waits
};

// The table's rows in its order, then the sets that are not in it.
std::vector<SemaphoreRow> matched(const Snapshot& block, const std::vector<SystemSet>& sets);

// What the table's counts say against each other; empty when nothing.
std::string countDifference(const Snapshot& block);

// Whether `sem clean` may remove the set: in the table once, of a kind that the library
// makes, its last user gone, nobody waiting.
bool isLeftBehind(const SystemSet& set);

}  // namespace ctl

#endif
