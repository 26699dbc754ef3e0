// Mif32: finding and reading records.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "mif/Mif32.h"
#include "mif/MifRecord.h"

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
  if (dst == nullptr || dstSize == 0) {
    return 0;
  }
  const auto record = MifRecords(pbData, usedBytes()).find(oid, occurrence);
  if (!record || dstSize <= record->length) {
    return 0;
  }
  const auto inside = static_cast<size_t>(uAllocLen - record->valueOffset());
  const auto* text = reinterpret_cast<const char*>(record->value);
  const size_t length = strnlen(text, std::min<size_t>(record->length, inside));
  std::memcpy(dst, text, length);
  std::memset(dst + length, 0, dstSize - length);
  return 1;
}

unsigned int Mif32::GetBinPtr(unsigned short oid, unsigned char** value, unsigned int* valueLen,
                              unsigned int occurrence) {
  if (valueLen == nullptr) {
    return 0;
  }
  const auto record = MifRecords(pbData, usedBytes()).find(oid, occurrence);
  if (!record) {
    return 0;
  }
  *valueLen = record->length;
  if (value != nullptr) {
    *value = pbData + record->valueOffset();
  }
  return 1;
}

unsigned int Mif32::GetBin(unsigned short oid, unsigned char* dst, unsigned int* len,
                           unsigned int occurrence) {
  if (len == nullptr) {
    return 0;
  }
  const auto record = MifRecords(pbData, usedBytes()).find(oid, occurrence);
  if (!record) {
    return 0;
  }
  if (dst != nullptr) {
    if (record->length > *len) {
      return 0;
    }
    mifCopyBounded(dst, pbData, uAllocLen, record->valueOffset(), record->length);
  }
  *len = record->length;
  return 1;
}

unsigned int Mif32::GetInt(unsigned short oid, unsigned int* value, unsigned int occurrence) {
  if (value == nullptr) {
    return 0;
  }
  const auto record = MifRecords(pbData, usedBytes()).find(oid, occurrence);
  if (!record) {
    return 0;
  }
  mifCopyBounded(value, pbData, uAllocLen, record->valueOffset(), sizeof *value);
  return 1;
}

unsigned int Mif32::GetInt64(unsigned short oid, unsigned long long* value, unsigned int occurrence) {
  if (value == nullptr || occurrence == 0) {
    return 0;
  }
  *value = 0;
  const auto record = MifRecords(pbData, usedBytes()).find(oid, occurrence);
  if (!record) {
    return 0;
  }
  mifCopyBounded(value, pbData, uAllocLen, record->valueOffset(), record->length == 4 ? 4 : sizeof *value);
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
