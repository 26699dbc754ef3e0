// The ranges of an OID as text.
#include <algorithm>
#include <optional>

#include "mif/MifRecord.h"
#include "mif/zotmif.h"
#include "os/zot_string.h"

namespace {

constexpr unsigned short kBytePair = 2;
constexpr unsigned short kWordPair = 4;
constexpr unsigned short kDwordPair = 8;

// The text written so far.  What does not fit is cut, and nothing follows it.
struct RangeText {
  template <typename... Args>
  void add(const char* format, Args... args) {
    const int length = sprintf_zot(end, room, format, args...);
    const uint32_t used = std::min(static_cast<uint32_t>(length), room);
    end += used;
    room -= used;
  }

  char* end;
  uint32_t room;
};

struct Range {
  int from;
  int to;
};

std::optional<Range> rangeOf(const unsigned char* value, unsigned short length) {
  switch (length) {
    case kBytePair:
      return Range{value[0], value[1]};
    case kWordPair:
      return Range{mifLoad<uint16_t>(value), mifLoad<uint16_t>(value + 2)};
    case kDwordPair:
      return Range{mifLoad<int32_t>(value), mifLoad<int32_t>(value + 4)};
    default:
      return std::nullopt;
  }
}

// Callers rely on the bytes of an address being printed in reverse.
void addIpRange(RangeText& text, const unsigned char* value, const Range& range) {
  text.add("%d.%d.%d.%d", value[3], value[2], value[1], value[0]);
  if (range.from != range.to) {
    text.add("-%d.%d.%d.%d", value[7], value[6], value[5], value[4]);
  }
}

void addRange(RangeText& text, const Range& range) {
  text.add("%d", range.from);
  if (range.from != range.to) {
    text.add("-%d", range.to);
  }
}

}  // namespace

uint32_t zotmifGetRangeValuesAsString(const unsigned char* buf, uint32_t len, unsigned short oid, char* out,
                                      uint32_t outSize, int ipFormat) {
  if (out == nullptr) {
    return 0;
  }
  if (outSize != 0) {
    *out = '\0';
  }
  if (buf == nullptr) {
    return 0;
  }
  RangeText text{out, outSize};
  bool first = true;
  uint32_t printed = 0;
  for (const MifRecord& record : MifRecords(buf, len)) {
    if (record.oid != oid) {
      continue;
    }
    if (!first) {
      text.add("%s", ", ");
    }
    first = false;
    unsigned char value[kDwordPair];
    mifCopyBounded(value, buf, len, record.valueOffset(), sizeof value);
    const auto range = rangeOf(value, record.length);
    if (!range) {
      continue;
    }
    if (ipFormat != 0 && record.length == kDwordPair) {
      addIpRange(text, value, *range);
    } else {
      addRange(text, *range);
    }
    printed = 1;
  }
  return printed;
}
