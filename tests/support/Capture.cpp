#include "support/Capture.h"

#include <unistd.h>

#include <cstdio>
#include <stdexcept>

namespace zot_test {

namespace {

// Sends a descriptor into a file without a name for as long as it lives.
class Diverted {
 public:
  explicit Diverted(int descriptor)
      : descriptor_(descriptor), saved_(dup(descriptor)), file_(std::tmpfile()) {
    if (saved_ == -1 || file_ == nullptr || dup2(fileno(file_), descriptor_) == -1) {
      throw std::runtime_error("cannot divert a descriptor");
    }
  }
  Diverted(const Diverted&) = delete;
  Diverted& operator=(const Diverted&) = delete;
  ~Diverted() {
    dup2(saved_, descriptor_);
    close(saved_);
    std::fclose(file_);
  }

  std::string text() const {
    std::string all;
    char part[4096];
    off_t at = 0;
    for (ssize_t got; (got = pread(fileno(file_), part, sizeof part, at)) > 0; at += got) {
      all.append(part, static_cast<size_t>(got));
    }
    return all;
  }

 private:
  int descriptor_;
  int saved_;
  FILE* file_;
};

}  // namespace

Output captured(const std::function<void()>& body) {
  std::fflush(nullptr);
  const Diverted out(STDOUT_FILENO);
  const Diverted err(STDERR_FILENO);
  body();
  std::fflush(nullptr);
  return {out.text(), err.text()};
}

}  // namespace zot_test
