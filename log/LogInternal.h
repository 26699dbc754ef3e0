// The bodies of the log writers, for the room itself and its tests.  They look at
// no level: the caller has done that and passes bit 0 of the level word.
#ifndef ZOT_LOG_INTERNAL_H
#define ZOT_LOG_INTERNAL_H

#include <atomic>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "log/ZotLog.h"

// Not 0 once the system log was opened; bit 0x10000000 does not count.
extern std::atomic<uint32_t> dLogOpen;

void fnvvLog(uint32_t mask, uint32_t toStdout, const char* format, va_list args) ZOT_PRINTF(3, 0);
void fnvLogData(uint32_t toStdout, const void* data, long length, int mode, const char* text);
void fnvvLogData(uint32_t toStdout, const void* data, long length, int mode, const char* format, va_list args)
    ZOT_PRINTF(5, 0);

// Writes a line to standard output, or what stands behind its prefix to the system log.
// The line has a terminator.
void vWrLog(uint32_t toStdout, std::string_view line, size_t prefixLength);

// The time of day as a log line shows it, in the zone that the process has at the
// moment; the calling thread's last one, or at first an empty text, when there is no
// time to be had.  The text is the thread's own and stays until its next call.
const char* cpszGetTime();

// Fills dst, of size bytes with the terminator, with the length line and the dump
// that ZotOsvLogData promises for this mode.
void vPrepLogData(char* dst, unsigned int size, const void* data, long length, int mode);

#endif
