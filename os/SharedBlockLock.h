// The process's one lock over its share of the control block: the log object, the
// block's address, and whatever this process counts in the block.
//
// Who holds it is not cancelled.  It is never held across a wait, and a forked child
// finds it free.  Other processes are not held off by it.
#ifndef ZOT_OS_SHARED_BLOCK_LOCK_H
#define ZOT_OS_SHARED_BLOCK_LOCK_H

#include "os/CancellationOff.h"

struct SharedControlBlock;

class SharedBlockLock {
 public:
  SharedBlockLock();
  ~SharedBlockLock();
  SharedBlockLock(const SharedBlockLock&) = delete;
  SharedBlockLock& operator=(const SharedBlockLock&) = delete;

 private:
  CancellationOff uncancelled_;  // gone last, when the lock is free again
};

// The block as this process has it attached, null without a log object.  Only who
// holds the lock may look at it.
extern SharedControlBlock* pstShm;

#endif
