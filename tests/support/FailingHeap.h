// Lets the C heap refuse, so that tests see what happens when memory runs out.
// Only calls made by the objects of the test program are affected, not those
// inside shared libraries.
#ifndef TESTS_FAILING_HEAP_H
#define TESTS_FAILING_HEAP_H

// While one stands, malloc, calloc and realloc return null in this thread, after
// letting `after` calls pass.
class FailingHeap {
 public:
  explicit FailingHeap(unsigned int after = 0);
  ~FailingHeap();
  FailingHeap(const FailingHeap&) = delete;
  FailingHeap& operator=(const FailingHeap&) = delete;
};

#endif
