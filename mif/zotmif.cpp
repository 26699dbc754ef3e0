#include "mif/zotmif.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <optional>

#include "ipaddr/AddressSizesInternal.h"
#include "ipaddr/ZotIpAddr.h"
#include "mif/MifRecord.h"

namespace {

std::optional<MifRecord> find(const unsigned char* buf, uint32_t len, unsigned short oid,
                              uint32_t occurrence) {
  return MifRecords(buf, buf != nullptr ? len : 0).find(oid, occurrence);
}

// Whether count bytes from the value on are in the buffer, whatever its length says.
bool hasBytes(const MifRecord& record, uint32_t len, uint32_t count) {
  return len - record.valueOffset() >= count;
}

// Gives an address value to a setter of ZotIpAddr; bytes beyond the buffer are 0.
uint32_t setAddress(ZotIpAddr* addr, unsigned int (ZotIpAddr::*set)(const unsigned char*, unsigned int),
                    const MifRecord& record) {
  if (record.complete()) {
    return (addr->*set)(record.value, record.length);
  }
  unsigned char padded[kIp6Size] = {};
  std::memcpy(padded, record.value, std::min(record.available, sizeof padded));
  return (addr->*set)(padded, record.length);
}

bool nothingToSearch(const unsigned char* buf, uint32_t len, uint32_t occurrence) {
  return buf == nullptr || len == 0 || occurrence == 0;
}

}  // namespace

uint32_t zotmifGetInt(const unsigned char* buf, uint32_t len, unsigned short oid, uint32_t* value,
                      uint32_t occurrence) {
  const auto record = find(buf, len, oid, occurrence);
  if (!record || !hasBytes(*record, len, sizeof *value)) {
    return 0;
  }
  if (value != nullptr) {
    *value = mifLoad<uint32_t>(record->value);
  }
  return 1;
}

uint32_t zotmifGetInt64(const unsigned char* buf, uint32_t len, unsigned short oid, unsigned long long* value,
                        uint32_t occurrence) {
  const auto record = find(buf, len, oid, occurrence);
  if (!record) {
    return 0;
  }
  const bool whole = record->length == sizeof *value && record->complete();
  const uint32_t count = whole ? sizeof *value : sizeof(uint32_t);
  const bool readable = hasBytes(*record, len, count);
  if (value != nullptr) {
    *value = 0;
    std::memcpy(value, record->value, readable ? count : 0);
  }
  return readable;
}

uint32_t zotmifGetStr(const unsigned char* buf, uint32_t len, unsigned short oid, char* dst, uint32_t dstSize,
                      uint32_t occurrence) {
  const auto record = find(buf, len, oid, occurrence);
  if (!record || dstSize <= record->length || !record->complete()) {
    return 0;
  }
  if (dst != nullptr) {
    std::memcpy(dst, record->value, record->length);
    dst[record->length] = '\0';
  }
  return 1;
}

uint32_t zotmifGetBinData(const unsigned char* buf, uint32_t len, unsigned short oid, unsigned char* dst,
                          uint32_t* dstLen, uint32_t occurrence) {
  if (dstLen == nullptr) {
    return 0;
  }
  const auto record = find(buf, len, oid, occurrence);
  if (!record) {
    return 0;
  }
  if (record->length > *dstLen) {
    *dstLen = 0;
    return 0;
  }
  if (!record->complete()) {
    return 0;
  }
  if (dst != nullptr) {
    std::memcpy(dst, record->value, record->length);
  }
  *dstLen = record->length;
  return 1;
}

uint32_t zotmifGetBinDataPtr(const unsigned char* buf, uint32_t len, unsigned short oid,
                             const unsigned char** value, uint32_t* valueLen, uint32_t occurrence) {
  const auto record = find(buf, len, oid, occurrence);
  if (!record || !record->complete()) {
    return 0;
  }
  if (value != nullptr) {
    *value = record->value;
  }
  if (valueLen != nullptr) {
    *valueLen = record->length;
  }
  return 1;
}

uint32_t zotmifGetIpAddrV4(const unsigned char* buf, uint32_t len, unsigned short oid, ZotIpAddr* addr,
                           uint32_t occurrence) {
  if (nothingToSearch(buf, len, occurrence)) {
    return 0;
  }
  const auto record = find(buf, len, oid, occurrence);
  if (!record) {
    addr->SetAnyHostV4();
    return 0;
  }
  return setAddress(addr, &ZotIpAddr::SetIpAddrFromMifV4, *record);
}

uint32_t zotmifGetIpAddr(const unsigned char* buf, uint32_t len, unsigned short oid, ZotIpAddr* addr,
                         uint32_t occurrence) {
  if (nothingToSearch(buf, len, occurrence)) {
    return 0;
  }
  const auto record = find(buf, len, oid, occurrence);
  if (!record) {
    addr->Clear();
    return 0;
  }
  return setAddress(addr, &ZotIpAddr::SetIpAddrFromMif, *record);
}

uint32_t zotmifUpdInt(unsigned char* buf, uint32_t len, unsigned short oid, uint32_t value,
                      uint32_t occurrence) {
  const auto record = find(buf, len, oid, occurrence);
  if (!record || record->length != sizeof value || !record->complete()) {
    return 0;
  }
  mifStore(buf + static_cast<size_t>(record->valueOffset()), value);
  return 1;
}
