#include "support/FailingHeap.h"

#include <cerrno>
#include <cstddef>

namespace {

thread_local bool armed = false;
thread_local unsigned int passing = 0;

bool refuses() {
  if (!armed) {
    return false;
  }
  if (passing != 0) {
    --passing;
    return false;
  }
  errno = ENOMEM;
  return true;
}

}  // namespace

FailingHeap::FailingHeap(unsigned int after) {
  passing = after;
  armed = true;
}

FailingHeap::~FailingHeap() {
  armed = false;
}

// The linker's --wrap option sends the calls here.
extern "C" {

void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* block, size_t size);

void* __wrap_malloc(size_t size) {
  return refuses() ? nullptr : __real_malloc(size);
}

void* __wrap_calloc(size_t count, size_t size) {
  return refuses() ? nullptr : __real_calloc(count, size);
}

void* __wrap_realloc(void* block, size_t size) {
  return refuses() ? nullptr : __real_realloc(block, size);
}

}  // extern "C"
