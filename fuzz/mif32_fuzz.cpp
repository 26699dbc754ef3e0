// Mif32 over foreign bytes: every reader and every change, in either memory mode.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "mif/Mif32.h"

namespace {

void exercise(Mif32& mif, unsigned short oid, unsigned int occurrence) {
  std::vector<unsigned char> value(65535);
  auto room = static_cast<unsigned int>(value.size());
  unsigned int number = 0;
  unsigned long long wide = 0;
  mif.GetBin(oid, value.data(), &room, occurrence);
  mif.GetStr(oid, reinterpret_cast<char*>(value.data()), 65535, occurrence);
  mif.GetInt(oid, &number, occurrence);
  mif.GetInt64(oid, &wide, occurrence);
  mif.UpdInt(oid, number + 1, occurrence);
  mif.UpdInt64(oid, ~wide, occurrence);
  mif.UpdStr(oid, "replaced", occurrence);
  mif.DelOid(oid);
  mif.AddEndKz();
  mif.DelEndKz();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 4) {
    return 0;
  }
  const auto oid = static_cast<unsigned short>(data[0]);
  const unsigned int occurrence = data[1] % 4u;
  const auto claimed = static_cast<unsigned short>(data[2] << 8 | data[3]);
  std::vector<unsigned char> bytes(data + 4, data + size);
  Mif32 owned;
  owned.SetData(bytes.data(), static_cast<unsigned int>(bytes.size()));
  if (claimed % 2 == 1) {
    owned.SetLen(claimed);
  }
  exercise(owned, oid, occurrence);
  Mif32 external;
  external.SetExternalMem(bytes.data(), static_cast<unsigned int>(bytes.size()), claimed);
  exercise(external, oid, occurrence);
  return 0;
}
