#include "os/zot_string.h"

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

// Room behind the characters that stand in dst, the terminator's byte included;
// -1 when dst holds more than size characters, or has a size of 0 and is not read.
int64_t roomBehind(const char* dst, unsigned int size) {
  return size == 0 ? -1 : int64_t{size} - static_cast<int64_t>(std::strlen(dst));
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
  const int64_t behind = roomBehind(dst, size);
  if (behind < 0) {
    return dst;
  }
  const auto room = static_cast<size_t>(behind);
  const size_t add = strnlen(src, room);
  if (add < room) {
    std::memcpy(dst + (size - room), src, add + 1);
    return dst;
  }
  return appendCut(dst, size, room, src, room);
}

char* strncat_zot(char* dst, unsigned int size, const char* src, unsigned int n) {
  if (dst == nullptr || src == nullptr) {
    return nullptr;
  }
  const int64_t behind = roomBehind(dst, size);
  if (n == 0 || behind < 0) {
    return dst;
  }
  const auto room = static_cast<size_t>(behind);
  if (strnlen(src, room) < room) {
    std::strncpy(dst + (size - room), src, n);
    return dst;
  }
  return appendCut(dst, size, room, src, std::min<size_t>(n, room));
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
