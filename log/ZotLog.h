// The log: one line per call, written when the level word allows it.
//
// The level word is normally shared by all processes of the client (a shared
// memory segment), so that a level set in one process switches lines on or off
// in all of them at once.  Bit 0 of it chooses where lines go: standard output
// with a timestamp, or the system log under the ident "ZotOsLog".
//
// Every call accepts a null log object and then does nothing.  The writers never
// fail, leave errno alone and allocate nothing; what does not fit is cut.  They may be
// called from any thread, and a cancelled thread does not end in them.  The only locks
// are that of the sink (the output stream, the C library's system log) and, when the second
// or the zone is another than in the thread's last line, that of the C library's time
// zone.  A child that is forked while other threads write finds all of them free.
#ifndef ZOT_LOG_H
#define ZOT_LOG_H

#include <stdint.h>

#include "os/ZotExport.h"
#include "os/ZotOsMmf.h"

#ifdef __GNUC__
#define ZOT_PRINTF(text, first) __attribute__((format(printf, text, first)))
#else
#define ZOT_PRINTF(text, first)
#endif

#ifdef __cplusplus
extern "C" {
#endif

// Masks.  A line is written when (mask & level word) is above 1.
#define ZOT_LOG_DEBUG 0x40000000u   // lines that begin "DEBUG "
#define ZOT_LOG_TRACE 0x20000000u   // lines that begin "TRACE "
#define ZOT_LOG_ERROR 0x08000000u   // lines that begin "ERROR " or "INFO "
#define ZOT_LOG_FATAL 0x00000004u   // "FATAL " lines: shared memory and semaphores cannot be made
#define ZOT_LOG_STDOUT 0x00000001u  // in the level word only: standard output, not the system log
#define ZOT_LOG_SILENT 0x80000000u  // the level of an object without the shared word: no line has this bit

typedef struct ZotOsLog {
  uint32_t LocSemCnt;     // named semaphores that this process has open
  uint32_t* level;        // the level word in use: in the shared block, or localLevel
  uint32_t localLevel;    // stands in while no block is attached
  ZotOsMmfHandle handle;  // of the shared block
} ZotOsLog;

// Set bits in the level word, clear bits in it, read it (0 for a null object).
ZOT_EXPORT void ZotOsvSetLogLevel(ZotOsLog* log, uint32_t mask);
ZOT_EXPORT void ZotOsvResLogLevel(ZotOsLog* log, uint32_t mask);
ZOT_EXPORT uint32_t ZotOsdGetLogLevel(ZotOsLog* log);

// Writes one line: "YY-MM-DD hh:mm:ss,mmm - ", the message and a newline.  The
// month counts from zero and the year has two digits; callers rely on both.  The
// time is local, in the zone that the process has at the moment.  A message of 1542
// characters or more is cut there and loses its newline.
//
// The system log gets the message alone, as a format: "%%" shows one percent
// sign and "%m" the text of errno; any other percent sign shows as it stands.
ZOT_EXPORT void ZotOsvLog(ZotOsLog* log, uint32_t mask, const char* format, ...) ZOT_PRINTF(3, 4);

// Where the compiler can pass variable arguments on, the level is tested in the caller:
// a line that is switched off costs no call.  Everywhere else the function itself tests.
// Only this library, whose lines look at the level before their arguments, leaves it out.
#if defined(__OPTIMIZE__) && defined(__has_builtin) && !defined(ZOT_LOG_LEVEL_TESTED)
#if __has_builtin(__builtin_va_arg_pack)
#pragma redefine_extname zotLogPassed ZotOsvLog
ZOT_EXPORT void zotLogPassed(ZotOsLog* log, uint32_t mask, const char* format, ...) ZOT_PRINTF(3, 4);
extern inline __attribute__((gnu_inline, always_inline, artificial)) void ZotOsvLog(ZotOsLog* log,
                                                                                    uint32_t mask,
                                                                                    const char* format, ...) {
  if (log) {
    const uint32_t* const word = __atomic_load_n(&log->level, __ATOMIC_ACQUIRE);
    if (word && (__atomic_load_n(word, __ATOMIC_RELAXED) & mask) > 1) {
      zotLogPassed(log, mask, format, __builtin_va_arg_pack());
    }
  }
}
#endif
#endif

// Write a line and, behind it, a dump of length bytes or numbers at data:
//
//   mode 1  the first 64 bytes, 16 a line, in hexadecimal and as characters
//   mode 2  the first 16 32-bit numbers in host byte order, with dots between;
//           length counts numbers
//   other   the length alone
//
// A null data is reported in place of the dump, without a newline behind it.
// text stands in the prefix, which the system log does not get; it is cut when
// the prefix has 256 characters.  Message and dump share 1279 characters.
ZOT_EXPORT void ZotOsvLogData(ZotOsLog* log, uint32_t mask, const char* text, const void* data, long length,
                              int mode);
ZOT_EXPORT void ZotOsvvLogData(ZotOsLog* log, uint32_t mask, const void* data, long length, int mode,
                               const char* format, ...) ZOT_PRINTF(6, 7);

// Makes a log object attached to the shared level word, which starts as 0 when
// this process is the first.  The caller owns it, lets no thread use it any more and
// gives it to ZotOsvLogDelete.  Returns null when the shared block cannot be attached.
ZOT_EXPORT ZotOsLog* ZotOspLogNew(void);

// Detaches, frees and sets *log to null; does nothing when log or *log is null.
// The last process to detach removes the block and with it the level.
ZOT_EXPORT void ZotOsvLogDelete(ZotOsLog** log);

// The same attachment for a caller that keeps the handle and the words itself.
// Sets *localWord to ZOT_LOG_SILENT and *levelPtr to the shared word.
//
// Returns 1; returns 0 with *levelPtr at localWord when nothing is attached, and
// without touching anything when an argument is null.
ZOT_EXPORT uint32_t fnfOpenShm(ZotOsMmfHandle* handle, uint32_t* localWord, uint32_t** levelPtr);

// Ends what fnfOpenShm began; the level pointer must not be used afterwards.
ZOT_EXPORT void fnvCloseShm(ZotOsMmfHandle* handle);

#ifdef __cplusplus
}
#endif

#endif
