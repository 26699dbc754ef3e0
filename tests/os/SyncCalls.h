// What the tests of events, mutexes and semaphores share: failures of pthread and
// semaphore calls on demand, and log lines with the numbers of this run.
#ifndef TESTS_SYNC_CALLS_H
#define TESTS_SYNC_CALLS_H

#include <atomic>
#include <ctime>

#include "support/CallScript.h"

namespace zot_test {

inline constexpr int kCancelled = -99;

// The linker leads the test program's calls of these functions to their scripts.
// A pthread call returns its entry; a negative one makes pthread_cond_wait return
// at once, as the system may at any time, and kCancelled ends its thread there with
// the lock held.  semctl counts SETVAL and IPC_RMID only.
struct SyncCalls {
  CallScript pthread_cond_destroy = {}, pthread_cond_init = {}, pthread_cond_timedwait = {},
             pthread_cond_wait = {}, pthread_mutex_destroy = {}, pthread_mutex_init = {},
             pthread_mutex_lock = {}, pthread_mutex_unlock = {}, pthread_mutexattr_init = {},
             pthread_mutexattr_settype = {}, semctl = {}, semget = {}, semop = {};
};
inline SyncCalls syncCalls;

// Threads that have entered the real pthread_cond_wait, each counted under its
// lock: who takes that lock afterwards knows that they wait.
inline std::atomic<int> condWaits{0};

inline timespec lastDeadline{};  // given to the last scripted pthread_cond_timedwait

// What a wait returns, times 1000, and its result word.
template <typename Handle, typename Timeout>
uint32_t waited(uint32_t (*wait)(Handle*, Timeout, uint32_t*), Handle* handle, Timeout timeoutMs) {
  uint32_t result = 77;
  const uint32_t passed = wait(handle, timeoutMs, &result);
  return passed * 1000 + result;
}

}  // namespace zot_test

#endif
