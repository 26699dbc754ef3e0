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

std::vector<std::string> filled(std::vector<std::string> lines, std::map<std::string, std::string> values) {
  const std::string pid = std::to_string(getpid());
  values["IDS"] = "pid=" + pid + " tid=" + pid;
  for (auto& line : lines) {
    for (const auto& [word, value] : values) {
      line = std::regex_replace(line, std::regex(word), value);
    }
  }
  return lines;
}

std::string addressText(const void* address) {
  return (std::ostringstream() << address).str();
}

}  // namespace zot_test

using namespace zot_test;

#define SCRIPTED_PTHREAD(function, parameters, arguments)   \
  int __real_##function parameters;                         \
  int __wrap_##function parameters {                        \
    const int entry = next(syncCalls.function);             \
    return entry > 0 ? entry : __real_##function arguments; \
  }

extern "C" {

using Cond = pthread_cond_t;
using Mutex = pthread_mutex_t;
using Attributes = pthread_mutexattr_t;

SCRIPTED_PTHREAD(pthread_cond_destroy, (Cond * cond), (cond))
SCRIPTED_PTHREAD(pthread_cond_init, (Cond * cond, const pthread_condattr_t* how), (cond, how))
SCRIPTED_PTHREAD(pthread_mutex_destroy, (Mutex * lock), (lock))
SCRIPTED_PTHREAD(pthread_mutex_init, (Mutex * lock, const Attributes* how), (lock, how))
SCRIPTED_PTHREAD(pthread_mutex_lock, (Mutex * lock), (lock))
SCRIPTED_PTHREAD(pthread_mutexattr_init, (Attributes * how), (how))
SCRIPTED_PTHREAD(pthread_mutexattr_settype, (Attributes * how, int type), (how, type))

int __real_pthread_cond_wait(Cond* cond, Mutex* lock);
int __real_pthread_cond_timedwait(Cond* cond, Mutex* lock, const timespec* deadline);
int __real_semctl(int semId, int number, int command, ...);
int __real_semget(key_t key, int count, int flags);
int __real_semop(int semId, sembuf* operations, size_t count);

int __wrap_pthread_cond_wait(Cond* cond, Mutex* lock) {
  ++condWaits;
  const int entry = next(syncCalls.pthread_cond_wait);
  return entry == 0 ? __real_pthread_cond_wait(cond, lock) : std::max(entry, 0);
}

int __wrap_pthread_cond_timedwait(Cond* cond, Mutex* lock, const timespec* deadline) {
  lastDeadline = *deadline;
  const int entry = next(syncCalls.pthread_cond_timedwait);
  return entry > 0 ? entry : __real_pthread_cond_timedwait(cond, lock, deadline);
}

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

int __wrap_semget(key_t key, int count, int flags) {
  return fails(next(syncCalls.semget)) ? -1 : __real_semget(key, count, flags);
}

int __wrap_semop(int semId, sembuf* operations, size_t count) {
  return fails(next(syncCalls.semop)) ? -1 : __real_semop(semId, operations, count);
}

}  // extern "C"
