#include "tools/mif/Kinds.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <ctime>

#include "ipaddr/zot_inet.h"
#include "mif/MifRecord.h"
#include "mifobject/PasswordScrambling.h"
#include "tools/common/Text.h"

namespace mif {

namespace {

using Value = std::vector<unsigned char>;
using MaybeValue = std::optional<Value>;

struct Description {
  std::string_view name;
  std::string_view lengths;  // empty: any
  std::array<int, 3> accepted;
  Kind kind;
};

constexpr Description kKinds[] = {
    {"int", "4 bytes", {4, 4, 4}, Kind::Int},
    {"int64", "4 or 8 bytes", {4, 8, 8}, Kind::Int64},
    {"time", "4 bytes", {4, 4, 4}, Kind::Time},
    {"text", "", {}, Kind::Text},
    {"bytes", "", {}, Kind::Hex},
    {"ip", "4 bytes", {4, 4, 4}, Kind::Ip},
    {"ip-range", "8 bytes", {8, 8, 8}, Kind::IpRange},
    {"ip-net", "0, 4 or 16 bytes", {0, 4, 16}, Kind::IpNet},
    {"mac", "6 bytes", {6, 6, 6}, Kind::Mac},
    {"mac-range", "12 bytes", {12, 12, 12}, Kind::MacRange},
    {"word-range", "4 bytes", {4, 4, 4}, Kind::WordRange},
    {"byte-range", "2 bytes", {2, 2, 2}, Kind::ByteRange},
    {"password", "", {}, Kind::Password},
    {"key", "16 bytes", {16, 16, 16}, Kind::Key},
};

const Description& describe(Kind kind) {
  return *std::find_if(std::begin(kKinds), std::end(kKinds),
                       [kind](const Description& description) { return description.kind == kind; });
}

std::string_view characters(Bytes bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

Value valueFrom(std::string_view bytes) {
  return {bytes.begin(), bytes.end()};
}

// A number of at most 8 bytes; missing ones behind it are zero.
template <typename Number>
Number numberIn(Bytes bytes, std::endian order) {
  Number number = 0;
  mifCopyBounded(&number, bytes.data(), bytes.size(), 0, sizeof number);
  return order == std::endian::native
             ? number
             : static_cast<Number>(__builtin_bswap64(number) >> (64 - 8 * sizeof number));
}

template <typename Number>
Value numberAs(Number number, std::endian order) {
  Value value(sizeof number);
  mifStore(value.data(), number);
  if (order != std::endian::native) {
    std::reverse(value.begin(), value.end());
  }
  return value;
}

MaybeValue joined(const MaybeValue& first, const MaybeValue& second) {
  if (!first || !second) {
    return std::nullopt;
  }
  Value both = *first;
  both.insert(both.end(), second->begin(), second->end());
  return both;
}

// "FROM-TO", each half written by the same function; FROM alone stands for both.
template <typename Write>
MaybeValue rangeValue(std::string_view text, Write write) {
  const size_t dash = text.find('-');
  const MaybeValue from = write(text.substr(0, dash));
  return joined(from, dash == text.npos ? from : write(text.substr(dash + 1)));
}

template <typename Read>
std::string rangeText(Bytes value, Read read) {
  const size_t half = value.size() / 2;
  return fmt::format("{}-{}", read(value.first(half)), read(value.subspan(half)));
}

// Seconds as "2026-11-23T02:45:44Z".
std::string timeText(int32_t seconds) {
  const time_t time = seconds;
  tm parts{};
  gmtime_r(&time, &parts);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
  return text;
}

MaybeValue timeValue(std::string_view text, std::endian order) {
  tm parts{};
  const std::string terminated(text);
  const char* const behind = strptime(terminated.c_str(), "%Y-%m-%dT%H:%M:%SZ", &parts);
  if (behind == nullptr || *behind != '\0') {
    return std::nullopt;
  }
  const auto seconds = static_cast<int64_t>(timegm(&parts));
  return seconds == static_cast<int32_t>(seconds)
             ? MaybeValue(numberAs(static_cast<uint32_t>(seconds), order))
             : std::nullopt;
}

template <typename Number>
MaybeValue integerValue(std::string_view text, std::endian order) {
  const auto number = tool::numberFrom(text, std::numeric_limits<Number>::max());
  return number ? MaybeValue(numberAs(static_cast<Number>(*number), order)) : std::nullopt;
}

// The 4-byte form holds the first four of the 8 bytes in memory and stands for them alone.
MaybeValue integer64Value(std::string_view text, std::endian order) {
  MaybeValue value = integerValue<uint64_t>(text, order);
  if (value && numberIn<uint64_t>(*value, order) >> 32 == 0) {
    value->resize(4);
  }
  return value;
}

std::string networkText(Bytes address) {
  char text[64] = "";
  if (address.size() == 4) {
    zot_inet_ntop4(address.data(), text, sizeof text);
  } else if (address.size() == 16) {
    zot_inet_ntop6(address.data(), text, sizeof text);
  }
  return text;
}

MaybeValue networkValue(std::string_view text) {
  const std::string terminated(text);
  Value value(16);
  if (terminated.empty()) {
    value.resize(0);
  } else if (zot_inet_pton4(terminated.c_str(), value.data()) != 0) {
    value.resize(4);
  } else if (zot_inet_pton6(terminated.c_str(), value.data()) == 0) {
    return std::nullopt;
  }
  return value;
}

std::string ipText(Bytes value) {
  return fmt::format("{}.{}.{}.{}", value[3], value[2], value[1], value[0]);
}

MaybeValue ipValue(std::string_view text) {
  MaybeValue value = networkValue(text);
  if (!value || value->size() != 4) {
    return std::nullopt;
  }
  std::reverse(value->begin(), value->end());
  return value;
}

std::string groupText(Bytes value) {
  std::string text;
  for (const unsigned char byte : value) {
    text += fmt::format("{}{:02X}", text.empty() ? "" : ".", byte);
  }
  return text;
}

// Groups of two hexadecimal digits between '.' or ':'.
MaybeValue groupValue(std::string_view text, size_t count) {
  std::string hex(text);
  for (size_t at = 2; at < hex.size(); at += 3) {
    if (hex[at] != '.' && hex[at] != ':') {
      return std::nullopt;
    }
    hex[at] = ' ';
  }
  MaybeValue value = bytesFromHex(hex);
  return value && value->size() == count && hex.size() == 3 * count - 1 ? value : std::nullopt;
}

// Nothing for a value that has no password: the decoder's counters have 16 bits.
std::optional<std::string> passwordText(Bytes value) {
  Value input(value.begin(), value.end());
  input.push_back(0);
  Value output(0xFFFF);
  const unsigned short count = DeCryptPasw_20(output.data(), input.data(), 0xFFFF);
  if (count == 0 && !value.empty()) {
    return std::nullopt;
  }
  return tool::utf8FromLatin1(characters(Bytes(output).first(count)));
}

MaybeValue passwordValue(std::string_view text) {
  std::optional<std::string> bytes = tool::latin1FromUtf8(text);
  if (!bytes || bytes->size() > 0x7FFF || bytes->find('\0') != bytes->npos) {
    return std::nullopt;
  }
  std::string scrambled(2 * bytes->size() + 1, '\0');
  EncryptPasw_20(bytes->data(), scrambled.data());
  return valueFrom(scrambled.c_str());
}

bool printable(unsigned char byte) {
  return (byte & 0x7F) >= 0x20 && byte != 0x7F;
}

}  // namespace

std::string_view nameOf(Kind kind) {
  return describe(kind).name;
}

std::optional<Kind> kindNamed(std::string_view name) {
  for (const Description& description : kKinds) {
    if (description.name == name) {
      return description.kind;
    }
  }
  return std::nullopt;
}

std::string allKindNames() {
  std::string names;
  for (const Description& description : kKinds) {
    names += fmt::format("{}{}", names.empty() ? "" : ", ", description.name);
  }
  return names;
}

bool fits(Kind kind, size_t length) {
  const Description& description = describe(kind);
  const auto& accepted = description.accepted;
  return description.lengths.empty() ||
         std::find(accepted.begin(), accepted.end(), static_cast<int>(length)) != accepted.end();
}

std::string lengthsOf(Kind kind) {
  return std::string(describe(kind).lengths);
}

std::optional<std::string> textOf(Kind kind, Bytes value, std::endian order) {
  if (!fits(kind, value.size())) {
    return std::nullopt;
  }
  switch (kind) {
    case Kind::Int:
      return std::to_string(numberIn<uint32_t>(value, order));
    case Kind::Int64:
      return std::to_string(numberIn<uint64_t>(value, order));
    case Kind::Time:
      return timeText(static_cast<int32_t>(numberIn<uint32_t>(value, order)));
    case Kind::Text:
      return tool::utf8FromLatin1(characters(value));
    case Kind::Hex:
      return hexText(value);
    case Kind::Ip:
      return ipText(value);
    case Kind::IpRange:
      return rangeText(value, ipText);
    case Kind::IpNet:
      return networkText(value);
    case Kind::Mac:
    case Kind::Key:
      return groupText(value);
    case Kind::MacRange:
      return rangeText(value, groupText);
    case Kind::WordRange:
      return rangeText(value, [order](Bytes half) { return numberIn<uint16_t>(half, order); });
    case Kind::ByteRange:
      return fmt::format("{}-{}", value[0], value[1]);
    case Kind::Password:
      return passwordText(value);
  }
  return std::nullopt;
}

std::optional<std::vector<unsigned char>> valueOf(Kind kind, std::string_view text, std::endian order) {
  switch (kind) {
    case Kind::Int:
      return integerValue<uint32_t>(text, order);
    case Kind::Int64:
      return integer64Value(text, order);
    case Kind::Time:
      return timeValue(text, order);
    case Kind::Text: {
      const std::optional<std::string> bytes = tool::latin1FromUtf8(text);
      return bytes ? MaybeValue(valueFrom(*bytes)) : std::nullopt;
    }
    case Kind::Hex:
      return bytesFromHex(text);
    case Kind::Ip:
      return ipValue(text);
    case Kind::IpRange:
      return rangeValue(text, ipValue);
    case Kind::IpNet:
      return networkValue(text);
    case Kind::Mac:
      return groupValue(text, 6);
    case Kind::Key:
      return groupValue(text, 16);
    case Kind::MacRange:
      return rangeValue(text, [](std::string_view half) { return groupValue(half, 6); });
    case Kind::WordRange:
      return rangeValue(text, [order](std::string_view half) { return integerValue<uint16_t>(half, order); });
    case Kind::ByteRange:
      return rangeValue(text, [order](std::string_view half) { return integerValue<uint8_t>(half, order); });
    case Kind::Password:
      return passwordValue(text);
  }
  return std::nullopt;
}

Kind suggestedKind(Bytes value, std::endian order) {
  if (std::all_of(value.begin(), value.end(), printable)) {
    return Kind::Text;
  }
  if (value.size() == 4) {
    return Kind::Int;
  }
  // A 64-bit number of 8 bytes is at least 2^32.  An address range has an octet where
  // numbers of that size still have a zero.
  const uint64_t number = value.size() == 8 ? numberIn<uint64_t>(value, order) : 0;
  return number >> 32 != 0 && number >> 56 == 0 ? Kind::Int64 : Kind::Hex;
}

std::string hexText(Bytes bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  text.reserve(3 * bytes.size());
  for (const unsigned char byte : bytes) {
    text += text.empty() ? "" : " ";
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0xF];
  }
  return text;
}

std::optional<std::vector<unsigned char>> bytesFromHex(std::string_view text) {
  Value bytes;
  unsigned int digits = 0;
  unsigned int byte = 0;
  for (const char character : text) {
    if (character == ' ' || (character >= '\t' && character <= '\r')) {
      continue;
    }
    const auto digit = tool::numberFrom(std::string("0x") + character);
    if (!digit) {
      return std::nullopt;
    }
    byte = byte << 4 | static_cast<unsigned int>(*digit);
    if (++digits % 2 == 0) {
      bytes.push_back(static_cast<unsigned char>(byte));
      byte = 0;
    }
  }
  return digits % 2 == 0 ? MaybeValue(bytes) : std::nullopt;
}

}  // namespace mif
