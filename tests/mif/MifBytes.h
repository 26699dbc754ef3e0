// Record bytes laid by hand, independent of the library's own reader and writer.
#ifndef TESTS_MIF_BYTES_H
#define TESTS_MIF_BYTES_H

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>

#include "mif/Mif32.h"

// The bytes of a number as this host orders them.
inline std::string host(uint64_t number, size_t width) {
  std::string bytes;
  for (size_t i = 0; i < width; ++i) {
    const size_t shift = std::endian::native == std::endian::little ? i : width - 1 - i;
    bytes.push_back(static_cast<char>(number >> (8 * shift) & 0xFF));
  }
  return bytes;
}

inline std::string rec(uint16_t oid, std::string_view value, size_t claimedLength) {
  return host(oid, 2) + host(claimedLength, 2) + std::string(value);
}

inline std::string rec(uint16_t oid, std::string_view value) {
  return rec(oid, value, value.size());
}

inline const std::string kEndKz = "\xFF\xFF";

inline const unsigned char* bytesOf(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

inline std::string contents(Mif32& mif) {
  return mif.GetLen() == 0 ? std::string()
                           : std::string(reinterpret_cast<char*>(mif.GetData()), mif.GetLen());
}

inline void load(Mif32& mif, std::string_view bytes) {
  mif.SetData(bytes.data(), static_cast<unsigned int>(bytes.size()));
}

#endif
