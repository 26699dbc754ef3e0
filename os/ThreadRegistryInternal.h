// The live threads behind the 32-bit handles that callers hold.
//
// A thread is registered before its handle is given out and leaves while its
// pthread_t is still valid, however it ends.  Everything that uses a registered
// pthread_t does so under the registry's lock, so a handle of the past meets no stranger.
// The lock is held for moments only, never while a thread is made.
#ifndef ZOT_THREAD_REGISTRY_INTERNAL_H
#define ZOT_THREAD_REGISTRY_INTERNAL_H

#include <pthread.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>

#include "os/ZotOsThread.h"

class ThreadRegistry {
 public:
  // The process's registry; it outlives static destructors, as detached threads do.
  static ThreadRegistry& instance();

  ThreadRegistry() = default;
  ThreadRegistry(const ThreadRegistry&) = delete;
  ThreadRegistry& operator=(const ThreadRegistry&) = delete;

  // Creates a thread and stores its handle before the thread runs.  Returns 0, or the
  // error number with *handle 0.
  int start(const pthread_attr_t& attributes, ZotOsThreadRoutine routine, void* arg, uint32_t* handle);

  // Returns 0, or ESRCH when the handle's thread has ended.
  int cancel(uint32_t handle);

  size_t size();

  // Forking takes the lock from here on, and the child forgets its parent's threads.
  // Called at load.
  static int makeForkSafe();

  // The next handle is the one behind this, or the first unused one after that.
  void continueAfter(uint32_t lastHandle);

 private:
  struct Start;

  static void* run(void* start);

  uint32_t unusedHandle() const;
  uint32_t enter();
  void identify(uint32_t handle, pthread_t thread);
  void leave(uint32_t handle);
  void keepOnlyCaller();

  static inline std::mutex mutex_;
  static inline ThreadRegistry* made_ = nullptr;          // instance(), once there is one
  std::map<uint32_t, std::optional<pthread_t>> threads_;  // not known while one is being made
  uint32_t lastHandle_ = 0;
  pthread_key_t key_{};
  int keyError_ = 0;
};

#endif
