// Where the library asks for an object that it can do without, a FailingHeap refuses that
// too, in test programs that have this.
#include <cstddef>
#include <new>

#include "support/FailingHeap.h"

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return FailingHeap::refuses() ? nullptr : ::operator new(size);
}
