// Clears memory that held a secret.
#ifndef ZOT_WIPE_INTERNAL_H
#define ZOT_WIPE_INTERNAL_H

#include <string.h>

#ifdef __APPLE__
// <string.h> declares it on request only, and may have been read before.
extern "C" int memset_s(void* bytes, size_t size, int value, size_t count);
#endif

// Sets count bytes to zero, also where the compiler sees that nobody reads them
// again.  The bytes may be null when count is 0.  Inline, because both libraries call
// it and neither exports it.
inline void zotWipe(void* bytes, size_t count) {
  if (count == 0) {
    return;
  }
#ifdef __APPLE__
  memset_s(bytes, count, 0, count);
#else
  explicit_bzero(bytes, count);
#endif
}

#endif
