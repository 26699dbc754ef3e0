// Log lines of the library itself, written through pstLog.
//
// The macros look at the level first and only then evaluate the arguments behind
// the format: a line that is switched off asks the system for nothing.  They are
// macros so that the compiler still checks the whole format against all of its
// arguments, those that end it included.
//
//   ZOT_LINE(mask, format, ...)             no tail
//   ZOT_LINE_IDS(mask, format, ...)         format ends in "(pid=%u tid=%ld)"
//   ZOT_LINE_ERR(mask, code, format, ...)   format ends in "(%d=%s)"
//   ZOT_LINE_ERR_IDS(mask, code, format, ...)   "(%d=%s pid=%u tid=%ld)"
//
// code is a variable that holds the error number, saved before anything else could
// overwrite errno; it is looked at twice.
#ifndef ZOT_LOG_LINE_INTERNAL_H
#define ZOT_LOG_LINE_INTERNAL_H

#include <atomic>
#include <cstdint>
#include <cstring>

#include "log/ZotLog.h"

// The process's log object; null, and all its lines silent, before the first named
// semaphore and after the last.  Any thread reads it at any time, and its level with
// it: the object and the word it points at stay readable for the life of the process.
// Only who holds the SharedBlockLock changes it (LogObjectInternal.h).
extern std::atomic<ZotOsLog*> pstLog;

// The level word of an object; null for a null object and a half-built one.
inline uint32_t* levelWord(ZotOsLog* log) {
  return log != nullptr ? std::atomic_ref(log->level).load(std::memory_order_acquire) : nullptr;
}

// Its value, or 0.  Other processes and threads change the word at any time; each
// reader is content with any of its values.
inline uint32_t logLevel(ZotOsLog* log) {
  uint32_t* const word = levelWord(log);
  return word != nullptr ? std::atomic_ref(*word).load(std::memory_order_relaxed) : 0;
}

inline bool logPasses(uint32_t level, uint32_t mask) {
  return (level & mask) > 1;
}

unsigned int logPid();
long logTid();  // the kernel's id of the calling thread

#define ZOT_LINE(mask, ...)                                                  \
  do {                                                                       \
    if (ZotOsLog* const zotLineLog = pstLog.load(std::memory_order_acquire); \
        logPasses(logLevel(zotLineLog), (mask))) {                           \
      ZotOsvLog(zotLineLog, (mask), __VA_ARGS__);                            \
    }                                                                        \
  } while (false)

#define ZOT_LINE_IDS(mask, format, ...) \
  ZOT_LINE((mask), format __VA_OPT__(, ) __VA_ARGS__, logPid(), logTid())

#define ZOT_LINE_ERR(mask, code, format, ...) \
  ZOT_LINE((mask), format __VA_OPT__(, ) __VA_ARGS__, (code), std::strerror(code))

#define ZOT_LINE_ERR_IDS(mask, code, format, ...) \
  ZOT_LINE((mask), format __VA_OPT__(, ) __VA_ARGS__, (code), std::strerror(code), logPid(), logTid())

#endif
