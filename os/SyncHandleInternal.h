// What event and mutex handles have in common: allocation, the two kinds behind
// one record, and the lines for null handles and failed pthread calls.
#ifndef ZOT_SYNC_HANDLE_INTERNAL_H
#define ZOT_SYNC_HANDLE_INTERNAL_H

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "log/LogLineInternal.h"
#include "os/MallocedInternal.h"

// An uninitialised record of the caller's function; *out becomes null.
template <typename Handle>
Malloced<Handle> allocateHandle(const char* function, Handle** out) {
  // Callers look at the first word before they know which kind they hold.
  static_assert(offsetof(Handle, isNamed) == 0 && sizeof(Handle::isNamed) == 4 && sizeof(Handle::semId) == 4);
  static_assert(offsetof(Handle, semId) == offsetof(Handle, lock));
  *out = nullptr;
  Malloced<Handle> handle(static_cast<Handle*>(std::malloc(sizeof(Handle))));
  if (handle == nullptr) {
    const int error = errno;
    ZOT_LINE_ERR(ZOT_LOG_ERROR, error, "ERROR %s(%p): malloc failed (errno=%d=%s)", function,
                 static_cast<void*>(out));
  }
  return handle;
}

// Hands a finished record to the caller.
template <typename Handle>
uint32_t giveHandle(Malloced<Handle>& handle, uint32_t isNamed, Handle** out) {
  handle->isNamed = isNamed;
  *out = handle.release();
  return 1;
}

// Whether the handle is null, which is logged; argument is its name in the line.
inline bool refuseNull(const void* handle, const char* function, const char* argument) {
  if (handle == nullptr) {
    ZOT_LINE_IDS(ZOT_LOG_ERROR, "ERROR %s(%p) %s is NULL (pid=%u tid=%ld)", function, handle, argument);
  }
  return handle == nullptr;
}

// Logs that a pthread call, named step, returned rc.
inline void logStepFailed(const char* function, const void* address, const char* step, int rc) {
  ZOT_LINE_ERR(ZOT_LOG_ERROR, rc, "ERROR %s(%p): %s failed (rc=%d=%s)", function, address, step);
}

// Destroys a lock or a condition.  While a thread still uses it the call reports
// EBUSY and is repeated at once.  Returns the last code.
template <typename Object>
int destroyIdle(int (*destroy)(Object*), Object* object, const char* function, const void* handle,
                const char* step) {
  int rc;
  do {
    rc = destroy(object);
    if (rc != 0) {
      logStepFailed(function, handle, step, rc);
    }
  } while (rc == EBUSY);
  return rc;
}

#endif
