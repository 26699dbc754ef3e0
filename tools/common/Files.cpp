#include "tools/common/Files.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "tools/common/Failure.h"
#include "tools/common/Text.h"

namespace tool {

namespace {

[[noreturn]] void fail(const std::string& name, int error) {
  throw Failure(fmt::format("{}: {}", name, std::strerror(error)));
}

void writeAll(int descriptor, std::string_view bytes, const std::string& name) {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) {
      fail(name, errno);
    }
    bytes.remove_prefix(written > 0 ? static_cast<size_t>(written) : 0);
  }
}

// A file that is being written beside the one it will replace.
class Temporary {
 public:
  explicit Temporary(const std::string& path) : path_(path + ".XXXXXX"), descriptor_(mkstemp(path_.data())) {
    if (descriptor_ < 0) {
      fail(shownName(path), errno);
    }
  }
  ~Temporary() {
    if (descriptor_ >= 0) {
      close(descriptor_);
    }
    if (!path_.empty()) {
      unlink(path_.c_str());
    }
  }
  Temporary(const Temporary&) = delete;
  Temporary& operator=(const Temporary&) = delete;

  int descriptor() const { return descriptor_; }

  void become(const std::string& path) {
    // Some file systems report a failed write only when asked to finish it.
    if (fsync(descriptor_) != 0 || close(std::exchange(descriptor_, -1)) != 0 ||
        rename(path_.c_str(), path.c_str()) != 0) {
      fail(shownName(path), errno);
    }
    path_.clear();
  }

 private:
  std::string path_;
  int descriptor_;
};

// What a link points to, so that the link itself stays.
std::string targetOf(const std::string& path) {
  const std::unique_ptr<char, decltype(&std::free)> target(realpath(path.c_str(), nullptr), &std::free);
  return target != nullptr ? target.get() : path;
}

mode_t modeFor(const struct stat* before) {
  if (before != nullptr) {
    return before->st_mode & 0777;
  }
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

void writeInPlace(const std::string& path, std::string_view bytes) {
  std::FILE* const stream = std::fopen(path.c_str(), "wb");
  if (stream == nullptr) {
    fail(shownName(path), errno);
  }
  const bool whole = std::fwrite(bytes.data(), 1, bytes.size(), stream) == bytes.size();
  const int error = errno;
  if (std::fclose(stream) != 0 || !whole) {
    fail(shownName(path), whole ? errno : error);
  }
}

}  // namespace

std::string shownName(const std::string& path) {
  return path == "-" ? "<stdin>" : visible(path);
}

void Input::Close::operator()(std::FILE* stream) const {
  if (stream != stdin) {
    std::fclose(stream);
  }
}

Input::Input(const std::string& path)
    : name_(shownName(path)), stream_(path == "-" ? stdin : std::fopen(path.c_str(), "rb")) {
  static bool standardInputTaken = false;
  if (stream_.get() == stdin && std::exchange(standardInputTaken, true)) {
    throw Failure(fmt::format("{}: standard input can be read only once", name_));
  }
  struct stat status {};
  if (stream_ == nullptr) {
    failed();
  }
  if (fstat(fileno(stream_.get()), &status) == 0 && S_ISDIR(status.st_mode)) {
    fail(name_, EISDIR);
  }
}

void Input::failed() const {
  fail(name_, errno);
}

bool Input::line(std::string& text, size_t longest) {
  text.clear();
  int next = EOF;
  while ((next = getc_unlocked(stream_.get())) != EOF && next != '\n') {
    if (text.size() == longest) {
      throw FailureAt(fmt::format("{}:{}: a line of more than {} bytes", name_, lines_ + 1, longest));
    }
    text += static_cast<char>(next);
  }
  if (std::ferror(stream_.get()) != 0) {
    failed();
  }
  const bool some = next == '\n' || !text.empty();
  lines_ += some ? 1 : 0;
  return some;
}

std::string Input::rest(uint64_t most) {
  std::string bytes;
  char block[1 << 16];
  for (size_t count = 0; (count = std::fread(block, 1, sizeof block, stream_.get())) != 0;) {
    if (count > most - bytes.size()) {
      throw Failure(fmt::format("{}: more than {} bytes", name_, most));
    }
    bytes.append(block, count);
  }
  if (std::ferror(stream_.get()) != 0) {
    failed();
  }
  return bytes;
}

std::string readWhole(const std::string& path, uint64_t most) {
  return Input(path).rest(most);
}

void writeWhole(const std::string& path, std::string_view bytes) {
  if (path == "-") {
    std::fflush(stdout);
    writeAll(STDOUT_FILENO, bytes, "standard output");
    return;
  }
  const std::string target = targetOf(path);
  struct stat before {};
  const bool exists = stat(target.c_str(), &before) == 0;
  if (exists && !S_ISREG(before.st_mode)) {
    writeInPlace(target, bytes);
    return;
  }
  Temporary temporary(target);
  writeAll(temporary.descriptor(), bytes, shownName(path));
  if (fchmod(temporary.descriptor(), modeFor(exists ? &before : nullptr)) != 0) {
    fail(shownName(path), errno);
  }
  temporary.become(target);
}

}  // namespace tool
