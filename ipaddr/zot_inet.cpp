#include "ipaddr/zot_inet.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <optional>

#include "ipaddr/AddressSizesInternal.h"

namespace {

constexpr size_t kIp6Words = kIp6Size / 2;
// The longest text that a full IPv6 address with a dotted quad could have, and its terminator.
constexpr size_t kIp6TextSize = 46;

constexpr unsigned int kNoDigit = 16;

// The value of each character as a hexadecimal digit.
constexpr std::array<unsigned char, 256> kHexDigits = [] {
  std::array<unsigned char, 256> values{};
  values.fill(kNoDigit);
  for (unsigned char i = 0; i < 10; ++i) {
    values['0' + i] = i;
  }
  for (unsigned char i = 0; i < 6; ++i) {
    values['a' + i] = values['A' + i] = static_cast<unsigned char>(10 + i);
  }
  return values;
}();

unsigned int hexDigit(char c) {
  return kHexDigits[static_cast<unsigned char>(c)];
}

unsigned int decimalDigit(char c) {
  return static_cast<unsigned int>(static_cast<unsigned char>(c)) - '0';
}

// Reads a decimal number and returns the place behind it; null when there is none or
// it is above 255.  The first three digits, all that most numbers have, need no loop.
const char* readNumber(const char* text, unsigned char& number) {
  unsigned int digit = decimalDigit(*text);
  if (digit > 9) {
    return nullptr;
  }
  unsigned int value = digit;
  if ((digit = decimalDigit(*++text)) <= 9) {
    value = value * 10 + digit;
    if ((digit = decimalDigit(*++text)) <= 9) {
      value = value * 10 + digit;
      while (value <= 255 && (digit = decimalDigit(*++text)) <= 9) {
        value = value * 10 + digit;
      }
    }
  }
  number = static_cast<unsigned char>(value);
  return value <= 255 ? text : nullptr;
}

const char* readNextNumber(const char* end, unsigned char& number) {
  return end != nullptr && *end == '.' ? readNumber(end + 1, number) : nullptr;
}

// The bytes of an IPv6 address while its text is read from left to right.
class Ip6Scratch {
 public:
  // Reads groups up to the end of text; a leading double colon has lost one colon.
  bool readGroups(const char* text) {
    for (;; ++text) {
      const char* const token = text;
      unsigned int group = 0;
      for (unsigned int digit = 0; (digit = hexDigit(*text)) != kNoDigit; ++text) {
        group = group * 16 + digit;
        if (group > 0xFFFF) {
          return false;
        }
      }
      const bool empty = text == token;
      switch (*text) {
        case ':':
          if (empty ? !addGap() : !addGroup(group)) {
            return false;
          }
          break;
        case '.':  // the group's digits are the first number of the quad
          return addQuad(token);
        case '\0':
          return empty || addGroup(group);
        default:
          return false;
      }
    }
  }

  // Gives the double colon its groups; false unless there are 16 bytes then.
  bool finish() {
    if (gap_) {
      stretchGap(*gap_);
      return true;
    }
    return used_ == sizeof bytes_;
  }

  const unsigned char* bytes() const { return bytes_; }

 private:
  bool addGroup(unsigned int value) {
    if (sizeof bytes_ - used_ < 2) {
      return false;
    }
    bytes_[used_++] = static_cast<unsigned char>(value >> 8);
    bytes_[used_++] = static_cast<unsigned char>(value & 0xFF);
    return true;
  }

  bool addGap() {
    if (gap_) {
      return false;
    }
    gap_ = used_;
    return true;
  }

  bool addQuad(const char* text) {
    if (sizeof bytes_ - used_ < kIp4Size || zot_inet_pton4(text, bytes_ + used_) == 0) {
      return false;
    }
    used_ += kIp4Size;
    return true;
  }

  // Moves what stands behind the gap to the end.  With all 16 bytes in use each
  // byte lands on itself and is then cleared; callers rely on that result.
  void stretchGap(size_t gap) {
    const size_t behind = used_ - gap;
    for (size_t i = 1; i <= behind; ++i) {
      bytes_[sizeof bytes_ - i] = bytes_[used_ - i];
      bytes_[used_ - i] = 0;
    }
  }

  unsigned char bytes_[kIp6Size] = {};
  size_t used_ = 0;
  std::optional<size_t> gap_;
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
  for (size_t i = 0; i < kIp4Size; ++i) {
    if (i != 0) {
      *at++ = '.';
    }
    at = std::to_chars(at, at + 3, src[i]).ptr;
  }
  return at;
}

}  // namespace

int zot_inet_pton4(const char* text, unsigned char* dst) {
  unsigned char bytes[kIp4Size];
  const char* end = text != nullptr ? readNumber(text, bytes[0]) : nullptr;
  end = readNextNumber(end, bytes[1]);
  end = readNextNumber(end, bytes[2]);
  end = readNextNumber(end, bytes[3]);
  if (end == nullptr || *end != '\0') {
    return 0;
  }
  std::memcpy(dst, bytes, sizeof bytes);
  return 1;
}

int zot_inet_pton6(const char* text, unsigned char* dst) {
  if (text == nullptr || (text[0] == ':' && text[1] != ':')) {
    return 0;
  }
  Ip6Scratch scratch;
  if (!scratch.readGroups(text[0] == ':' ? text + 1 : text) || !scratch.finish()) {
    return 0;
  }
  std::memcpy(dst, scratch.bytes(), kIp6Size);
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
