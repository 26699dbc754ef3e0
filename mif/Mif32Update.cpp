// Mif32: replacing, appending and deleting values in place.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "mif/Mif32.h"
#include "mif/MifRecord.h"
#include "os/MallocedInternal.h"

namespace {

constexpr unsigned int kUpdateMargin = 10;

}  // namespace

template <typename Writer>
unsigned int Mif32::appendBeforeEndKz(Writer write) {
  const bool hadMarker = DelEndKz() != 0;
  write();
  if (hadMarker) {
    AddEndKz();
  }
  return 0;
}

// Overwrites bytes in use, as far as the block reaches.
void Mif32::overwrite(unsigned int offset, const void* bytes, unsigned int count) {
  std::memcpy(pbData + offset, bytes, std::min(count, uAllocLen - offset));
}

// A new heap block of at least imageSize bytes: the buffer with another value at
// offset.  A record whose old length runs past the bytes in use makes the image
// shorter than its parts, so the block holds whichever is longer.
unsigned char* Mif32::buildUpdated(unsigned int offset, unsigned int oldLen, const unsigned char* value,
                                   unsigned short len, unsigned int imageSize) {
  const uint64_t oldEnd = uint64_t{offset} + oldLen;
  const auto tail = static_cast<size_t>(oldEnd < usedBytes() ? usedBytes() - oldEnd : 0);
  const size_t newEnd = size_t{offset} + len;
  auto* image = static_cast<unsigned char*>(std::calloc(std::max<size_t>(newEnd + tail, imageSize), 1));
  if (image == nullptr) {
    return nullptr;
  }
  std::memcpy(image, pbData, offset);
  mifStore(image + offset - sizeof len, len);
  std::memcpy(image + offset, value, len);
  if (tail != 0) {
    std::memcpy(image + newEnd, pbData + oldEnd, tail);
  }
  return image;
}

unsigned int Mif32::UpdBin(unsigned short oid, const unsigned char* value, unsigned short len,
                           unsigned int occurrence) {
  unsigned int offset = 0;
  unsigned int oldLen = 0;
  if (value == nullptr || occurrence == 0) {
    return 0;
  }
  if (Seek(oid, &offset, &oldLen, occurrence) == 0) {
    return appendBeforeEndKz([&] { return Add(oid, value, len); });
  }
  const int64_t total = int64_t{uLen} - oldLen + len;
  const int64_t largest = cExternal != 0 ? int64_t{uAllocLen} : int64_t{UINT32_MAX} - kUpdateMargin;
  if (total < 0 || total > largest) {
    return 0;
  }
  const auto newLen = static_cast<unsigned int>(total);
  const unsigned int imageSize = cExternal != 0 ? newLen : newLen + kUpdateMargin;
  Malloced<unsigned char> image(buildUpdated(offset, oldLen, value, len, imageSize));
  if (image == nullptr) {
    return 0;
  }
  if (cExternal != 0) {
    std::memcpy(pbData, image.get(), newLen);
  } else {
    std::free(pbData);
    pbData = image.release();
    uAllocLen = imageSize;
  }
  uLen = newLen;
  return 1;
}

unsigned int Mif32::UpdStr(unsigned short oid, const char* text, unsigned int occurrence) {
  const auto length = static_cast<unsigned short>(text != nullptr ? std::strlen(text) : 0);
  return UpdBin(oid, reinterpret_cast<const unsigned char*>(text), length, occurrence);
}

unsigned int Mif32::UpdInt(unsigned short oid, unsigned int value, unsigned int occurrence) {
  unsigned int offset = 0;
  if (occurrence == 0) {
    return 0;
  }
  if (Seek(oid, &offset, nullptr, occurrence) == 0) {
    return appendBeforeEndKz([&] { return AddInt(oid, value); });
  }
  overwrite(offset, &value, sizeof value);
  return 1;
}

unsigned int Mif32::UpdInt64(unsigned short oid, unsigned long long value, unsigned int occurrence) {
  unsigned int offset = 0;
  unsigned int oldLen = 0;
  if (occurrence == 0) {
    return 0;
  }
  if (Seek(oid, &offset, &oldLen, occurrence) == 0) {
    return appendBeforeEndKz([&] { return AddInt64(oid, value); });
  }
  const unsigned short newLen = value >> 32 != 0 ? 8 : 4;
  if (oldLen != newLen) {
    // Occurrence 1, whichever was found: callers rely on it.
    return UpdBin(oid, reinterpret_cast<const unsigned char*>(&value), newLen, 1);
  }
  overwrite(offset, &value, newLen);
  return 1;
}

unsigned int Mif32::DelOid(unsigned short oid) {
  unsigned int offset = 0;
  unsigned int length = 0;
  if (Seek(oid, &offset, &length, 1) == 0 || uint64_t{offset} + length > uLen) {
    return 0;
  }
  const unsigned int behind = offset + length;
  const unsigned int start = offset - kMifHeaderSize;
  const unsigned int used = usedBytes();
  const unsigned int moved = behind < used ? used - behind : 0;
  if (moved != 0) {
    std::memmove(pbData + start, pbData + behind, moved);
  }
  uLen -= length + kMifHeaderSize;
  // Where uLen claimed bytes beyond the block, zeros move in from there.
  if (start + moved < std::min(uLen, uAllocLen)) {
    std::memset(pbData + start + moved, 0, std::min(uLen, uAllocLen) - start - moved);
  }
  return 1;
}
