// The way in which the process's own log object has its segment.
#ifndef ZOT_OS_MMF_INTERNAL_H
#define ZOT_OS_MMF_INTERNAL_H

#include "os/ZotOsMmf.h"

// ZotOsMmfCreate of a segment, attached at the process's reserved pages.  The caller
// holds the SharedBlockLock.
uint32_t fMmfCreateReserved(ZotOsMmfHandle* handle, uint32_t size, int32_t key);

#endif
