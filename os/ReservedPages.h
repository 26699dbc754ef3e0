// Pages of this process that can be read from its first log object to its end: zeros,
// or a segment attached in their place.  One takes the place of the other in a single
// step of the system, so a thread may read there at any moment.
//
// There is one such place in a process; who attaches there holds the SharedBlockLock.
#ifndef ZOT_OS_RESERVED_PAGES_H
#define ZOT_OS_RESERVED_PAGES_H

// Attaches a segment as shmat does, at the reserved pages.  Where the system cannot do
// that, or the segment is larger than the pages, it is attached elsewhere, and a
// thread that reads while it is let go of is not safe.
//
// Returns the address, (void*)-1 with errno on failure.
void* attachReserved(int shmId);

// Detaches the segment at this address as shmdt does, from the reserved pages or from
// anywhere else.  Returns 0, or -1 with errno.
int detachBlock(void* address);

#endif
