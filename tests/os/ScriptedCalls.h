// Failures of system calls on demand: the linker leads the test program's calls
// of these functions here.
#ifndef ZOT_TESTS_SCRIPTED_CALLS_H
#define ZOT_TESTS_SCRIPTED_CALLS_H

#include "support/CallScript.h"

namespace zot_test {

// The script of each function.  A negative entry is the number of bytes that read
// and write move at most.
struct ScriptedCalls {
  CallScript close = {}, fchmod = {}, fchown = {}, read = {}, utime = {}, write = {};
};
extern ScriptedCalls scripted;

// The descriptor flags that the last write met.
extern int flagsAtLastWrite;

}  // namespace zot_test

#endif
