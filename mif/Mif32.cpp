#include "mif/Mif32.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <functional>

#include "mif/MifRecord.h"
#include "os/WipeInternal.h"

namespace {

constexpr unsigned int kGrowthMargin = 1000;

// A larger block grows by realloc(), which may leave its bytes behind in freed memory.
constexpr unsigned int kLargestCopiedBlock = 65536;

// Both fields of a header, written at once.
struct Header {
  unsigned short oid;
  unsigned short length;
};
static_assert(sizeof(Header) == kMifHeaderSize);

// Values up to this length are written by a few instructions and no call.
constexpr unsigned short kShortValue = 32;

template <typename Word>
void copyEnds(unsigned char* to, const unsigned char* from, size_t count) {
  const size_t last = count - sizeof(Word);
  const auto head = mifLoad<Word>(from);
  const auto tail = mifLoad<Word>(from + last);
  mifStore(to, head);
  mifStore(to + last, tail);
}

// Copies up to kShortValue bytes as memmove() does: the words at both ends, which meet
// or overlap.
void copyShort(unsigned char* to, const unsigned char* from, size_t count) {
  using Wide = std::array<uint64_t, 2>;
  if (count > sizeof(Wide)) {
    copyEnds<Wide>(to, from, count);
  } else if (count >= sizeof(uint64_t)) {
    copyEnds<uint64_t>(to, from, count);
  } else if (count >= sizeof(uint32_t)) {
    copyEnds<uint32_t>(to, from, count);
  } else if (count >= sizeof(uint16_t)) {
    copyEnds<uint16_t>(to, from, count);
  } else if (count != 0) {
    *to = *from;
  }
}

}  // namespace

Mif32::Mif32() : pbData(nullptr), uLen(0), uAllocLen(0), cFailed(0), cExternal(0) {}

Mif32::~Mif32() {
  releaseBlock();
  detach();
}

bool Mif32::ownsAddress(const unsigned char* address) const {
  const std::less<> before;
  return cExternal == 0 && pbData != nullptr && !before(address, pbData) &&
         before(address, pbData + uAllocLen);
}

// Records may hold passwords: no block goes back to the heap with its bytes.
void Mif32::releaseBlock() {
  if (cExternal == 0 && pbData != nullptr) {
    zotWipe(pbData, uAllocLen);
    std::free(pbData);
  }
}

void Mif32::detach() {
  pbData = nullptr;
  uLen = 0;
  uAllocLen = 0;
  cFailed = 0;
  cExternal = 0;
}

unsigned int Mif32::CheckSize(unsigned int n) {
  const uint64_t need = uint64_t{uLen} + n;
  const bool fits = uAllocLen >= need && (pbData != nullptr || n == 0);
  if (fits || cExternal != 0) {
    return fits ? 1 : 0;
  }
  const uint64_t newAllocLen = need + kGrowthMargin;
  return newAllocLen <= UINT32_MAX ? grow(static_cast<unsigned int>(newAllocLen)) : 0;
}

unsigned int Mif32::grow(unsigned int newAllocLen) {
  const unsigned int kept = pbData == nullptr ? 0 : uAllocLen;
  const bool copied = kept <= kLargestCopiedBlock;
  void* block = copied ? std::malloc(newAllocLen) : std::realloc(pbData, newAllocLen);
  if (copied && block != nullptr && kept != 0) {
    std::memcpy(block, pbData, kept);
  }
  if (copied || block == nullptr) {
    releaseBlock();
  }
  pbData = static_cast<unsigned char*>(block);
  uAllocLen = newAllocLen;
  if (block == nullptr) {
    cFailed = 1;
    return 0;
  }
  // A length set by hand may show bytes that nobody wrote.
  std::memset(pbData + kept, 0, newAllocLen - kept);
  return 1;
}

unsigned int Mif32::Alloc(unsigned short size) {
  if (cExternal != 0) {
    return 0;
  }
  releaseBlock();
  pbData = static_cast<unsigned char*>(std::calloc(size, 1));
  uAllocLen = size;
  uLen = 0;
  return pbData != nullptr ? 1 : 0;
}

