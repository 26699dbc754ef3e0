// A block of the C heap that frees itself.
#ifndef ZOT_OS_MALLOCED_INTERNAL_H
#define ZOT_OS_MALLOCED_INTERNAL_H

#include <cstdlib>
#include <memory>

struct FreeBlock {
  void operator()(void* block) const { std::free(block); }
};

template <typename Type>
using Malloced = std::unique_ptr<Type, FreeBlock>;

#endif
