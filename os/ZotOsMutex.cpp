#include "os/ZotOsSync.h"

#include <cstdio>

#include "os/NamedSemaphoreInternal.h"
#include "os/SyncHandleInternal.h"

namespace {

constexpr uint32_t kLetter = 'M';
constexpr int32_t kInfinite = -1;

// Logs a failed step against the caller's out-pointer.
bool passed(int rc, const char* step, ZotOsMutexHandle** out) {
  if (rc != 0) {
    logStepFailed("ZotOsMutexCreate", out, step, rc);
  }
  return rc == 0;
}

bool initRecursive(pthread_mutex_t* lock, ZotOsMutexHandle** out) {
  pthread_mutexattr_t attributes;
  if (!passed(pthread_mutexattr_init(&attributes), "pthread_mutexattr_init", out)) {
    return false;
  }
  const bool ready = passed(pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE),
                            "pthread_mutexattr_settype", out) &&
                     passed(pthread_mutex_init(lock, &attributes), "pthread_mutex_init", out);
  pthread_mutexattr_destroy(&attributes);
  return ready;
}

[[noreturn]] void refuseTimeout(const ZotOsMutexHandle* mutex) {
  ZOT_LINE_IDS(
      ZOT_LOG_ERROR,
      "ERROR ZotOsMutexWait(%p) invalid timeout, only infinite supported for local pthread based mutexes. "
      "(pid=%u tid=%ld)",
      static_cast<const void*>(mutex));
  constexpr char text[] =
      "ZotOsMutexWait - invalid timeout, only infinite supported for local pthread based mutexes.";
  std::puts(text);
  std::fprintf(stderr, "%s\n", text);
  std::exit(1);
}

uint32_t waitLocal(ZotOsMutexHandle* mutex, int32_t timeoutMs, uint32_t* result) {
  if (timeoutMs != kInfinite) {
    refuseTimeout(mutex);
  }
  const int rc = pthread_mutex_lock(&mutex->lock);
  if (result != nullptr) {
    *result = rc == 0 ? kZotOsWaitSignalled : kZotOsWaitFailed;
  }
  if (rc != 0) {
    ZOT_LINE_ERR_IDS(ZOT_LOG_ERROR, rc, "ERROR ZotOsMutexWait(%p) rc=%d=%s (pid=%u tid=%ld)",
                     static_cast<void*>(mutex));
    return 0;
  }
  ZOT_LINE_IDS(ZOT_LOG_DEBUG, "DEBUG ZotOsMutexWait(%p) (pid=%u tid=%ld)", static_cast<void*>(mutex));
  return 1;
}

}  // namespace

uint32_t ZotOsMutexCreate(ZotOsMutexHandle** mutex, uint32_t key) {
  auto handle = allocateHandle("ZotOsMutexCreate", mutex);
  if (handle == nullptr) {
    return 0;
  }
  if (key != 0) {
    return ZotOsCreate(&handle->semId, key, 1, kLetter) != 0 ? giveHandle(handle, 1, mutex) : 0;
  }
  if (!initRecursive(&handle->lock, mutex)) {
    return 0;
  }
  giveHandle(handle, 0, mutex);
  ZOT_LINE_IDS(ZOT_LOG_TRACE, "TRACE ZotOsMutexCreate(%p): (pid=%u tid=%ld)", static_cast<void*>(*mutex));
  return 1;
}

uint32_t ZotOsMutexOpen(ZotOsMutexHandle** mutex, int32_t key) {
  auto handle = allocateHandle("ZotOsMutexOpen", mutex);
  if (handle == nullptr || ZotOsOpen(&handle->semId, key, kLetter) == 0) {
    return 0;
  }
  return giveHandle(handle, 1, mutex);
}

uint32_t ZotOsMutexWait(ZotOsMutexHandle* mutex, int32_t timeoutMs, uint32_t* result) {
  if (refuseNull(mutex, "ZotOsMutexWait", "aMutex")) {
    return 0;
  }
  if (mutex->isNamed == 0) {
    return waitLocal(mutex, timeoutMs, result);
  }
  return ZotOsSet(mutex->semId, result, kLetter, timeoutMs == 0 ? IPC_NOWAIT : 0,
                  static_cast<uint32_t>(timeoutMs));
}

uint32_t ZotOsMutexRelease(ZotOsMutexHandle* mutex) {
  if (refuseNull(mutex, "ZotOsMutexRelease", "aMutex")) {
    return 0;
  }
  if (mutex->isNamed != 0) {
    return ZotOsRelease(mutex->semId, kLetter);
  }
  if (const int rc = pthread_mutex_unlock(&mutex->lock); rc != 0) {
    ZOT_LINE_ERR_IDS(ZOT_LOG_ERROR, rc, "ERROR ZotOsMutexRelease(%p) rc=%d=%s (pid=%u tid=%ld)",
                     static_cast<void*>(mutex));
    return 0;
  }
  ZOT_LINE_IDS(ZOT_LOG_DEBUG, "DEBUG ZotOsMutexRelease(%p) (pid=%u tid=%ld)", static_cast<void*>(mutex));
  return 1;
}

uint32_t ZotOsMutexClose(ZotOsMutexHandle* mutex) {
  if (refuseNull(mutex, "ZotOsMutexClose", "aMutex")) {
    return 0;
  }
  const Malloced<ZotOsMutexHandle> owned(mutex);
  if (mutex->isNamed != 0) {
    return ZotOsClose(mutex->semId, kLetter);
  }
  const int rc = destroyIdle(pthread_mutex_destroy, &mutex->lock, "ZotOsMutexClose", mutex, "destroy");
  ZOT_LINE_IDS(ZOT_LOG_TRACE, "TRACE ZotOsMutexClose(%p): rc=%d (pid=%u tid=%ld)", static_cast<void*>(mutex),
               rc);
  return 1;
}
