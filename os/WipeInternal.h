// Clears memory that held a secret.
#ifndef ZOT_WIPE_INTERNAL_H
#define ZOT_WIPE_INTERNAL_H

#include <cstddef>

// Sets count bytes to zero, also where the compiler sees that nobody reads them
// again.  The bytes may be null when count is 0.
void zotWipe(void* bytes, size_t count);

#endif
