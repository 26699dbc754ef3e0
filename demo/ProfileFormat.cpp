#include "ProfileFormat.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "mif/MifRecord.h"
#include "mif/zotmif.h"

namespace {

// An address as a number: its last byte stands first.
uint32_t addressAt(const unsigned char* value) {
  return static_cast<uint32_t>(value[3]) << 24 | static_cast<uint32_t>(value[2]) << 16 |
         static_cast<uint32_t>(value[1]) << 8 | value[0];
}

bool isOrderedPorts(const unsigned char* value) {
  const auto from = mifLoad<unsigned short>(value);
  return from != 0 && from <= mifLoad<unsigned short>(value + 2);
}

bool fits(const MifRecord& record) {
  const unsigned char* value = record.value;
  switch (record.oid) {
    case kOidName:
      return record.length >= 1 && record.length <= kLongestName &&
             std::none_of(value, value + record.length, [](unsigned char c) { return (c & 0x7F) < 0x20; });
    case kOidGateway:
      return record.length == 4;
    case kOidRange:
      return record.length == 8 && addressAt(value) <= addressAt(value + 4);
    case kOidAdapter:
      return record.length == 6;
    case kOidPorts:
      return record.length == 4 && isOrderedPorts(value);
    case kOidPassword:
      // A scrambled text has no byte below a blank.
      return record.length < 512 &&
             std::none_of(value, value + record.length, [](unsigned char c) { return c < 0x20; });
    case kOidKey:
      return record.length == 16;
    case kOidOptions:
      return record.length == 4 && mifLoad<uint32_t>(value) >> kOptionCount == 0;
    default:
      return record.oid < kOidName;
  }
}

}  // namespace

bool isSound(Bytes message) {
  std::set<unsigned short> seen;
  const MifRecords records(message.data(), message.size());
  auto record = records.begin();
  for (; record != records.end(); ++record) {
    if (!record->complete() || !seen.insert(record->oid).second) {
      return false;
    }
  }
  return record.offset() + kMifEndMarkerSize == message.size() &&
         mifLoad<unsigned short>(message.data() + record.offset()) == kMifEndMarker;
}

uint32_t integerIn(Bytes message, Oid oid) {
  const auto size = static_cast<uint32_t>(message.size());
  uint32_t value = 0, length = sizeof value;
  unsigned char bytes[sizeof value];
  if (zotmifGetBinData(message.data(), size, oid, bytes, &length, 1) != 0 && length == sizeof value) {
    std::memcpy(&value, bytes, sizeof value);
  }
  return value;
}

unsigned short faultyFieldOf(Bytes message) {
  const auto size = static_cast<uint32_t>(message.size());
  for (const MifRecord& record : MifRecords(message.data(), size)) {
    if (!fits(record)) {
      return record.oid;
    }
  }
  for (const Oid needed : {kOidName, kOidGateway}) {
    if (zotmifGetBinDataPtr(message.data(), size, needed, nullptr, nullptr, 1) == 0) {
      return needed;
    }
  }
  return 0;
}
