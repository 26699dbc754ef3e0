// The process's one lock around calls that take a lock of the C library: asking for the
// time zone, and writing to the system log.  Forking waits until no thread is in one of
// them.  The C library does not: the child of a fork in the middle of one would find its
// lock taken, by a thread that the child does not have, and hang at its first line.
//
// Who holds it is not cancelled, and takes no other lock of this library.
#ifndef ZOT_LOG_C_LIBRARY_LOCK_INTERNAL_H
#define ZOT_LOG_C_LIBRARY_LOCK_INTERNAL_H

#include "os/CancellationOff.h"

class CLibraryLock {
 public:
  CLibraryLock();
  ~CLibraryLock();
  CLibraryLock(const CLibraryLock&) = delete;
  CLibraryLock& operator=(const CLibraryLock&) = delete;

  // From here on forking takes the lock; the first call counts, and one is made at load.
  // A lock within which lines are written calls this before its own registration: forking
  // takes the locks in the reverse order of that, as threads do.
  static int makeForkSafe();

 private:
  CancellationOff uncancelled_;  // gone last, when the lock is free again
};

#endif
