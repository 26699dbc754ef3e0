#include "os/ThreadRegistryInternal.h"

#include <cerrno>
#include <memory>
#include <new>

struct ThreadRegistry::Start {
  ZotOsThreadRoutine routine;
  void* arg;
  uint32_t handle;
};

namespace {

// Before a program registers fork handlers of its own: those then run while the lock is
// free, and may start threads.
[[maybe_unused]] const int atLoad = ThreadRegistry::makeForkSafe();

}  // namespace

int ThreadRegistry::makeForkSafe() {
  return pthread_atfork([] { mutex_.lock(); }, [] { mutex_.unlock(); },
                        [] {
                          if (made_ != nullptr) {
                            made_->keepOnlyCaller();
                          }
                          mutex_.unlock();
                        });
}

ThreadRegistry& ThreadRegistry::instance() {
  alignas(ThreadRegistry) static unsigned char storage[sizeof(ThreadRegistry)];
  static ThreadRegistry& registry = []() -> ThreadRegistry& {
    auto* const made = new (storage) ThreadRegistry;
    // The key's value, a thread's handle, is destroyed on return, pthread_exit and
    // cancellation alike, even below a C worker that was compiled without the tables for
    // unwinding.  A thread_local would ask for memory that may not be there.
    made->keyError_ = pthread_key_create(&made->key_, [](void* handle) {
      instance().leave(static_cast<uint32_t>(reinterpret_cast<uintptr_t>(handle)));
    });
    const std::lock_guard lock(mutex_);
    made_ = made;
    return *made;
  }();
  return registry;
}

int ThreadRegistry::start(const pthread_attr_t& attributes, ZotOsThreadRoutine routine, void* arg,
                          uint32_t* handle) try {
  *handle = 0;
  if (keyError_ != 0) {
    return keyError_;
  }
  auto start = std::make_unique<Start>(Start{routine, arg, 0});
  const uint32_t mine = start->handle = enter();
  *handle = mine;
  pthread_t thread;
  const int error = pthread_create(&thread, &attributes, run, start.get());
  if (error != 0) {
    leave(mine);
    *handle = 0;
    return error;
  }
  (void)start.release();  // the thread's own now
  identify(mine, thread);
  return 0;
} catch (const std::bad_alloc&) {
  return ENOMEM;
}

int ThreadRegistry::cancel(uint32_t handle) {
  const std::lock_guard lock(mutex_);
  const auto entry = threads_.find(handle);
  return entry == threads_.end() || !entry->second ? ESRCH : pthread_cancel(*entry->second);
}

size_t ThreadRegistry::size() {
  const std::lock_guard lock(mutex_);
  return threads_.size();
}

void ThreadRegistry::continueAfter(uint32_t lastHandle) {
  const std::lock_guard lock(mutex_);
  lastHandle_ = lastHandle;
}

void* ThreadRegistry::run(void* argument) {
  // Freed before the routine starts, which may never come back here.
  const Start start = *std::unique_ptr<Start>(static_cast<Start*>(argument));
  ThreadRegistry& registry = instance();
  // Its creator does the same, but perhaps not before the routine uses the handle.
  registry.identify(start.handle, pthread_self());
  if (pthread_setspecific(registry.key_, reinterpret_cast<void*>(uintptr_t{start.handle})) != 0) {
    // Cancelling it is refused, rather than done to a stranger later.
    registry.leave(start.handle);  // GCOVR_EXCL_LINE: only without memory inside the C library
  }
  void* const result = start.routine(start.arg);
  // A worker that allows cancellation at any moment must not lose it inside leave().
  int before = 0;
  pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before);
  return result;
}

uint32_t ThreadRegistry::unusedHandle() const {
  uint32_t handle = lastHandle_;
  do {
    ++handle;
  } while (handle == 0 || threads_.contains(handle));
  return handle;
}

uint32_t ThreadRegistry::enter() {
  const std::lock_guard lock(mutex_);
  lastHandle_ = unusedHandle();
  threads_.try_emplace(lastHandle_);
  return lastHandle_;
}

void ThreadRegistry::identify(uint32_t handle, pthread_t thread) {
  const std::lock_guard lock(mutex_);
  if (const auto entry = threads_.find(handle); entry != threads_.end()) {
    entry->second = thread;
  }
}

void ThreadRegistry::leave(uint32_t handle) {
  const std::lock_guard lock(mutex_);
  threads_.erase(handle);
}

// Of the parent's threads a forked child has only the one that forked.
void ThreadRegistry::keepOnlyCaller() {
  std::erase_if(threads_, [](const auto& entry) {
    return !entry.second || pthread_equal(*entry.second, pthread_self()) == 0;
  });
}
