// The process as a whole: start and shutdown, time, sleep, single keys from the
// console, dynamic loading and the host's name.
//
// Results called truth values are 1 and 0.  Nothing here logs but
// ZotOsSetShutdown, and errno stays as the failed call set it.  All calls may come
// from any thread, except that only one thread at a time may ask for keys.
#ifndef ZOT_OS_SYSTEM_H
#define ZOT_OS_SYSTEM_H

#include <stdint.h>

#include "os/ZotExport.h"

#ifdef __cplusplus
extern "C" {
#endif

// What ZotOsIsOpenSslInitialized and ZotOsIsSslInitialized set: 0 before the first call, 1
// from then on.  A 1 says that a caller has taken on the work, not that it is done.
ZOT_EXPORT extern unsigned char bOpenSslInit, bSslInit;

// Takes the time from which ZotOsGetUpTime counts; only the first call does.
ZOT_EXPORT void ZotOsInit(void);

// The system counts as up from load.  After ZotOsSetShutdown, a wait on a named
// semaphore that is interrupted ends in an error instead of waiting on.
ZOT_EXPORT void ZotOsSetSystemUp(void);
ZOT_EXPORT void ZotOsSetShutdown(void);
ZOT_EXPORT uint32_t ZotOsGetSystemUp(void);

// Test-and-set, bOpenSslInit and bSslInit each on its own: 0 for the first caller, who then
// has to initialise the library in question, and 1 for every later one.  Of threads
// that call at the same moment, one gets the 0.
ZOT_EXPORT int32_t ZotOsIsOpenSslInitialized(void);
ZOT_EXPORT int32_t ZotOsIsSslInitialized(void);

// Wall-clock time: in milliseconds, wrapping about every 49.7 days and so good for
// differences only; in seconds since the epoch; in seconds since ZotOsInit, which
// ZotOsGetUpTime calls if nobody did.
ZOT_EXPORT uint32_t ZotOsGetTimeInmSec(void);
ZOT_EXPORT int32_t ZotOsGetTimeInSec(void);
ZOT_EXPORT uint32_t ZotOsGetUpTime(void);

// Sleeps.  From 1000 ms on, what is left beside the whole seconds counts as
// microseconds: 1500 sleeps 1.0005 seconds.  Callers rely on that.
//
// Returns 0; -1 with errno EINTR when a signal cut the sleep short.
ZOT_EXPORT int32_t ZotOsSleep(uint32_t milliseconds);

// Read one key from standard input without waiting for a line.  With echo 0 the
// terminal does not show it.  The terminal's settings are put back afterwards, also when
// the thread is cancelled as it waits.
//
// ZotOsGetCh waits and returns the character or EOF.  ZotOsGetChNoWait waits 100
// microseconds at most and returns the byte, 0 when none came, and 1 when the
// terminal was ready but gave no byte; callers cannot tell the last two from the
// keys of the same number.  Both return -1 when standard input is no terminal or
// its settings cannot be put back.
ZOT_EXPORT int32_t ZotOsGetCh(int32_t echo);
ZOT_EXPORT int32_t ZotOsGetChNoWait(int32_t echo);

// Closes a descriptor.  Returns whether close() succeeded.
ZOT_EXPORT uint32_t ZotOsCloseHdl(int32_t descriptor);

// Load a library, find a symbol in it, unload it.  Null for a null or empty path,
// a null library, a null or empty name, and on failure.  ZotOsDlFree returns a
// truth value, 1 for null.
ZOT_EXPORT void* ZotOsDlLoad(const char* path);
ZOT_EXPORT void* ZotOsDlGetAddr(void* library, const char* name);
ZOT_EXPORT uint32_t ZotOsDlFree(void* library);

// Copies the host's name.
//
//   size  in: bytes of buffer; out: length of the name, on success only
//
// Returns 0 when the name does not fit; what fits stands in buffer, terminated.
ZOT_EXPORT uint32_t ZotOsGetComputerName(char* buffer, uint32_t* size);

#ifdef __cplusplus
}
#endif

#endif