unsigned int Mif32::SetExternalMem(unsigned char* mem, unsigned int allocLen, unsigned int usedLen) {
  if (mem == nullptr || allocLen == 0 || ownsAddress(mem)) {
    return 0;
  }
  releaseBlock();
  pbData = mem;
  uAllocLen = allocLen;
  uLen = usedLen;
  cFailed = 0;
  cExternal = 1;
  return 1;
}

unsigned int Mif32::IsExternalMem(unsigned int* freeBytes) {
  if (cExternal != 1) {
    return 0;
  }
  if (freeBytes != nullptr) {
    *freeBytes = uAllocLen - uLen;
  }
  return 1;
}

unsigned char* Mif32::GetData() {
  return pbData;
}

unsigned int Mif32::GetLen() {
  return uLen;
}

unsigned int Mif32::GetAllocLen() {
  return uAllocLen;
}

void Mif32::SetLen(unsigned short len) {
  uLen = len;
}

void Mif32::ClearBuffer() {
  if (cExternal != 0) {
    detach();
    return;
  }
  uLen = 0;
  if (pbData != nullptr) {
    std::memset(pbData, 0, uAllocLen);
  }
}

void Mif32::SetData(const unsigned char* data, unsigned int size) {
  if (data == pbData) {
    return;
  }
  if (data == nullptr || size == 0) {
    releaseBlock();
    detach();
    return;
  }
  // Bytes in the block that is given up are copied first.
  const bool inside = ownsAddress(data);
  if (!inside) {
    releaseBlock();
  }
  auto* block = static_cast<unsigned char*>(std::malloc(size));
  if (block != nullptr) {
    std::memcpy(block, data, size);
  }
  if (inside) {
    releaseBlock();
  }
  pbData = block;
  if (block == nullptr) {
    cFailed = 1;
    return;
  }
  uAllocLen = size;
  uLen = size;
  cExternal = 0;
}

void Mif32::SetData(const char* data, unsigned int size) {
  SetData(reinterpret_cast<const unsigned char*>(data), size);
}

// Makes room for count bytes behind those in use where there is none yet.  A value
// inside the block moves with it when the block grows.
[[gnu::noinline]] bool Mif32::makeRoom(uint64_t count, const unsigned char*& value) {
  const bool inside = value != nullptr && ownsAddress(value);
  const size_t valueOffset = inside ? static_cast<size_t>(value - pbData) : 0;
  if (count > UINT32_MAX || CheckSize(static_cast<unsigned int>(count)) == 0) {
    return false;
  }
  if (inside) {
    value = pbData + valueOffset;
  }
  return true;
}

// A value behind the end marker stands where that of a record would, two bytes
// further than the room made for it; callers rely on the figures.
[[gnu::noinline]] unsigned int Mif32::addEndMarker(const unsigned char* value, unsigned short len) {
  const unsigned int count = kMifEndMarkerSize + len;
  if (!makeRoom(count, value)) {
    return 0;
  }
  mifStore(pbData + uLen, kMifEndMarker);
  const size_t behind = uAllocLen - uLen;
  if (len != 0 && behind > kMifHeaderSize) {
    std::memmove(pbData + uLen + kMifHeaderSize, value, std::min<size_t>(len, behind - kMifHeaderSize));
  }
  uLen += count;
  return 1;
}

// Add() for a record of any kind and size.
[[gnu::noinline]] unsigned int Mif32::addAny(unsigned short oid, const unsigned char* value,
                                             unsigned short len) {
  if (value == nullptr && len != 0) {
    return 0;
  }
  if (oid == kMifEndMarker) {
    return addEndMarker(value, len);
  }
  const unsigned int count = kMifHeaderSize + len;
  if (!makeRoom(count, value)) {
    return 0;
  }
  unsigned char* const record = pbData + uLen;
  mifStore(record, Header{oid, len});
  if (len != 0) {
    std::memmove(record + kMifHeaderSize, value, len);
  }
  uLen += count;
  return 1;
}

unsigned int Mif32::Add(unsigned short oid, const unsigned char* value, unsigned short len) {
  const unsigned int count = kMifHeaderSize + len;
  if (value == nullptr || len > kShortValue || oid == kMifEndMarker || !hasRoom(count)) {
    return addAny(oid, value, len);
  }
  unsigned char* const record = pbData + uLen;
  mifStore(record, Header{oid, len});
  copyShort(record + kMifHeaderSize, value, len);
  uLen += count;
  return 1;
}

