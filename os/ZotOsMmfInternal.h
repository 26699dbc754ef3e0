// The step that creating and opening a segment share.
#ifndef ZOT_OS_MMF_INTERNAL_H
#define ZOT_OS_MMF_INTERNAL_H

#include "os/ZotOsMmf.h"

// Attaches the segment named by shmId.  A failure removes the segment from the
// system, empties shmId and address and leaves shmat's number in lastError.
uint32_t fMmfAttach(ZotOsMmfHandle* handle);

#endif
