// macOS has memset_s, which its headers show on request only; the others have explicit_bzero.
#define __STDC_WANT_LIB_EXT1__ 1  // NOLINT(bugprone-reserved-identifier): the standard's name
#include <string.h>

#include "os/WipeInternal.h"

void zotWipe(void* bytes, size_t count) {
  if (count == 0) {
    return;
  }
#ifdef __APPLE__
  memset_s(bytes, count, 0, count);
#else
  explicit_bzero(bytes, count);
#endif
}
