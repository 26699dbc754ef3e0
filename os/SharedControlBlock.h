// The block of shared memory under key 0x8009 through which all processes of
// the client share one log level and count the users of their named semaphores.
//
// 125 words of 32 bits in host order, zero-filled by the system when the segment
// is created.  Log objects attach it, pstShm is where the process's own one has it,
// and it goes with the last process that detaches.  Programs built at other times
// share it: no offset may ever change.
//
// No lock guards it.  Every word is read and changed as a relaxed atomic, so a
// single count is never lost; what spans several words, such as claiming a slot,
// may still miscount when two processes do it at once.
#ifndef ZOT_SHARED_CONTROL_BLOCK_H
#define ZOT_SHARED_CONTROL_BLOCK_H

#include <atomic>
#include <cstddef>
#include <cstdint>

inline constexpr int32_t kSharedBlockKey = 0x8009;
inline constexpr uint32_t kSharedBlockSize = 500;  // bytes
inline constexpr uint32_t kNamedSlots = 60;
inline constexpr int32_t kFreeSlot = -1;  // 0 is a valid identifier

// One word of the block.  It holds no more than its value, so that it can lie
// over memory that other processes have written.
template <typename Word>
struct SharedWord {
  Word load() { return std::atomic_ref(value).load(std::memory_order_relaxed); }
  void store(Word next) { std::atomic_ref(value).store(next, std::memory_order_relaxed); }
  // Both return the new value; a count below 0 wraps.
  Word increment() { return std::atomic_ref(value).fetch_add(1, std::memory_order_relaxed) + 1; }
  Word decrement() { return std::atomic_ref(value).fetch_sub(1, std::memory_order_relaxed) - 1; }
  // Returns whether the word held `expected` and now holds `next`.
  bool replace(Word expected, Word next) {
    return std::atomic_ref(value).compare_exchange_strong(expected, next, std::memory_order_relaxed);
  }
  // Makes the word at least `least`.
  void raise(Word least) {
    for (Word seen = load(); seen < least && !replace(seen, least); seen = load()) {
    }
  }

  Word value;
};

struct SharedControlBlock {
  // One keyed semaphore set; both words written by fIncNamedSemCnt and ZotOsClose.
  struct Slot {
    SharedWord<int32_t> semId;   // identifier of the set, or kFreeSlot
    SharedWord<uint32_t> count;  // open references, over all processes
  };

  // Log level, a bit mask; written by ZotOsvSetLogLevel and ZotOsvResLogLevel.
  SharedWord<uint32_t> Log;
  // Log objects attached; written by ZotOspLogNew, ZotOsvLogDelete, fnfOpenShm and fnvCloseShm.
  SharedWord<uint32_t> ProcCnt;
  // Semaphores created or opened and not yet closed; written by ZotOsCreate, ZotOsOpen and ZotOsClose.
  // While it is 0 the table holds nothing, and the next ZotOsCreate sets it up.
  SharedWord<uint32_t> GlobSemCnt;
  // References to keyed semaphores; written by fIncNamedSemCnt and ZotOsClose.
  SharedWord<uint32_t> NamedSemCnt;
  // One past the highest slot used since the table was set up, which makes it 0; raised by fIncNamedSemCnt.
  SharedWord<uint32_t> MaxNamedIdx;
  Slot cnt[kNamedSlots];
};

static_assert(std::atomic_ref<uint32_t>::is_always_lock_free);
static_assert(sizeof(SharedControlBlock) == kSharedBlockSize);
static_assert(offsetof(SharedControlBlock, Log) == 0);
static_assert(offsetof(SharedControlBlock, ProcCnt) == 4);
static_assert(offsetof(SharedControlBlock, GlobSemCnt) == 8);
static_assert(offsetof(SharedControlBlock, NamedSemCnt) == 12);
static_assert(offsetof(SharedControlBlock, MaxNamedIdx) == 16);
static_assert(offsetof(SharedControlBlock, cnt) == 20);
static_assert(sizeof(SharedControlBlock::Slot) == 8);
static_assert(offsetof(SharedControlBlock::Slot, count) == 4);

#endif
