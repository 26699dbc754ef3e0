// Calls that a signal may interrupt, made again until they do something.
#ifndef ZOT_OS_REPEATED_ON_SIGNAL_INTERNAL_H
#define ZOT_OS_REPEATED_ON_SIGNAL_INTERNAL_H

#include <unistd.h>

#include <cerrno>
#include <string_view>

template <typename Call>
ssize_t repeatedOnSignal(Call call) {
  ssize_t result = 0;
  do {
    result = call();
  } while (result < 0 && errno == EINTR);
  return result;
}

// Writes the bytes, in several calls where one does not take all.  Returns what a
// failure leaves of them.
inline std::string_view writeAll(int to, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = repeatedOnSignal([&] { return write(to, bytes.data(), bytes.size()); });
    if (written <= 0) {
      break;
    }
    bytes.remove_prefix(static_cast<size_t>(written));
  }
  return bytes;
}

#endif
