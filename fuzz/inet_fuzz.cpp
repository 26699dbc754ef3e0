// Address texts: what parses also prints, and the print parses to the same bytes.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "ipaddr/zot_inet.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  unsigned char bytes[16];
  unsigned char again[16];
  char printed[64];
  if (zot_inet_pton4(text.c_str(), bytes) != 0 &&
      (zot_inet_ntop4(bytes, printed, sizeof printed) == nullptr || zot_inet_pton4(printed, again) == 0 ||
       std::memcmp(bytes, again, 4) != 0)) {
    std::abort();
  }
  if (zot_inet_pton6(text.c_str(), bytes) != 0 &&
      (zot_inet_ntop6(bytes, printed, 46) == nullptr || zot_inet_pton6(printed, again) == 0 ||
       std::memcmp(bytes, again, 16) != 0)) {
    std::abort();
  }
  return 0;
}
