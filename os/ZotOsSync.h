// Events and mutexes, either of this process alone or shared under a key.
//
// The key given at creation decides: 0 makes a local object on POSIX threads,
// any other key a named one on a System V semaphore, which other processes open
// under the same key.  Every call then reads isNamed and takes its path.
//
// The create and open functions allocate the handle, the close function frees
// it; in between any thread may use it.  Closing it while another thread uses it
// is the caller's fault.  A process must close what it named: the last close
// anywhere removes the semaphore, and a process that dies leaves a mutex taken.
//
// The first named object that a process creates or opens makes the process's log and
// attaches the block of shared memory with the log level and the counts of users
// (docs/shared-control-block.md); closing the last one ends both.  Before and after
// that the library writes no line.  The block counts 60 keys at a time: one more
// object works and is removed by the first close of it.
//
// A forked child may use its parent's handles but must not close the named ones: that
// would take back a reference which the parent counts on.  It opens them by their key.
//
// Results are 1 for success and 0 for failure, which is logged.  Silent are the key 0
// where one must be open, a local event that cannot be locked or waited for, and a
// creation for which there is no log.  Waits also report through *result:
// kZotOsWait... below.
#ifndef ZOT_OS_SYNC_H
#define ZOT_OS_SYNC_H

#include <pthread.h>
#include <stdint.h>

#include "os/ZotExport.h"

#ifdef __cplusplus
extern "C" {
#endif

enum {
  kZotOsWaitFailed = 0,
  kZotOsWaitSignalled = 1,  // the event was set, the mutex is now held
  kZotOsWaitTimeout = 999   // time over, or not available to a call that doesn't wait
};

// The only wait that every object knows.
#define ZOT_OS_INFINITE 0xFFFFFFFFu

typedef struct ZotOsEventHandle {
  uint32_t isNamed;  // 1: only semId is used; 0: all the rest
  union {
    int32_t semId;  // System V semaphore set, holding one semaphore
    pthread_mutex_t lock;
  };
  pthread_cond_t cond;
  signed char signalled;  // 1 while set; under lock
} ZotOsEventHandle;

typedef struct ZotOsMutexHandle {
  uint32_t isNamed;  // 1: semId is used; 0: lock
  union {
    int32_t semId;
    pthread_mutex_t lock;  // recursive
  };
} ZotOsMutexHandle;

// Creates an event that is not set.  A named one that exists already is opened
// and keeps its value.
//
//   event  out: the handle, null on failure; must not be null itself
//   key    0: local; otherwise the System V key, used as it is
ZOT_EXPORT uint32_t ZotOsEventCreate(ZotOsEventHandle** event, uint32_t key);

// Opens a named event that another process, or this one, has created.  *event is
// null on failure, which includes the key 0 and a key that nobody uses.
ZOT_EXPORT uint32_t ZotOsEventOpen(ZotOsEventHandle** event, int32_t key);

// Sets the event: wakes all waiters of a local one, lets one wait on a named one
// pass.  Setting it again before a wait changes nothing.
//
// A named event that cannot be set is reported on standard error, and the result
// is still 1; callers rely on that.
ZOT_EXPORT uint32_t ZotOsEventSet(ZotOsEventHandle* event);

// Clears a local event.  On a named event this lets one more wait pass, so two
// resets let two pass; callers rely on it.
ZOT_EXPORT uint32_t ZotOsEventReset(ZotOsEventHandle* event);

// Waits until the event is set and clears it again.
//
//   timeoutMs  ZOT_OS_INFINITE, or
//              named: 0 to look without waiting; any other value ends the
//              process with status 0 after a line on standard output
//              local: milliseconds, of which only whole seconds count, from the
//              start of the current second: below 1000 the wait is over at once
//   result     out: kZotOsWait...; may be null
//
// A time-out is a failure (0) on a local event and a success (1) on a named one;
// callers tell them apart by *result.  Every waiter that one set wakes passes.
ZOT_EXPORT uint32_t ZotOsEventWait(ZotOsEventHandle* event, uint32_t timeoutMs, uint32_t* result);

// Frees the event, which must not be null.  The last close of a named one in any
// process removes it from the system.
ZOT_EXPORT uint32_t ZotOsEventClose(ZotOsEventHandle* event);

// Creates a free mutex.  A named one that exists already is opened and stays as
// it is, taken or free.  Arguments as for ZotOsEventCreate.
ZOT_EXPORT uint32_t ZotOsMutexCreate(ZotOsMutexHandle** mutex, uint32_t key);

// Opens a named mutex, as ZotOsEventOpen does an event.
ZOT_EXPORT uint32_t ZotOsMutexOpen(ZotOsMutexHandle** mutex, int32_t key);

// Takes the mutex.  The thread that holds a local one may take it again and must
// release it as often; a named one blocks whoever holds it.
//
//   timeoutMs  -1 to wait without end, or, for a named mutex only, 0 to try.
//              Anything else ends the process: with status 0 for a named mutex,
//              with status 1 for a local one, both after saying why.
//   result     out: kZotOsWait...; may be null.  A try that finds the mutex
//              taken returns 1 with kZotOsWaitTimeout.
ZOT_EXPORT uint32_t ZotOsMutexWait(ZotOsMutexHandle* mutex, int32_t timeoutMs, uint32_t* result);

// Gives the mutex back.  A local one must be held by this thread.  Releasing a
// named mutex that is free succeeds and changes nothing.
ZOT_EXPORT uint32_t ZotOsMutexRelease(ZotOsMutexHandle* mutex);

// Frees the mutex.  A local one that is still held is waited for in a busy loop;
// the last close of a named one in any process removes it from the system.
ZOT_EXPORT uint32_t ZotOsMutexClose(ZotOsMutexHandle* mutex);

// Returns the current value of a named object's semaphore, -1 with errno set
// when there is no such semaphore.
ZOT_EXPORT int32_t ZotOsSemaphoreVal(int32_t semId);

#ifdef __cplusplus
}
#endif

#endif
