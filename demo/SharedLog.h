// A program's own log object, attached to the level word that all processes share, and
// the named objects of window and service.
#ifndef DEMO_SHARED_LOG_H
#define DEMO_SHARED_LOG_H

#include <cstdint>
#include <string>

#include "log/ZotLog.h"

constexpr uint32_t kWindowMutexKey = 0x5A4D0001;   // held by the one window
constexpr uint32_t kAppliedEventKey = 0x5A4D0002;  // set after a profile was stored

class SharedLog {
 public:
  SharedLog() { fnfOpenShm(&log_.handle, &log_.localLevel, &log_.level); }
  ~SharedLog() { fnvCloseShm(&log_.handle); }
  SharedLog(const SharedLog&) = delete;
  SharedLog& operator=(const SharedLog&) = delete;

  operator ZotOsLog*() { return &log_; }

  // The shared block; null when it cannot be attached: then nothing is logged.
  const unsigned char* block() const { return static_cast<const unsigned char*>(log_.handle.address); }

 private:
  ZotOsLog log_ = {};
};

// The library's writers know standard output; from now on it is this file, emptied.  Both
// programs do so, and the window shows what comes.
bool logToFile(const std::string& path);

#endif
