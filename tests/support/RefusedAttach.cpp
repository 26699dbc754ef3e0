#include "support/RefusedAttach.h"

#include <cerrno>

namespace {

thread_local int refusal = 0;

}  // namespace

namespace zot_test {

RefusedAttach::RefusedAttach(int error) {
  refusal = error;
}

RefusedAttach::~RefusedAttach() {
  refusal = 0;
}

}  // namespace zot_test

// The linker's --wrap option sends the calls here.
extern "C" {

void* __real_shmat(int id, const void* address, int flags);

void* __wrap_shmat(int id, const void* address, int flags) {
  if (refusal == 0) {
    return __real_shmat(id, address, flags);
  }
  errno = refusal;
  return reinterpret_cast<void*>(-1);
}

}  // extern "C"
