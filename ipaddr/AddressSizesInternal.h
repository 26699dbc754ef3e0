// Bytes of an address, which also tell its family.
#ifndef ZOT_ADDRESS_SIZES_INTERNAL_H
#define ZOT_ADDRESS_SIZES_INTERNAL_H

inline constexpr unsigned int kIp4Size = 4;
inline constexpr unsigned int kIp6Size = 16;

#endif