template <typename Number>
[[gnu::noinline]] unsigned int Mif32::addNumberAny(unsigned short oid, Number number) {
  return addAny(oid, reinterpret_cast<const unsigned char*>(&number), sizeof number);
}

// Add() for what most records hold.
template <typename Number>
unsigned int Mif32::addNumber(unsigned short oid, Number number) {
  constexpr unsigned int count = kMifHeaderSize + sizeof number;
  if (oid == kMifEndMarker || !hasRoom(count)) {
    return addNumberAny(oid, number);
  }
  unsigned char* const record = pbData + uLen;
  mifStore(record, Header{oid, sizeof number});
  mifStore(record + kMifHeaderSize, number);
  uLen += count;
  return 1;
}

unsigned int Mif32::AddInt(unsigned short oid, unsigned int value) {
  return addNumber(oid, value);
}

unsigned int Mif32::AddInt64(unsigned short oid, unsigned long long value) {
  if (value >> 32 != 0) {
    return addNumber(oid, value);
  }
  return addNumber(oid, mifLoad<uint32_t>(reinterpret_cast<const unsigned char*>(&value)));
}

unsigned int Mif32::AddStr(unsigned short oid, const char* text) {
  if (text == nullptr) {
    return 0;
  }
  return Add(oid, reinterpret_cast<const unsigned char*>(text),
             static_cast<unsigned short>(std::strlen(text)));
}

unsigned int Mif32::AddBin(unsigned short oid, const unsigned char* data, unsigned int len) {
  return data != nullptr ? Add(oid, data, static_cast<unsigned short>(len)) : 0;
}

unsigned int Mif32::AddTime(unsigned short oid, long time) {
  return addNumber(oid, static_cast<unsigned int>(time));
}

unsigned int Mif32::AddEndKz() {
  const unsigned int used = usedBytes();
  const uint64_t end = MifRecords(pbData, used).endOffset();
  const uint64_t left = end <= used ? used - end : 0;
  if (left >= kMifHeaderSize) {
    return 0;
  }
  if (left >= kMifEndMarkerSize && mifLoad<unsigned short>(pbData + end) == kMifEndMarker) {
    return 1;
  }
  return Add(kMifEndMarker, nullptr, 0);
}

unsigned int Mif32::DelEndKz() {
  if (uLen > usedBytes() || uLen < kMifEndMarkerSize) {
    return 0;
  }
  const unsigned int marker = uLen - kMifEndMarkerSize;
  if (mifLoad<unsigned short>(pbData + marker) != kMifEndMarker) {
    return 0;
  }
  if (MifRecords(pbData, uLen).endOffset() != marker) {
    return 0;
  }
  uLen = marker;
  return 1;
}

template <typename Number>
unsigned int Mif32::rawAddNumber(Number number) {
  return RawAddBin(reinterpret_cast<const unsigned char*>(&number), sizeof number);
}

unsigned int Mif32::RawAddByte(unsigned char value) {
  return rawAddNumber(value);
}

unsigned int Mif32::RawAddWord(unsigned short value) {
  return rawAddNumber(value);
}

unsigned int Mif32::RawAddDWord(unsigned int value) {
  return rawAddNumber(value);
}

unsigned int Mif32::RawAddLDWord(unsigned long long value) {
  return rawAddNumber(value);
}

unsigned int Mif32::RawAddBin(const unsigned char* data, unsigned int len) {
  if (data == nullptr || !makeRoom(len, data)) {
    return 0;
  }
  if (len != 0) {
    std::memmove(pbData + uLen, data, len);
  }
  uLen += len;
  return 1;
}

unsigned int Mif32::RawAddStr(const char* text) {
  const size_t len = text != nullptr ? std::strlen(text) : 0;
  if (len > UINT32_MAX) {
    return 0;  // GCOVR_EXCL_LINE: only for a text of 4 GiB
  }
  return RawAddBin(reinterpret_cast<const unsigned char*>(text), static_cast<unsigned int>(len));
}
