// Failures of system calls on demand: the linker leads the test program's calls
// of these functions here.
#ifndef ZOT_TESTS_SCRIPTED_CALLS_H
#define ZOT_TESTS_SCRIPTED_CALLS_H

#include <deque>

namespace zot_test {

// What the next calls of each function do, first to last; without an entry, or
// with 0, the real function runs.  A positive entry is the errno of a failure, a
// negative one the number of bytes that read and write move at most.
struct ScriptedCalls {
  std::deque<int> close = {}, fchmod = {}, fchown = {}, read = {}, utime = {}, write = {};
};
extern ScriptedCalls scripted;

// The descriptor flags that the last write met.
extern int flagsAtLastWrite;

}  // namespace zot_test

#endif
