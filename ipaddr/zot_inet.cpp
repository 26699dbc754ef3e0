#include "ipaddr/zot_inet.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <optional>

namespace {

constexpr size_t kIp4Bytes = 4;
constexpr size_t kIp6Bytes = 16;
constexpr size_t kIp6Words = 8;
// The longest text that a full IPv6 address with a dotted quad could have, and its terminator.
constexpr size_t kIp6TextSize = 46;

std::optional<unsigned int> hexDigit(char c) {
  if (c >= '0' && c <= '9') {
    return c - '0';
  }
  if (c >= 'a' && c <= 'f') {
    return c - 'a' + 10;
  }
  if (c >= 'A' && c <= 'F') {
    return c - 'A' + 10;
  }
  return std::nullopt;
}

// The bytes of an IPv6 address while its text is read from left to right.
struct Ip6Scratch {
  bool addGroup(unsigned int value) {
    if (sizeof bytes - used < 2) {
      return false;
    }
    bytes[used++] = static_cast<unsigned char>(value >> 8);
    bytes[used++] = static_cast<unsigned char>(value & 0xFF);
    return true;
  }

  bool addQuad(const char* text) {
    if (sizeof bytes - used < kIp4Bytes || zot_inet_pton4(text, bytes + used) == 0) {
      return false;
    }
    used += kIp4Bytes;
    return true;
  }

  // Moves what stands behind the gap to the end.  With all 16 bytes in use each
  // byte lands on itself and is then cleared; callers rely on that result.
  void stretchGap(size_t gap) {
    const size_t behind = used - gap;
    for (size_t i = 1; i <= behind; ++i) {
      bytes[sizeof bytes - i] = bytes[used - i];
      bytes[used - i] = 0;
    }
  }

  unsigned char bytes[kIp6Bytes] = {};
  size_t used = 0;
};

using Words = std::array<unsigned int, kIp6Words>;

struct Run {
  size_t end() const { return start + length; }
  bool contains(size_t word) const { return word >= start && word < end(); }
  size_t start = 0;
  size_t length = 0;
};

// The run of zero words that a double colon replaces; of length 0 when there is none.
Run longestZeroRun(const Words& words) {
  Run best;
  Run current;
  for (size_t i = 0; i < words.size(); ++i) {
    if (words[i] != 0) {
      current = {i + 1, 0};
      continue;
    }
    ++current.length;
    if (current.length > best.length) {
      best = current;
    }
  }
  return best.length < 2 ? Run{} : best;
}

bool endsInQuad(const Words& words, const Run& zeros) {
  return zeros.start == 0 && (zeros.length == 6 || (zeros.length == 5 && words[5] == 0xFFFF));
}

Words wordsOf(const unsigned char* src) {
  Words words;
  for (size_t i = 0; i < words.size(); ++i) {
    words[i] = static_cast<unsigned int>(src[2 * i] << 8 | src[2 * i + 1]);
  }
  return words;
}

// Writes four numbers of at most three digits and returns the end; no terminator.
char* putQuad(const unsigned char* src, char* at) {
  for (size_t i = 0; i < kIp4Bytes; ++i) {
    if (i != 0) {
      *at++ = '.';
    }
    at = std::to_chars(at, at + 3, src[i]).ptr;
  }
  return at;
}

}  // namespace

int zot_inet_pton4(const char* text, unsigned char* dst) {
  if (text == nullptr) {
    return 0;
  }
  unsigned char scratch[kIp4Bytes] = {};
  size_t parts = 0;
  bool inNumber = false;
  for (; *text != '\0'; ++text) {
    if (*text == '.') {
      if (!inNumber || parts == kIp4Bytes) {
        return 0;
      }
      inNumber = false;
      continue;
    }
    if (*text < '0' || *text > '9' || (!inNumber && parts == kIp4Bytes)) {
      return 0;
    }
    if (!inNumber) {
      ++parts;
      inNumber = true;
    }
    const int value = scratch[parts - 1] * 10 + (*text - '0');
    if (value > 255) {
      return 0;
    }
    scratch[parts - 1] = static_cast<unsigned char>(value);
  }
  if (parts < kIp4Bytes) {
    return 0;
  }
  std::memcpy(dst, scratch, sizeof scratch);
  return 1;
}

int zot_inet_pton6(const char* text, unsigned char* dst) {
  if (text == nullptr || (text[0] == ':' && text[1] != ':')) {
    return 0;
  }
  if (text[0] == ':') {
    ++text;
  }
  Ip6Scratch scratch;
  std::optional<size_t> gap;
  unsigned int group = 0;
  bool inGroup = false;
  const char* token = text;
  for (; *text != '\0'; ++text) {
    if (const auto digit = hexDigit(*text)) {
      group = group * 16 + *digit;
      inGroup = true;
      if (group > 0xFFFF) {
        return 0;
      }
    } else if (*text == ':') {
      token = text + 1;
      if (inGroup ? !scratch.addGroup(group) : gap.has_value()) {
        return 0;
      }
      if (!inGroup) {
        gap = scratch.used;
      }
      group = 0;
      inGroup = false;
    } else if (*text == '.') {
      if (!scratch.addQuad(token)) {
        return 0;
      }
      inGroup = false;  // these digits were the first number of the quad
      break;
    } else {
      return 0;
    }
  }
  if (inGroup && !scratch.addGroup(group)) {
    return 0;
  }
  if (gap) {
    scratch.stretchGap(*gap);
  } else if (scratch.used != sizeof scratch.bytes) {
    return 0;
  }
  std::memcpy(dst, scratch.bytes, sizeof scratch.bytes);
  return 1;
}

const char* zot_inet_ntop4(const unsigned char* src, char* dst, unsigned int size) {
  char text[sizeof "255.255.255.255"];
  char* end = putQuad(src, text);
  *end++ = '\0';
  const auto length = static_cast<size_t>(end - text);
  // Callers rely on a size of exactly the characters being enough.
  if (length - 1 > size) {
    return nullptr;
  }
  std::memcpy(dst, text, length);
  return dst;
}

const char* zot_inet_ntop6(const unsigned char* src, char* dst, unsigned int size) {
  const Words words = wordsOf(src);
  const Run zeros = longestZeroRun(words);
  char text[kIp6TextSize];
  char* at = text;
  for (size_t i = 0; i < words.size(); ++i) {
    if (zeros.contains(i)) {
      if (i == zeros.start) {
        *at++ = ':';
      }
      continue;
    }
    if (i != 0) {
      *at++ = ':';
    }
    if (i == 6 && endsInQuad(words, zeros)) {
      at = putQuad(src + 12, at);
      break;
    }
    at = std::to_chars(at, at + 4, words[i], 16).ptr;
  }
  if (zeros.end() == words.size()) {
    *at++ = ':';
  }
  *at++ = '\0';
  const auto length = static_cast<size_t>(at - text);
  if (length > size) {
    return nullptr;
  }
  std::memcpy(dst, text, length);
  return dst;
}
