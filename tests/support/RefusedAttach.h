// Lets shmat() fail, so that tests see what a segment does that cannot be attached.
#ifndef ZOT_TESTS_REFUSED_ATTACH_H
#define ZOT_TESTS_REFUSED_ATTACH_H

namespace zot_test {

// While one stands, shmat() fails with this number in this thread.
class RefusedAttach {
 public:
  explicit RefusedAttach(int number) { error = number; }
  ~RefusedAttach() { error = 0; }
  RefusedAttach(const RefusedAttach&) = delete;
  RefusedAttach& operator=(const RefusedAttach&) = delete;

  static inline thread_local int error = 0;
};

}  // namespace zot_test

#endif
