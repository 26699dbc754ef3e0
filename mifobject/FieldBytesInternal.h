// How numbers and IPv4 texts become the value bytes of the object class's fields,
// and how such values are read.
// Private to the room; plain C++, so that it serves and is tested without
// Foundation.
#ifndef ZOT_FIELD_BYTES_INTERNAL_H
#define ZOT_FIELD_BYTES_INTERNAL_H

#include <algorithm>
#include <array>
#include <concepts>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <span>

#include "mif/Mif32.h"

namespace zot {

// The one rule by which a field takes a byte from a number: the byte at the lowest
// address.  That is the low 8 bits on a little-endian host; on a big-endian one it
// is the high-order byte, 0 for every number from 0 to 255.  Callers rely on both.
template <std::integral Number>
uint8_t fieldByte(Number number) {
  uint8_t byte = 0;
  std::memcpy(&byte, &number, 1);
  return byte;
}

// Reads an IPv4 text the loose way: up to four fields that end at a '.', each the
// leading decimal number of its text, missing ones 0, the rest after a fourth '.'
// ignored.  Returns the value bytes, the last number first.
//
// A field has room for three characters and runs on into the next field's room
// when it is longer; the next field then writes over it, so that 1234.5.6.7 begins
// with 12345.  Callers rely on it.  What runs past the room of the fourth is dropped.
inline std::array<uint8_t, 4> looseIpV4(const char* text) {
  constexpr size_t room = 4;
  char fields[4 * room] = {};
  constexpr size_t last = sizeof fields - 1;  // stays the terminator
  for (size_t field = 0; field < 4; ++field) {
    for (size_t at = field * room; *text != '\0' && *text != '.'; ++at, ++text) {
      if (at < last) {
        fields[at] = *text;
      }
    }
    text += *text == '.' ? 1 : 0;
  }
  std::array<uint8_t, 4> value;
  for (size_t field = 0; field < 4; ++field) {
    const auto number = static_cast<int32_t>(std::strtol(fields + field * room, nullptr, 10));
    value[3 - field] = fieldByte(number);
  }
  return value;
}

// The value of the first record of an OID, in place until the next change.
struct PlacedValue {
  const unsigned char* bytes;
  unsigned int length;  // as the record says
  size_t inside;        // bytes of it that lie in the block

  // The text up to its first zero byte, at the latest where the block ends.
  size_t textLength() const { return strnlen(reinterpret_cast<const char*>(bytes), inside); }
};

inline std::optional<PlacedValue> valueOf(Mif32& records, uint16_t oid) {
  unsigned char* bytes = nullptr;
  unsigned int length = 0;
  if (records.GetBinPtr(oid, &bytes, &length, 1) == 0) {
    return std::nullopt;
  }
  const auto left = static_cast<size_t>(records.GetData() + records.GetAllocLen() - bytes);
  return PlacedValue{bytes, length, std::min<size_t>(length, left)};
}

// Reads the first record of an OID, whose value must have exactly the length of
// value.
inline bool readWhole(Mif32& records, uint16_t oid, std::span<uint8_t> value) {
  auto length = static_cast<unsigned int>(value.size());
  return records.GetBin(oid, value.data(), &length, 1) == 1 && length == value.size();
}

}  // namespace zot

#endif
