// System V objects that a test forgot.
#ifndef ZOT_TESTS_IPC_LEFTOVERS_H
#define ZOT_TESTS_IPC_LEFTOVERS_H

#include <string>

namespace zot_test {

// One line for each segment and semaphore set of this IPC namespace; empty when
// there is none.  A segment that is removed and only still attached does not count.
std::string ipcLeftovers();

}  // namespace zot_test

#endif
