// The raw accessors over foreign bytes, in a block of exactly their length.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "ipaddr/ZotIpAddr.h"
#include "mif/zotmif.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) {
    return 0;
  }
  const auto oid = static_cast<unsigned short>(data[0]);
  const uint32_t occurrence = data[1] % 4u;
  std::vector<unsigned char> bytes(data + 2, data + size);
  const auto len = static_cast<uint32_t>(bytes.size());
  std::vector<char> out(256);
  uint32_t number = 0;
  unsigned long long wide = 0;
  const unsigned char* value = nullptr;
  ZotIpAddr address;
  zotmifGetInt(bytes.data(), len, oid, &number, occurrence);
  zotmifGetInt64(bytes.data(), len, oid, &wide, occurrence);
  zotmifGetStr(bytes.data(), len, oid, out.data(), 256, occurrence);
  uint32_t room = 256;
  zotmifGetBinData(bytes.data(), len, oid, reinterpret_cast<unsigned char*>(out.data()), &room, occurrence);
  if (zotmifGetBinDataPtr(bytes.data(), len, oid, &value, &room, occurrence) != 0 &&
      (value < bytes.data() || value + room > bytes.data() + len)) {
    std::abort();
  }
  zotmifGetIpAddrV4(bytes.data(), len, oid, &address, occurrence);
  zotmifGetIpAddr(bytes.data(), len, oid, &address, occurrence);
  for (const uint32_t outSize : {1u, 7u, 256u}) {
    zotmifGetRangeValuesAsString(bytes.data(), len, oid, out.data(), outSize, occurrence % 2 == 1);
  }
  zotmifUpdInt(bytes.data(), len, oid, number, occurrence);
  return 0;
}
