#include "SyncCalls.h"

#include <pthread.h>
#include <unistd.h>

#include <cstdarg>
#include <regex>
#include <sstream>

#include "os/NamedSemaphoreInternal.h"

namespace zot_test {

SyncCalls syncCalls;
std::atomic<int> condWaits{0};
timespec lastDeadline{};

std::string filled(std::string lines, std::map<std::string, std::string> values) {
  const std::string pid = std::to_string(getpid());
  values["IDS"] = "pid=" + pid + " tid=" + pid;
  for (const auto& [word, value] : values) {
    lines = std::regex_replace(lines, std::regex(word + "\\b"), value);
  }
  return lines;
}

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const auto& line : lines) {
    text += line + "\n";
  }
  return text;
}

std::string addressText(const void* address) {
  return (std::ostringstream() << address).str();
}

}  // namespace zot_test

using namespace zot_test;

// A call that the script leaves alone reaches the real function.
#define SCRIPTED(function, parameters, arguments, scripted)     \
  int __real_##function parameters;                             \
  int __wrap_##function parameters {                            \
    const int entry = next(syncCalls.function);                 \
    return entry != 0 ? scripted : __real_##function arguments; \
  }

extern "C" {

using Cond = pthread_cond_t;
using Mutex = pthread_mutex_t;
using Attributes = pthread_mutexattr_t;

SCRIPTED(pthread_cond_destroy, (Cond * cond), (cond), entry)
SCRIPTED(pthread_cond_init, (Cond * cond, const pthread_condattr_t* how), (cond, how), entry)
SCRIPTED(pthread_cond_timedwait, (Cond * cond, Mutex* lock, const timespec* end), (cond, lock, end),
         (lastDeadline = *end, entry))
SCRIPTED(pthread_cond_wait, (Cond * cond, Mutex* lock), (cond, (++condWaits, lock)),
         (entry == kCancelled ? pthread_exit(nullptr) : void(), std::max(entry, 0)))
SCRIPTED(pthread_mutex_destroy, (Mutex * lock), (lock), entry)
SCRIPTED(pthread_mutex_init, (Mutex * lock, const Attributes* how), (lock, how), entry)
SCRIPTED(pthread_mutex_lock, (Mutex * lock), (lock), entry)
SCRIPTED(pthread_mutex_unlock, (Mutex * lock), (lock), entry)
SCRIPTED(pthread_mutexattr_init, (Attributes * how), (how), entry)
SCRIPTED(pthread_mutexattr_settype, (Attributes * how, int type), (how, type), entry)
SCRIPTED(semget, (key_t key, int count, int flags), (key, count, flags), (errno = entry, -1))
SCRIPTED(semop, (int semId, sembuf* operations, size_t count), (semId, operations, count),
         (errno = entry, -1))

int __real_semctl(int semId, int number, int command, ...);

int __wrap_semctl(int semId, int number, int command, ...) {
  if ((command == SETVAL || command == IPC_RMID) && fails(next(syncCalls.semctl))) {
    return -1;
  }
  va_list arguments;
  va_start(arguments, command);
  const ZotSemun value = command == SETVAL ? va_arg(arguments, ZotSemun) : ZotSemun{};
  va_end(arguments);
  return __real_semctl(semId, number, command, value);
}

}  // extern "C"
