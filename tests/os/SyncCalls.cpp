#include "SyncCalls.h"

#include <pthread.h>

#include <cstdarg>

#include "os/NamedSemaphoreInternal.h"

using namespace zot_test;

#define SCRIPTED(function, parameters, arguments, scripted) \
  ZOT_SCRIPTED(syncCalls.function, int, function, parameters, arguments, scripted)

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
