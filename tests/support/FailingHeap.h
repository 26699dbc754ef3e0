// Lets the C heap refuse, so that tests see what happens when memory runs out.
// Only calls made by the objects of the test program are affected, not those
// inside shared libraries.
#ifndef TESTS_FAILING_HEAP_H
#define TESTS_FAILING_HEAP_H

#include <cerrno>

// While one stands, malloc, calloc and realloc return null in this thread, after
// letting `after` calls pass.
class FailingHeap {
 public:
  explicit FailingHeap(unsigned int after = 0) : passing_(after) { standing_ = this; }
  ~FailingHeap() { standing_ = nullptr; }
  FailingHeap(FailingHeap&&) = delete;

  bool refused() const { return refused_; }

  // Asked by every call: whether it has to fail, with errno set.
  static bool refuses() {
    if (standing_ == nullptr || standing_->passing_-- != 0) {
      return false;
    }
    standing_->passing_ = 0;
    standing_->refused_ = true;
    errno = ENOMEM;
    return true;
  }

 private:
  static inline thread_local FailingHeap* standing_ = nullptr;
  unsigned int passing_;
  bool refused_ = false;
};

#endif
