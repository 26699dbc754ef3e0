// Detached worker threads and the protocol that stops them.
//
// A thread is known by a 32-bit handle, never 0, that belongs to it alone while
// it lives.  A thread ends by returning, by ZotOsThreadEnd or by being cancelled;
// nobody joins it.  It is cancelled in sleeps, in waits for a local event or a key and in
// ZotOsMmfFlush, and within no other call of this library.  A wait for a mutex or a named
// event goes on: such a worker is stopped through its state word.  One that does none of
// all this calls pthread_testcancel where it may be ended.
//
// Cancelling and ZotOsThreadEnd unwind the thread's functions: a C++ worker must have no
// noexcept on that path and no catch (...) that does not rethrow.
//
// A state word, 32 bits and owned by the caller, is shared with the worker:
//   0  not running: written by the worker just before it returns
//   1  running: written by ZotOsThreadStart
//   3  stop requested: written by ZotOsThreadStop; the worker looks for it
// These functions access it atomically, and workers should too.  The word must live
// until its worker has ended.
//
// Results are 1 for success and 0 for failure; failures are logged.  All functions
// may be called from any thread, but a handle word belongs to one caller at a time.
#ifndef ZOT_OS_THREAD_H
#define ZOT_OS_THREAD_H

#include <stdint.h>

#include "os/ZotExport.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef void* (*ZotOsThreadRoutine)(void* arg);
typedef void (*ZotOsThreadWake)(uint32_t arg);

// Runs start(arg), which must not be null, in a thread of its own.
//
//   thread     out: the new handle, stored before start runs; 0 on failure
//   stackSize  in bytes.  0 means the default: what the system gives a new thread (the stack
//              limit with which the process started, often 8 MiB), but at most 0x40000
//              (256 KiB).  A size that the system refuses, as one below 16 KiB, is ignored:
//              the thread has what the system gives, without that cap
//
// Returns 0 when thread is null or the system has no thread to give.
ZOT_EXPORT uint32_t ZotOsThreadBegin(uint32_t* thread, ZotOsThreadRoutine start, uint32_t stackSize,
                                     void* arg);

// Ends the calling thread with the exit value 1.
ZOT_EXPORT void ZotOsThreadEnd(void) __attribute__((noreturn));

// Cancels the thread at its next cancellation point and sets *thread to 0.  When that
// thread has ended already, the result is 0 and *thread keeps the handle; a null
// pointer and a handle of 0 give 0 without a log line.
ZOT_EXPORT uint32_t ZotOsThreadCancel(uint32_t* thread);

// Starts a worker with the default stack, once per state word.
//
//   thread  out: the handle; 0 on failure; unchanged when nothing was started.  May be null
//   state   a word of 0 becomes 1 and a thread is started, back to 0 when that fails;
//           any other value means that the worker runs, and the result is 1.  May be null
ZOT_EXPORT uint32_t ZotOsThreadStart(uint32_t* thread, uint32_t* state, ZotOsThreadRoutine start, void* arg);

// Stops a thread: by cancelling it when thread is given, else through its state word.
//
//   thread     cancelled as by ZotOsThreadCancel; the result is 1 even when that fails
//   state      with thread: set to 0, may be null.  Without: a non-zero word becomes 3, and
//              the call waits until it is no longer 3
//   pollCount  how often to look at the word, 100 ms apart; 0 waits without limit, and
//              a negative count is taken as unsigned
//   wake       called as wake(wakeArg) after the word was set, so that a blocked worker
//              notices; may be null
//   name       for the log lines; null is the empty text
//
// Returns 0 when pollCount polls were made: also when the worker ended during the very
// last one, callers rely on the count.  The word then stays as it is.  With neither
// thread nor state, the result is 1 and an error line.
ZOT_EXPORT uint32_t ZotOsThreadStop(uint32_t* thread, uint32_t* state, int32_t pollCount,
                                    ZotOsThreadWake wake, uint32_t wakeArg, const char* name);

#ifdef __cplusplus
}
#endif

#endif
