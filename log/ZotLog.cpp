#include "log/ZotLog.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "log/LogInternal.h"
#include "log/LogLineInternal.h"
#include "os/zot_string.h"

namespace {

constexpr unsigned int kPrefixSize = 257;
constexpr unsigned int kMessageSize = 1543;
constexpr unsigned int kBodySize = 1280;

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

// All zero at first, because strncat_zot may leave its text without a terminator.
struct Prefix {
  Prefix() {
    strcpy_zot(text, kPrefixSize, cpszGetTime());
    strcat_zot(text, kPrefixSize, " - ");
  }
  char text[kPrefixSize] = {};
};

ZOT_PRINTF(3, 0) void formatMessage(char* dst, unsigned int size, const char* format, va_list args) {
  dst[0] = '\0';
  if (format != nullptr) {
    // The writers have started args; the analyser does not see that from here.
    std::vsnprintf(dst, size, format, args);  // NOLINT(clang-analyzer-valist.Uninitialized)
  }
}

void appendData(char* dst, unsigned int size, const void* data, long length, int mode) {
  if (data == nullptr) {
    strcpy_zot(dst, size, "\npvData = NULL !!!");
    return;
  }
  vPrepLogData(dst, size, data, length, mode);
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
  const Prefix prefix;
  kept.restore();
  char message[kMessageSize];
  formatMessage(message, kMessageSize, format, args);
  strcat_zot(message, kMessageSize, "\n");
  kept.restore();
  vWrLog(toStdout, prefix.text, message);
}

void fnvLogData(uint32_t toStdout, const void* data, long length, int mode, const char* text) {
  const ErrnoKept kept;
  Prefix prefix;
  if (text != nullptr && std::strlen(text) > 242) {
    strncat_zot(prefix.text, kPrefixSize, text, 241);
  } else {
    strcat_zot(prefix.text, kPrefixSize, text);
  }
  char body[kBodySize];
  appendData(body, kBodySize, data, length, mode);
  kept.restore();
  vWrLog(toStdout, prefix.text, body);
}

void fnvvLogData(uint32_t toStdout, const void* data, long length, int mode, const char* format,
                 va_list args) {
  const ErrnoKept kept;
  const Prefix prefix;
  kept.restore();
  char body[kBodySize];
  formatMessage(body, kBodySize, format, args);
  const auto written = static_cast<unsigned int>(std::strlen(body));
  appendData(body + written, kBodySize - written, data, length, mode);
  kept.restore();
  vWrLog(toStdout, prefix.text, body);
}
