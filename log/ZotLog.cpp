#include "log/ZotLog.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "log/LogInternal.h"
#include "log/LogLineInternal.h"
#include "os/zot_string.h"

namespace {

constexpr size_t kPrefixSize = 257;
constexpr size_t kMessageSize = 1543;
constexpr unsigned int kBodySize = 1280;  // a message with a dump

// The system log shows errno's text for "%m", and a caller may still have to look
// at errno after its line is out.
class ErrnoKept {
 public:
  ErrnoKept() : saved_(errno) {}
  ~ErrnoKept() { errno = saved_; }
  ErrnoKept(const ErrnoKept&) = delete;
  ErrnoKept& operator=(const ErrnoKept&) = delete;
  void restore() const { errno = saved_; }

 private:
  int saved_;
};

// A line as it is put together: the prefix, and the message right behind it, so that
// both leave in one write.
class Line {
 public:
  // The prefix begins with the time.
  Line() {
    append(cpszGetTime());
    append(" - ");
  }

  // As much of the text as the prefix has room for.
  void append(std::string_view text) {
    const size_t length = std::min(text.size(), kPrefixSize - 1 - prefix_);
    std::memcpy(text_ + prefix_, text.data(), length);
    prefix_ += length;
  }

  // Room for a message of kMessageSize, with its terminator.
  char* message() { return text_ + prefix_; }

  void write(uint32_t toStdout, size_t length) const { vWrLog(toStdout, {text_, prefix_ + length}, prefix_); }

 private:
  char text_[kPrefixSize - 1 + kMessageSize];
  size_t prefix_ = 0;
};

// Returns the length of what stands in dst, which a "%c" of 0 ends like any other text.
ZOT_PRINTF(3, 0) size_t formatMessage(char* dst, size_t size, const char* format, va_list args) {
  dst[0] = '\0';
  if (format != nullptr) {
    // The writers have started args; the analyser does not see that from here.
    std::vsnprintf(dst, size, format, args);  // NOLINT(clang-analyzer-valist.Uninitialized)
  }
  return std::strlen(dst);
}

// Returns the length of what stands in dst.
size_t putData(char* dst, unsigned int size, const void* data, long length, int mode) {
  if (data == nullptr) {
    strcpy_zot(dst, size, "\npvData = NULL !!!");
  } else {
    vPrepLogData(dst, size, data, length, mode);
  }
  return std::strlen(dst);
}

}  // namespace

void ZotOsvSetLogLevel(ZotOsLog* log, uint32_t mask) {
  if (uint32_t* const word = levelWord(log); word != nullptr) {
    std::atomic_ref(*word).fetch_or(mask, std::memory_order_relaxed);
  }
}

void ZotOsvResLogLevel(ZotOsLog* log, uint32_t mask) {
  if (uint32_t* const word = levelWord(log); word != nullptr) {
    std::atomic_ref(*word).fetch_and(~mask, std::memory_order_relaxed);
  }
}

uint32_t ZotOsdGetLogLevel(ZotOsLog* log) {
  return logLevel(log);
}

void ZotOsvLog(ZotOsLog* log, uint32_t mask, const char* format, ...) {
  const uint32_t level = logLevel(log);
  if (!logPasses(level, mask)) {
    return;
  }
  va_list args;
  va_start(args, format);
  fnvvLog(mask, level & ZOT_LOG_STDOUT, format, args);
  va_end(args);
}

void ZotOsvLogData(ZotOsLog* log, uint32_t mask, const char* text, const void* data, long length, int mode) {
  const uint32_t level = logLevel(log);
  if (logPasses(level, mask)) {
    fnvLogData(level & ZOT_LOG_STDOUT, data, length, mode, text);
  }
}

void ZotOsvvLogData(ZotOsLog* log, uint32_t mask, const void* data, long length, int mode, const char* format,
                    ...) {
  const uint32_t level = logLevel(log);
  if (!logPasses(level, mask)) {
    return;
  }
  va_list args;
  va_start(args, format);
  fnvvLogData(level & ZOT_LOG_STDOUT, data, length, mode, format, args);
  va_end(args);
}

void fnvvLog(uint32_t /*mask*/, uint32_t toStdout, const char* format, va_list args) {
  const ErrnoKept kept;
  Line line;
  kept.restore();
  size_t length = formatMessage(line.message(), kMessageSize, format, args);
  if (length < kMessageSize - 1) {
    line.message()[length++] = '\n';
    line.message()[length] = '\0';
  }
  kept.restore();
  line.write(toStdout, length);
}

void fnvLogData(uint32_t toStdout, const void* data, long length, int mode, const char* text) {
  const ErrnoKept kept;
  Line line;
  if (text != nullptr) {
    const std::string_view whole(text);
    line.append(whole.size() > 242 ? whole.substr(0, 241) : whole);
  }
  const size_t written = putData(line.message(), kBodySize, data, length, mode);
  kept.restore();
  line.write(toStdout, written);
}

void fnvvLogData(uint32_t toStdout, const void* data, long length, int mode, const char* format,
                 va_list args) {
  const ErrnoKept kept;
  Line line;
  kept.restore();
  const size_t written = formatMessage(line.message(), kBodySize, format, args);
  const auto room = static_cast<unsigned int>(kBodySize - written);
  const size_t dumped = putData(line.message() + written, room, data, length, mode);
  kept.restore();
  line.write(toStdout, written + dumped);
}
