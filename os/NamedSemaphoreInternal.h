// Named semaphores: System V sets of one semaphore, counted in the shared control
// block so that the last user in any process removes them.  Events and mutexes
// with a key rest on them.
//
// The first one that a process creates or opens also creates the process's log
// object, and the last one it closes deletes it; until then and afterwards log
// calls are silent.
//
// Results are 1 for success and 0 for failure, which is logged.  typeLetter is
// 'E' for an event, 'M' for a mutex; it is printed behind the function's name and
// caps a mutex at 1.  Waiting and releasing are atomic between processes; opens
// and closes at the same moment in two of them may miscount the references, which
// is accepted.  Within a process creating, opening and closing hold the
// SharedBlockLock, so any thread may do them while others wait and release.
#ifndef ZOT_NAMED_SEMAPHORE_INTERNAL_H
#define ZOT_NAMED_SEMAPHORE_INTERNAL_H

#include <sys/types.h>
#include <sys/ipc.h>
#include <sys/sem.h>

#include <cstdint>

// The fourth argument of semctl, which Linux leaves to the caller to declare.
// With the int alone a big-endian 64-bit host would pass it in the wrong half.
#ifdef __APPLE__
using ZotSemun = semun;
#else
union ZotSemun {
  int val;
  semid_ds* buf;
  unsigned short* array;
};
#endif

// Creates a semaphore with this value under key, or opens the one that is there,
// whose value stays.  Key 0 makes one that has no name and no slot in the table.
//
//   semId  out: the set's identifier, -1 when there is none; null is refused
uint32_t ZotOsCreate(int32_t* semId, uint32_t key, uint32_t initialValue, uint32_t typeLetter);

// Opens the semaphore under key, which must exist; key 0 is refused.  On failure
// errno is that of the step that failed.
uint32_t ZotOsOpen(int32_t* semId, int32_t key, uint32_t typeLetter);

// Takes one unit, waiting for it unless flags hold IPC_NOWAIT.  A wait that a
// signal interrupts goes on after 50 ms, until the process is shutting down.
//
//   result     out: 1 taken, 999 not available, 0 failed; may be null
//   timeoutMs  0 or 0xFFFFFFFF; any other value ends the process with status 0
//
// Returns 1 for "not available" too.
uint32_t ZotOsSet(int32_t semId, uint32_t* result, uint32_t typeLetter, uint32_t flags, uint32_t timeoutMs);

// Gives one unit back; a mutex that is free already stays at 1.
uint32_t ZotOsRelease(int32_t semId, uint32_t typeLetter);

// Drops one reference and removes the set with the last one, or at once when the
// table doesn't know it.  -1 is nothing to close.  When the set cannot be removed
// the counts of open semaphores stay as they were.
uint32_t ZotOsClose(int32_t semId, uint32_t typeLetter);

// Counts one more reference to a keyed semaphore in the shared table.  Returns 0
// when there is no shared block, or when all 60 slots are taken, in which case
// the total of references has risen all the same.  The caller holds the
// SharedBlockLock.
uint32_t fIncNamedSemCnt(uint32_t semId);

#endif
