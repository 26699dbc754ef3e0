#include "os/ThreadRegistryInternal.h"

#include <cerrno>
#include <memory>
#include <new>

// Takes a thread off its registry when the thread's own variables are destroyed.  That
// happens on return, pthread_exit and cancellation alike, even below a C worker that
// was compiled without the tables for unwinding.
class ThreadRegistry::Membership {
 public:
  ~Membership() {
    if (registry_ != nullptr) {
      registry_->leave(handle_);
    }
  }
  void enter(ThreadRegistry* registry, uint32_t handle) {
    registry_ = registry;
    handle_ = handle;
  }

 private:
  ThreadRegistry* registry_ = nullptr;
  uint32_t handle_ = 0;
};

struct ThreadRegistry::Start {
  ThreadRegistry* registry;
  ZotOsThreadRoutine routine;
  void* arg;
  uint32_t handle;
};

thread_local ThreadRegistry::Membership ThreadRegistry::membership_;

ThreadRegistry& ThreadRegistry::instance() {
  alignas(ThreadRegistry) static unsigned char storage[sizeof(ThreadRegistry)];
  static ThreadRegistry& registry = []() -> ThreadRegistry& {
    // Of the parent's threads a forked child has only the one that forked.
    pthread_atfork([] { instance().mutex_.lock(); }, [] { instance().mutex_.unlock(); },
                   [] { instance().keepOnlyCaller(); });
    return *new (storage) ThreadRegistry;
  }();
  return registry;
}

int ThreadRegistry::start(const pthread_attr_t& attributes, ZotOsThreadRoutine routine, void* arg,
                          uint32_t* handle) try {
  *handle = 0;
  auto start = std::make_unique<Start>(Start{this, routine, arg, 0});
  // Held until the new thread's identifier is in place: one that ends at once waits
  // here before it leaves.
  const std::lock_guard lock(mutex_);
  const auto entry = threads_.try_emplace(unusedHandle()).first;
  lastHandle_ = *handle = start->handle = entry->first;
  const int error = pthread_create(&entry->second, &attributes, run, start.get());
  if (error != 0) {
    threads_.erase(entry);
    *handle = 0;
    return error;
  }
  (void)start.release();  // the thread's own now
  return 0;
} catch (const std::bad_alloc&) {
  return ENOMEM;
}

int ThreadRegistry::cancel(uint32_t handle) {
  const std::lock_guard lock(mutex_);
  const auto entry = threads_.find(handle);
  return entry == threads_.end() ? ESRCH : pthread_cancel(entry->second);
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
  membership_.enter(start.registry, start.handle);
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

void ThreadRegistry::leave(uint32_t handle) {
  const std::lock_guard lock(mutex_);
  threads_.erase(handle);
}

void ThreadRegistry::keepOnlyCaller() {
  std::erase_if(threads_, [](const auto& entry) { return pthread_equal(entry.second, pthread_self()) == 0; });
  mutex_.unlock();
}
