// The dump behind a data line.
#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

#include "log/LogInternal.h"
#include "os/zot_string.h"

namespace {

constexpr long kMaxBytes = 64;
constexpr long kMaxNumbers = 16;
constexpr size_t kBytesPerLine = 16;

// A text that grows up to a limit.  Behind the limit there is room for one more
// character and the terminator, which the text gets at its end.
class Columns {
 public:
  Columns(char* text, size_t limit) : text_(text), limit_(limit) {}
  ~Columns() { text_[at_] = '\0'; }
  Columns(const Columns&) = delete;
  Columns& operator=(const Columns&) = delete;

  // All or nothing.
  bool append(const char* what, size_t length) {
    if (length > room()) {
      return false;
    }
    std::memcpy(text_ + at_, what, length);
    at_ += length;
    return true;
  }

  // As many pieces of this length as fit.
  void appendPieces(const char* what, size_t length, size_t count) {
    append(what, length * std::min(count, room() / length));
  }

  bool blanks(size_t count) {
    static constexpr char kBlanks[] = "                                                 ";
    static_assert(sizeof kBlanks > 3 * kBytesPerLine);
    return append(kBlanks, count);
  }

  void endLine() { text_[at_++] = '\n'; }

  bool full() const { return at_ > limit_; }

 private:
  size_t room() const { return full() ? 0 : limit_ - at_; }

  char* text_;
  size_t limit_;
  size_t at_ = 0;
};

// What each byte looks like: a blank and two digits, and behind them its character.
using Look = std::array<char, 4>;

constexpr std::array<Look, 256> kLooks = [] {
  constexpr char digits[] = "0123456789ABCDEF";
  std::array<Look, 256> looks{};
  for (size_t byte = 0; byte < looks.size(); ++byte) {
    const char character = byte >= 0x20 && byte <= 0x7F ? static_cast<char>(byte) : '.';
    looks[byte] = {' ', digits[byte / 16], digits[byte % 16], character};
  }
  return looks;
}();

// One line of 1 to 16 bytes.  Returns false when it does not fit to its end.
bool dumpLine(Columns& columns, const unsigned char* bytes, size_t count) {
  char groups[3 * kBytesPerLine + 1];
  char characters[kBytesPerLine];
  for (size_t i = 0; i < count; ++i) {
    const Look& look = kLooks[bytes[i]];
    // Four bytes are one store; the next group takes the place of the fourth.
    std::memcpy(groups + 3 * i, look.data(), look.size());
    characters[i] = look[3];
  }
  if (!columns.blanks(9)) {
    return false;
  }
  columns.appendPieces(groups, 3, count);
  if (!columns.blanks(3 * (kBytesPerLine - count)) || !columns.blanks(3)) {
    return false;
  }
  columns.appendPieces(characters, 1, count);
  columns.endLine();
  return true;
}

void dumpBytes(char* dst, unsigned int size, const unsigned char* bytes, long length) {
  const size_t head = std::strlen(dst);
  const size_t room = size - head;
  if (room <= 1) {
    return;
  }
  Columns columns(dst + head, room - 2);
  const auto count = static_cast<size_t>(std::clamp(length, 0L, kMaxBytes));
  for (size_t at = 0; at < count; at += kBytesPerLine) {
    if (columns.full() || !dumpLine(columns, bytes + at, std::min(count - at, kBytesPerLine))) {
      return;
    }
  }
}

void dumpNumbers(char* dst, unsigned int size, const unsigned char* numbers, long length) {
  strcat_zot(dst, size, "   ");
  for (long i = 0; i < std::min(length, kMaxNumbers); ++i) {
    int32_t number;
    std::memcpy(&number, numbers + 4 * i, sizeof number);
    char text[16];
    *std::to_chars(text, text + 14, number).ptr = '\0';
    strcat_zot(dst, size, text);
    strcat_zot(dst, size, ".");
  }
  // Without a number this takes one of the blanks; callers rely on that.
  if (const size_t end = std::strlen(dst); end != 0) {
    dst[end - 1] = '\0';
  }
}

// The length, right-aligned in five places.
void startDump(char* dst, unsigned int size, long length) {
  char number[24];
  const auto digits = static_cast<size_t>(std::to_chars(number, number + sizeof number, length).ptr - number);
  char line[32] = " len=     ";
  char* const at = line + 5 + (digits < 5 ? 5 - digits : 0);
  std::memcpy(at, number, digits);
  std::memcpy(at + digits, "\n", 2);
  strcpy_zot(dst, size, line);
}

}  // namespace

void vPrepLogData(char* dst, unsigned int size, const void* data, long length, int mode) {
  const auto* bytes = static_cast<const unsigned char*>(data);
  startDump(dst, size, length);
  if (mode == 1) {
    dumpBytes(dst, size, bytes, length);
  } else if (mode == 2) {
    dumpNumbers(dst, size, bytes, length);
  }
  strcat_zot(dst, size, "\n");
}
