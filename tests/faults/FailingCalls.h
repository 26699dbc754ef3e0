// The calls of the system that the library makes, failing or interrupted when a test wants it.
// Its C++ allocations are here led to malloc(), so that FailingHeap has them too.
#ifndef TESTS_FAILING_CALLS_H
#define TESTS_FAILING_CALLS_H

namespace zot_test {

// While one stands, the call behind the next `before` ones fails with EIO, and no other.
class FailingCall {
 public:
  explicit FailingCall(unsigned int before);
  ~FailingCall();
  FailingCall(FailingCall&&) = delete;

  // Whether there was such a call.
  bool refused() const;
};

// A storm of signals: while one stands, of 4 transfers and waits 3 are interrupted.
class InterruptedCalls {
 public:
  InterruptedCalls();
  ~InterruptedCalls();
  InterruptedCalls(InterruptedCalls&&) = delete;
};

}  // namespace zot_test

#endif
