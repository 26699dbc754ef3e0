// Puts off the cancelling of the calling thread while it lives, so that a call which
// opens, maps or changes something also finishes it.  A request that comes in the
// meantime stays pending until the thread's next wait.
//
// Objects may be nested; the first one in ends the delay.  Errno is left alone.
#ifndef ZOT_OS_CANCELLATION_OFF_H
#define ZOT_OS_CANCELLATION_OFF_H

#include <pthread.h>

class CancellationOff {
 public:
  CancellationOff() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before_); }
  ~CancellationOff() { pthread_setcancelstate(before_, &before_); }
  CancellationOff(const CancellationOff&) = delete;
  CancellationOff& operator=(const CancellationOff&) = delete;

 private:
  int before_ = PTHREAD_CANCEL_ENABLE;
};

#endif
