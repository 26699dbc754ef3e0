#include "os/zot_string.h"

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <optional>

namespace {

// Room behind the characters that stand in dst, the terminator's byte included; 0
// leaves dst shortened by one.  Nothing when dst holds more than size characters, or
// has a size of 0 and is not read.
std::optional<size_t> roomBehind(const char* dst, unsigned int size) {
  const size_t used = size != 0 ? std::strlen(dst) : 0;
  return size == 0 || used > size ? std::nullopt : std::optional<size_t>(size - used);
}

// Fills the end of dst with the first count bytes of a src that is too long for
// it; the terminator goes onto the last byte even when nothing was copied.
char* appendCut(char* dst, unsigned int size, size_t room, const char* src, size_t count) {
  std::memcpy(dst + (size - room), src, count);
  dst[size - 1] = '\0';
  return dst;
}

char* shiftLetters(char* text, char first, char last, int distance) {
  for (char* at = text; *at != '\0'; ++at) {
    if (*at >= first && *at <= last) {
      *at = static_cast<char>(*at + distance);
    }
  }
  return text;
}

}  // namespace

char* strcat_zot(char* dst, unsigned int size, const char* src) {
  if (dst == nullptr || src == nullptr) {
    return nullptr;
  }
  const auto room = roomBehind(dst, size);
  if (!room) {
    return dst;
  }
  const size_t add = strnlen(src, *room);
  if (add < *room) {
    std::memcpy(dst + (size - *room), src, add + 1);
    return dst;
  }
  return appendCut(dst, size, *room, src, *room);
}

char* strncat_zot(char* dst, unsigned int size, const char* src, unsigned int n) {
  if (dst == nullptr || src == nullptr) {
    return nullptr;
  }
  const auto room = roomBehind(dst, size);
  if (n == 0 || !room) {
    return dst;
  }
  if (strnlen(src, *room) < *room) {
    std::strncpy(dst + (size - *room), src, n);
    return dst;
  }
  return appendCut(dst, size, *room, src, std::min<size_t>(n, *room));
}

unsigned int strcpy_zot(char* dst, unsigned int size, const char* src) {
  return strncpy_zot(dst, size, src, UINT32_MAX);
}

unsigned int strncpy_zot(char* dst, unsigned int size, const char* src, unsigned int n) {
  if (dst == nullptr || src == nullptr) {
    return 0;
  }
  if (size != 0) {
    const size_t length = strnlen(src, std::min(n, size - 1));
    std::memcpy(dst, src, length);
    dst[length] = '\0';
  }
  return static_cast<unsigned int>(reinterpret_cast<uintptr_t>(dst));
}

int sprintf_zot(char* dst, unsigned int size, const char* format, ...) {
  if (size == 0) {
    return 0;
  }
  va_list args;
  va_start(args, format);
  // A null destination only measures; the C library would write to it all the same.
  const int length = std::vsnprintf(dst, dst == nullptr ? 0 : size, format, args);
  va_end(args);
  if (dst == nullptr) {
    return length;
  }
  dst[size - 1] = '\0';
  return length >= 0 ? length : static_cast<int>(std::strlen(dst));
}

char* strupr(char* text) {
  return shiftLetters(text, 'a', 'z', 'A' - 'a');
}

char* strlwr(char* text) {
  return shiftLetters(text, 'A', 'Z', 'a' - 'A');
}
