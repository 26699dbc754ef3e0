// Looks for a secret in the blocks that the C heap gets back.  Only calls made by
// the objects of the test program are seen, not those inside shared libraries.
#ifndef TESTS_WATCHED_FREES_H
#define TESTS_WATCHED_FREES_H

#include <malloc.h>

#include <string_view>

// While one stands, every block freed in this thread is searched for the secret.
class WatchedFrees {
 public:
  explicit WatchedFrees(std::string_view secret) : secret_(secret) { standing_ = this; }
  ~WatchedFrees() { standing_ = nullptr; }
  WatchedFrees(WatchedFrees&&) = delete;

  // Blocks seen, and those among them that held the secret.
  unsigned int freed = 0;
  unsigned int found = 0;

  static void look(void* block) {
    if (standing_ == nullptr || block == nullptr) {
      return;
    }
    const std::string_view bytes(static_cast<const char*>(block), malloc_usable_size(block));
    ++standing_->freed;
    standing_->found += bytes.find(standing_->secret_) != std::string_view::npos;
  }

 private:
  static inline thread_local WatchedFrees* standing_ = nullptr;
  std::string_view secret_;
};

#endif
