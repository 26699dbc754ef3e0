// The dump behind a data line.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "log/LogInternal.h"
#include "os/zot_string.h"

namespace {

constexpr long kMaxBytes = 64;
constexpr long kMaxNumbers = 16;
constexpr long kBytesPerLine = 16;

// A text that grows up to a limit; all that passes it is refused whole.
class Columns {
 public:
  Columns(char* text, size_t limit) : text_(text), limit_(limit) {}

  bool append(const char* what, size_t length) {
    if (length > limit_ - at_) {
      return false;
    }
    std::memcpy(text_ + at_, what, length);
    at_ += length;
    text_[at_] = '\0';
    return true;
  }

  bool blanks(size_t count) {
    static constexpr char kBlanks[] = "                                                 ";
    static_assert(sizeof kBlanks > 3 * kBytesPerLine);
    return append(kBlanks, count);
  }

  // The newline has room beyond the limit: the limit keeps two bytes back.
  void endLine() {
    text_[at_++] = '\n';
    text_[at_] = '\0';
  }

  bool full() const { return at_ > limit_; }

 private:
  char* text_;
  size_t limit_;
  size_t at_ = 0;
};

char shown(unsigned char byte) {
  return byte >= 0x20 && byte <= 0x7F ? static_cast<char>(byte) : '.';
}

// One line of 1 to 16 bytes.  Returns false when it does not fit to its end.
bool dumpLine(Columns& columns, const unsigned char* bytes, long count) {
  if (!columns.blanks(9)) {
    return false;
  }
  for (long i = 0; i < count; ++i) {
    char group[8];
    std::snprintf(group, sizeof group, " %02X", bytes[i]);
    if (!columns.append(group, 3)) {
      break;
    }
  }
  if (!columns.blanks(static_cast<size_t>(3 * (kBytesPerLine - count))) || !columns.blanks(3)) {
    return false;
  }
  for (long i = 0; i < count; ++i) {
    const char character = shown(bytes[i]);
    if (!columns.append(&character, 1)) {
      break;
    }
  }
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
  for (long left = std::min(length, kMaxBytes); left > 0; left -= kBytesPerLine, bytes += kBytesPerLine) {
    if (columns.full() || !dumpLine(columns, bytes, std::min(left, kBytesPerLine))) {
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
    sprintf_zot(text, sizeof text, "%d.", number);
    strcat_zot(dst, size, text);
  }
  // Without a number this takes one of the blanks; callers rely on that.
  if (const size_t end = std::strlen(dst); end != 0) {
    dst[end - 1] = '\0';
  }
}

}  // namespace

void vPrepLogData(char* dst, unsigned int size, const void* data, long length, int mode) {
  const auto* bytes = static_cast<const unsigned char*>(data);
  sprintf_zot(dst, size, " len=%5ld\n", length);
  if (mode == 1) {
    dumpBytes(dst, size, bytes, length);
  } else if (mode == 2) {
    dumpNumbers(dst, size, bytes, length);
  }
  strcat_zot(dst, size, "\n");
}
