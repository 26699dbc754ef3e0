// What the rooms share about the process and no program sees.
#ifndef ZOT_OS_SYSTEM_INTERNAL_H
#define ZOT_OS_SYSTEM_INTERNAL_H

#include <atomic>
#include <cstdint>

// Seconds since the epoch at which ZotOsInit first ran; 0 before that.
extern std::atomic<int32_t> dZotOsUpTime;

// 1 from ZotOsSetShutdown to ZotOsSetSystemUp.
extern std::atomic<uint8_t> fShutdown;

#endif
