// The shared control block of the running client, read without becoming one of its users.
#ifndef ZOT_TOOLS_CTL_SHARED_BLOCK_H
#define ZOT_TOOLS_CTL_SHARED_BLOCK_H

#include <sys/types.h>

#include <ctime>
#include <functional>
#include <optional>

#include "os/SharedControlBlock.h"

namespace ctl {

// The segment that holds the block, as the system knows it.
struct Segment {
  int id;
  size_t size;        // bytes
  unsigned int mode;  // permission bits
  uid_t owner;
  gid_t group;
  uint64_t attached;  // attachments, without our own
  time_t created;     // seconds since 1970
  pid_t creator;
};

// A slot of the table that is in use.
struct Slot {
  uint32_t index;
  int32_t semId;
  uint32_t count;
};

// All of it, copied at one moment.
struct Snapshot {
  Segment segment;
  uint32_t level;  // the words in the order of the block
  uint32_t processes;
  uint32_t semaphores;
  uint32_t references;
  uint32_t highestSlot;
  Slot slots[kNamedSlots];
};

inline constexpr char kNobody[] = "no process of the client is attached";

// Attaches for a moment and copies; nothing when there is no block.  Throws
// tool::Failure when it is there and cannot be read.
std::optional<Snapshot> readBlock();

// Attaches for a moment and lets change() write.  False when there is no block.
bool changeBlock(const std::function<void(SharedControlBlock&)>& change);

// Whether a slot was ever set up and is not free: a table that nobody has set up is all zero.
bool inUse(const Slot& slot);

}  // namespace ctl

#endif
