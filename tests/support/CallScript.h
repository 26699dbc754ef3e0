// What the next calls of a function do, first to last, when the linker leads a
// test program's calls of it to a __wrap_ function.
#ifndef TESTS_CALL_SCRIPT_H
#define TESTS_CALL_SCRIPT_H

#include <cerrno>
#include <deque>

namespace zot_test {

// Without an entry, or with 0, the real function runs; a positive entry is the
// errno of a failure, and each function says what a negative one means.
using CallScript = std::deque<int>;

inline CallScript attaches;  // of shmat(), in every test program

inline int next(CallScript& script) {
  if (script.empty()) {
    return 0;
  }
  const int entry = script.front();
  script.pop_front();
  return entry;
}

// Returns true, with errno set, when the script wants a failure.
inline bool fails(int entry) {
  if (entry > 0) {
    errno = entry;
  }
  return entry > 0;
}

}  // namespace zot_test

// A function that asks its script, and does `scripted` with an entry other than 0.
#define ZOT_SCRIPTED(script, type, function, parameters, arguments, scripted) \
  type __real_##function parameters;                                          \
  type __wrap_##function parameters {                                         \
    const int entry = zot_test::next(script);                                 \
    return entry != 0 ? scripted : __real_##function arguments;               \
  }

#endif
