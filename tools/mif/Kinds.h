// What a record's value means, and its text in both directions.
#ifndef ZOT_TOOLS_MIF_KINDS_H
#define ZOT_TOOLS_MIF_KINDS_H

#include <bit>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mif {

using Bytes = std::span<const unsigned char>;

enum class Kind {
  Int,        // 32 bits
  Int64,      // 8 bytes, or the first 4 of them in memory
  Time,       // seconds since 1970, signed 32 bits
  Text,       // ISO 8859-1
  Hex,        // as hexadecimal pairs
  Ip,         // IPv4, last octet first, as ZOTMifBuffer stores it
  IpRange,    // two of them
  IpNet,      // IPv4 or IPv6 in network order, as Mif32::AddIpAddr stores it
  Mac,        // six groups
  MacRange,   // two of them
  WordRange,  // two numbers of 16 bits
  ByteRange,  // two numbers of 8 bits
  Password,   // text, scrambled by EncryptPasw_20
  Key         // sixteen groups
};

// The names that fields files use: "int", "ip-range".
std::string_view nameOf(Kind kind);
std::optional<Kind> kindNamed(std::string_view name);
std::string allKindNames();

// Whether a value of this many bytes can be of the kind; and the sentence for one that is not.
bool fits(Kind kind, size_t length);
std::string lengthsOf(Kind kind);  // "4 bytes", "4 or 8 bytes"

// The value as UTF-8 text without quotes; nothing when its length is not the kind's.
// order: of the numbers in the value.
std::optional<std::string> textOf(Kind kind, Bytes value, std::endian order);

// The value that a text stands for; nothing when it is none of the kind.  Texts of some
// values are shorter than the values: only what textOf() made of a value and this makes
// the same value of again is exact.
std::optional<std::vector<unsigned char>> valueOf(Kind kind, std::string_view text, std::endian order);

// What the bytes alone suggest.
Kind suggestedKind(Bytes value, std::endian order);

// "5e a1 00"; of many bytes too.  And back: blanks are free, nothing on any other character.
std::string hexText(Bytes bytes);
std::optional<std::vector<unsigned char>> bytesFromHex(std::string_view text);

}  // namespace mif

#endif
