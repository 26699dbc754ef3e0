// Mif32: finding and reading records.
#include <cstdio>
#include <cstring>

#include "mif/Mif32.h"
#include "mif/MifRecord.h"
#include "os/zot_string.h"

unsigned int Mif32::Seek(unsigned short oid, unsigned int* valueOffset, unsigned int* valueLen,
                         unsigned int occurrence) {
  const auto record = MifRecords(pbData, usedBytes()).find(oid, occurrence);
  if (!record) {
    return 0;
  }
  if (valueOffset != nullptr) {
    *valueOffset = static_cast<unsigned int>(record->valueOffset());
  }
  if (valueLen != nullptr) {
    *valueLen = record->length;
  }
  return 1;
}

unsigned int Mif32::SearchValue(unsigned short oid, unsigned int* valueLen, unsigned int occurrence) {
  return Seek(oid, nullptr, valueLen, occurrence);
}

unsigned int Mif32::GetStr(unsigned short oid, char* dst, unsigned short dstSize, unsigned int occurrence) {
  unsigned int offset = 0;
  unsigned int length = 0;
  if (dst == nullptr || dstSize == 0 || Seek(oid, &offset, &length, occurrence) == 0 || dstSize <= length) {
    return 0;
  }
  std::memset(dst, 0, dstSize);
  const unsigned int inside = uAllocLen - offset;
  strncpy_zot(dst, dstSize, reinterpret_cast<const char*>(pbData + offset),
              length < inside ? length : inside);
  return 1;
}

unsigned int Mif32::GetBinPtr(unsigned short oid, unsigned char** value, unsigned int* valueLen,
                              unsigned int occurrence) {
  unsigned int offset = 0;
  if (valueLen == nullptr || Seek(oid, &offset, valueLen, occurrence) == 0) {
    return 0;
  }
  if (value != nullptr) {
    *value = pbData + offset;
  }
  return 1;
}

unsigned int Mif32::GetBin(unsigned short oid, unsigned char* dst, unsigned int* len,
                           unsigned int occurrence) {
  unsigned int offset = 0;
  unsigned int length = 0;
  if (len == nullptr || Seek(oid, &offset, &length, occurrence) == 0) {
    return 0;
  }
  if (dst != nullptr) {
    if (length > *len) {
      return 0;
    }
    mifCopyBounded(dst, pbData, uAllocLen, offset, length);
  }
  *len = length;
  return 1;
}

unsigned int Mif32::GetInt(unsigned short oid, unsigned int* value, unsigned int occurrence) {
  unsigned int offset = 0;
  if (value == nullptr || Seek(oid, &offset, nullptr, occurrence) == 0) {
    return 0;
  }
  mifCopyBounded(value, pbData, uAllocLen, offset, sizeof *value);
  return 1;
}

unsigned int Mif32::GetInt64(unsigned short oid, unsigned long long* value, unsigned int occurrence) {
  unsigned int offset = 0;
  unsigned int length = 0;
  if (value == nullptr || occurrence == 0) {
    return 0;
  }
  *value = 0;
  if (Seek(oid, &offset, &length, occurrence) == 0) {
    return 0;
  }
  mifCopyBounded(value, pbData, uAllocLen, offset, length == 4 ? 4 : sizeof *value);
  return 1;
}

int Mif32::Print() {
  std::printf("Len  : %d\nData : ", static_cast<int>(uLen));
  // Sixteen bits wide on purpose: callers know that the dump of 64 KiB never ends.
  for (unsigned short i = 0; i < uLen; ++i) {  // NOLINT(bugprone-too-small-loop-variable)
    unsigned char byte = 0;
    mifCopyBounded(&byte, pbData, pbData != nullptr ? uAllocLen : 0, i, 1);
    std::printf("%02x ", byte);
  }
  return std::putchar('\n');
}
