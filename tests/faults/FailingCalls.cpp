#include "FailingCalls.h"

#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/select.h>
#include <sys/sem.h>
#include <sys/shm.h>
#include <sys/stat.h>
#include <utime.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "os/NamedSemaphoreInternal.h"
#include "support/CallScript.h"

// One script for all the calls: shmat() has it in every test program.
static zot_test::CallScript& calls = zot_test::attaches;
static unsigned int interruptions = 0;  // 0 without a storm

namespace zot_test {

FailingCall::FailingCall(unsigned int before) {
  calls.assign(before, 0);
  calls.push_back(EIO);
}

FailingCall::~FailingCall() {
  calls.clear();
}

bool FailingCall::refused() const {
  return calls.empty();
}

InterruptedCalls::InterruptedCalls() {
  interruptions = 1;
}

InterruptedCalls::~InterruptedCalls() {
  interruptions = 0;
}

}  // namespace zot_test

static int nextTransfer() {
  return interruptions != 0 && interruptions++ % 4 != 0 ? EINTR : zot_test::next(calls);
}

// The linker's --wrap option sends the calls here.  A call that gives something back has
// done so when it reports a failure.
#define FAILING(type, function, parameters, arguments, failure) \
  ZOT_SCRIPTED(calls, type, function, parameters, arguments, (errno = entry, failure))
#define INTERRUPTED(type, function, parameters, arguments)                 \
  type __real_##function parameters;                                       \
  type __wrap_##function parameters {                                      \
    const int entry = nextTransfer();                                      \
    return entry != 0 ? (errno = entry, -1) : __real_##function arguments; \
  }
#define GIVING_BACK(function, parameters, arguments)             \
  int __real_##function parameters;                              \
  int __wrap_##function parameters {                             \
    const int result = __real_##function arguments;              \
    return zot_test::fails(zot_test::next(calls)) ? -1 : result; \
  }
#define RETURNING_ERRORS(function, parameters, arguments) \
  ZOT_SCRIPTED(calls, int, function, parameters, arguments, entry)

