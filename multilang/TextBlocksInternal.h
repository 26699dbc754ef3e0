// Room for a table's texts: many in one block, since forms have hundreds of short ones.
// Blocks never move, so a text stays where it is until all of them go.
#ifndef TEXT_BLOCKS_INTERNAL_H
#define TEXT_BLOCKS_INTERNAL_H

#include <algorithm>
#include <cstddef>
#include <cstdlib>

// The newest block, which links to the others; the bytes of its texts follow it.
struct TextBlock {
  TextBlock* older;
  size_t size;  // of the bytes that follow
  size_t used;

  char* free() { return reinterpret_cast<char*>(this + 1) + used; }
};

// Sees to it that the newest block has this many bytes free; false when memory runs out,
// and nothing has changed.
inline bool mlMakeRoom(TextBlock** newest, size_t bytes) {
  constexpr size_t kSmallest = 512, kLargest = 65536;
  const TextBlock* last = *newest;
  if (last != nullptr && last->size - last->used >= bytes) {
    return true;
  }
  const size_t usual = last != nullptr ? std::min(2 * last->size, kLargest) : kSmallest;
  const size_t size = std::max(bytes, usual);
  auto* block = static_cast<TextBlock*>(std::malloc(sizeof(TextBlock) + size));
  if (block == nullptr) {
    return false;
  }
  *block = {*newest, size, 0};
  *newest = block;
  return true;
}

inline void mlFreeBlocks(TextBlock** newest) {
  while (TextBlock* block = *newest) {
    *newest = block->older;
    std::free(block);
  }
}

#endif
