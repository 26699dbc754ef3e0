// Memory that outlives or is shared between processes: System V segments and
// memory-mapped files, behind one handle.
//
// The handle belongs to the caller; nothing here allocates or frees it, and it
// may be copied as plain data.  One handle must not be used by two threads at
// once; different handles may.  No call takes a lock: processes that race to
// create one segment are told apart by lastError.
//
// Results are 1 for success and 0 for failure, which is logged; a null handle is
// refused with 0, without a line.  lastError has the number of what failed in creating
// or opening, and of an unmapping; a failed flush, detaching or removal leaves it alone.
// A thread is not cancelled while it creates, opens or closes.
#ifndef ZOT_OS_MMF_H
#define ZOT_OS_MMF_H

#include <stdint.h>

#include "os/ZotExport.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct ZotOsMmfHandle {
  int32_t fd;               // the mapped file; -1 in segment mode; keeps its number after the close
  int32_t shmId;            // the segment, which may be 0; -1 in file mode and once it is removed
  uint32_t size;            // bytes mapped in file mode; 0 in segment mode
  void* address;            // the block in this process; null while there is none
  unsigned char created;    // 1: this process made the file or the segment
  unsigned char unused[3];  // 0
  int32_t lastError;        // errno of the last step that failed; EEXIST: the segment was there before
} ZotOsMmfHandle;

// Resets the handle, then maps a file or attaches a segment.
//
//   size      bytes
//   filePath  the file to map; null or empty selects a segment
//   key       the segment's key; ignored for a file
//   reserved  ignored; callers pass 1
//
// A file that is missing is made with permissions 0600, and one shorter than
// size is extended with zeros; a longer one keeps its length and is mapped as a
// whole.  Of a length only the low 32 bits count, so a file of 4 GiB and more is
// compared and mapped by what is above the last multiple of 4 GiB.  When extending or
// mapping fails, fd stays open until ZotOsMmfClose.
//
// A segment is made with permissions 0666, all zero.  When the key is taken, the
// segment there is attached instead: the result is 1, created 0 and lastError
// EEXIST.  Callers tell the first process from later ones by exactly that.
//
// A process that cannot attach a segment removes it for everybody.
ZOT_EXPORT uint32_t ZotOsMmfCreate(ZotOsMmfHandle* handle, uint32_t size, const char* filePath, int32_t key,
                                   uint32_t reserved);

// Attaches the segment that exists under key.  Writes shmId, address and, on
// failure, lastError; the other fields stay.  reserved is ignored; callers pass 0.
ZOT_EXPORT uint32_t ZotOsMmfOpen(ZotOsMmfHandle* handle, uint32_t reserved, int32_t key);

// Writes length bytes at address back to the mapped file and waits until they
// are there.  address may lie anywhere in a page; the handle is not used and may
// be null.
ZOT_EXPORT uint32_t ZotOsMmfFlush(ZotOsMmfHandle* handle, void* address, uint32_t length);

// File mode: closes the file and unmaps it; fd and address keep their values.
//
// Segment mode: detaches while other processes are attached (address becomes
// null).  The only process attached removes the segment (shmId becomes -1 too),
// and its own mapping stays readable until it exits.  A segment that is gone
// already counts as closed.
//
// Only what creating or opening filled in may be closed, and once: a handle of zeros
// means descriptor 0 and segment 0; a second close closes whatever has the number
// now, or counts the one process that is left as the last and removes its segment.
ZOT_EXPORT uint32_t ZotOsMmfClose(ZotOsMmfHandle* handle);

#ifdef __cplusplus
}
#endif

#endif