extern "C" {

INTERRUPTED(ssize_t, read, (int file, void* bytes, size_t count), (file, bytes, count))
INTERRUPTED(ssize_t, write, (int file, const void* bytes, size_t count), (file, bytes, count))
INTERRUPTED(ssize_t, copy_file_range,
            (int from, off64_t* fromAt, int to, off64_t* toAt, size_t count, unsigned int flags),
            (from, fromAt, to, toAt, count, flags))
INTERRUPTED(ssize_t, pread64, (int file, void* bytes, size_t count, off64_t at), (file, bytes, count, at))
FAILING(int, access, (const char* path, int mode), (path, mode), -1)
FAILING(int, fchmod, (int file, mode_t mode), (file, mode), -1)
FAILING(int, fchown, (int file, uid_t owner, gid_t group), (file, owner, group), -1)
FAILING(FILE*, fopen64, (const char* path, const char* mode), (path, mode), nullptr)
FAILING(size_t, fread, (void* to, size_t size, size_t count, FILE* file), (to, size, count, file), 0)
FAILING(int, fseek, (FILE * file, long offset, int whence), (file, offset, whence), -1)
FAILING(int, fstat64, (int file, struct stat* status), (file, status), -1)
FAILING(int, fstatat64, (int directory, const char* name, struct stat* status, int flags),
        (directory, name, status, flags), -1)
FAILING(int, mkdir, (const char* path, mode_t mode), (path, mode), -1)
FAILING(void*, mmap64, (void* at, size_t size, int protection, int flags, int file, off64_t offset),
        (at, size, protection, flags, file, offset), MAP_FAILED)
FAILING(void*, mremap, (void* at, size_t size, size_t newSize, int flags, void* newAt),
        (at, size, newSize, flags, newAt), MAP_FAILED)
FAILING(int, msync, (void* at, size_t size, int flags), (at, size, flags), -1)
FAILING(DIR*, opendir, (const char* path), (path), nullptr)
FAILING(dirent*, readdir64, (DIR * directory), (directory), nullptr)
FAILING(int, rmdir, (const char* path), (path), -1)
FAILING(int, select, (int count, fd_set* in, fd_set* out, fd_set* bad, timeval* wait),
        (count, in, out, bad, wait), -1)
FAILING(int, semget, (key_t key, int count, int flags), (key, count, flags), -1)
FAILING(int, shmget, (key_t key, size_t size, int flags), (key, size, flags), -1)
FAILING(int, stat64, (const char* path, struct stat* status), (path, status), -1)
FAILING(int, system, (const char* command), (command), -1)
FAILING(int, unlink, (const char* path), (path), -1)
FAILING(int, unlinkat, (int directory, const char* name, int flags), (directory, name, flags), -1)
FAILING(int, utime, (const char* path, const utimbuf* times), (path, times), -1)
GIVING_BACK(close, (int file), (file))
GIVING_BACK(closedir, (DIR * directory), (directory))
GIVING_BACK(fclose, (FILE * file), (file))
GIVING_BACK(munmap, (void* at, size_t size), (at, size))
GIVING_BACK(shmdt, (const void* at), (at))
RETURNING_ERRORS(pthread_cond_init, (pthread_cond_t * made, const pthread_condattr_t* how), (made, how))
RETURNING_ERRORS(pthread_create,
                 (pthread_t * made, const pthread_attr_t* how, void* (*run)(void*), void* arg),
                 (made, how, run, arg))
RETURNING_ERRORS(pthread_mutex_init, (pthread_mutex_t * made, const pthread_mutexattr_t* how), (made, how))
RETURNING_ERRORS(pthread_mutexattr_init, (pthread_mutexattr_t * made), (made))
RETURNING_ERRORS(pthread_mutexattr_settype, (pthread_mutexattr_t * made, int type), (made, type))

int __real_semop(int id, sembuf* operations, size_t count);
int __wrap_semop(int id, sembuf* operations, size_t count) {
  const int entry = operations->sem_op < 0 ? nextTransfer() : zot_test::next(calls);
  return zot_test::fails(entry) ? -1 : __real_semop(id, operations, count);
}

int __real_open64(const char* path, int flags, ...);
int __wrap_open64(const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
  va_end(more);
  return zot_test::fails(zot_test::next(calls)) ? -1 : __real_open64(path, flags, mode);
}

int __real_shmctl(int id, int command, shmid_ds* status);
int __wrap_shmctl(int id, int command, shmid_ds* status) {
  const int entry = zot_test::next(calls);
  const int result = entry == 0 || command == IPC_RMID ? __real_shmctl(id, command, status) : -1;
  return zot_test::fails(entry) ? -1 : result;
}

int __real_semctl(int id, int number, int command, ...);
int __wrap_semctl(int id, int number, int command, ...) {
  va_list more;
  va_start(more, command);
  const ZotSemun argument = command == SETVAL ? va_arg(more, ZotSemun) : ZotSemun{};
  va_end(more);
  // A set that cannot be removed keeps its counts, and the process its log: no failure here.
  const bool failing = command != IPC_RMID && zot_test::fails(zot_test::next(calls));
  return failing ? -1 : __real_semctl(id, number, command, argument);
}

}  // extern "C"

// Strings and containers of the library fail with its own allocations.  The thread sanitizer
// has operators that nobody may replace.
#ifndef __has_feature
#define __has_feature(name) 0
#endif
#if !__has_feature(thread_sanitizer)
void* operator new(size_t size) {
  if (void* const block = std::malloc(size)) {
    return block;
  }
  throw std::bad_alloc();
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return std::malloc(size);
}
void operator delete(void* block) noexcept {
  std::free(block);
}
void operator delete(void* block, size_t) noexcept {
  std::free(block);
}
#endif
