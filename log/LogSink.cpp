// Where log lines go.
#include <pthread.h>
#include <syslog.h>
#include <unistd.h>

#ifdef __linux__
#include <sys/syscall.h>
#endif

#include <cstdio>

#include "log/CLibraryLockInternal.h"
#include "log/LogInternal.h"
#include "log/LogLineInternal.h"
#include "os/CancellationOff.h"
#include "os/RepeatedOnSignalInternal.h"

namespace {

constexpr uint32_t kIgnoredOpenBit = 0x10000000;

// The longest message there is, with each of its percent signs doubled.
constexpr size_t kSyslogSize = size_t{2} * 1543;

// Makes a format of a finished message: "%%" and "%m" stay, every other percent
// sign is doubled and shows as it stands.  Nobody passed arguments for it, and a
// width before the 'm' could ask for gigabytes of blanks.
void makeFormat(char (&dst)[kSyslogSize], const char* message) {
  size_t at = 0;
  for (; *message != '\0' && at + 3 <= kSyslogSize; ++message) {
    dst[at++] = *message;
    if (*message != '%') {
      continue;
    }
    const bool meant = message[1] == '%' || message[1] == 'm';
    dst[at++] = meant ? *++message : '%';
  }
  dst[at] = '\0';
}

void writeSyslog(const char* message) {
  char format[kSyslogSize];
  makeFormat(format, message);
  const CLibraryLock lock;
  if ((dLogOpen & ~kIgnoredOpenBit) == 0) {
    ++dLogOpen;
    openlog("ZotOsLog", LOG_PID, LOG_USER);
  }
// The message is a format on purpose: makeFormat() left no conversion in it that
// fetches an argument.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  syslog(LOG_INFO, format);
#pragma GCC diagnostic pop
}

// The stream's own lock keeps the lines of two threads apart.  What the program has
// written before comes first; the line then goes past the stream's buffer in one
// write, as streams drop what a signal interrupts.  The stream gets what is left of
// it, and all of it without a descriptor.
void writeStdout(std::string_view line) {
  flockfile(stdout);
  if (std::fflush(stdout) == 0) {
    line = writeAll(fileno(stdout), line);
  }
  if (!line.empty()) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fflush(stdout);
  }
  funlockfile(stdout);
}

}  // namespace

std::atomic<uint32_t> dLogOpen{0};

void vWrLog(uint32_t toStdout, std::string_view line, size_t prefixLength) {
  // A thread that is cancelled here would take the stream's lock along; compilers
  // think that writing cannot unwind, so no destructor would give it back.
  const CancellationOff uncancelled;
  if (toStdout != 0) {
    writeStdout(line);
  } else {
    writeSyslog(line.data() + prefixLength);
  }
}

unsigned int logPid() {
  return static_cast<unsigned int>(getpid());
}

long logTid() {
#ifdef __linux__
  return static_cast<long>(syscall(SYS_gettid));
#else
  uint64_t id = 0;
  pthread_threadid_np(nullptr, &id);
  return static_cast<long>(id);
#endif
}
