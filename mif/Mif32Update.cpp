// Mif32: replacing, appending and deleting values in place.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "mif/Mif32.h"
#include "mif/MifRecord.h"
#include "os/MallocedInternal.h"
#include "os/WipeInternal.h"

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

// A new heap block of imageSize bytes: the buffer with another value at offset.  A
// record whose old length runs past the bytes in use makes the image shorter than
// its parts, which are cut then.
unsigned char* Mif32::buildUpdated(unsigned int offset, unsigned int oldLen, const unsigned char* value,
                                   unsigned short len, unsigned int imageSize) {
  auto* image = static_cast<unsigned char*>(std::calloc(std::max(imageSize, 1u), 1));
  if (image == nullptr) {
    return nullptr;
  }
  const auto put = [=](size_t at, const void* bytes, size_t count) {
    if (at < imageSize) {
      std::memcpy(image + at, bytes, std::min(count, imageSize - at));
    }
  };
  put(0, pbData, offset);
  put(offset - sizeof len, &len, sizeof len);
  put(offset, value, len);
  const uint64_t oldEnd = uint64_t{offset} + oldLen;
  if (oldEnd < usedBytes()) {
    put(size_t{offset} + len, pbData + oldEnd, static_cast<size_t>(usedBytes() - oldEnd));
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
    zotWipe(image.get(), newLen);
  } else {
    releaseBlock();
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
  const unsigned int usedBefore = usedBytes();
  const unsigned int behind = std::min(offset + length, usedBefore);
  unsigned char* const start = pbData + (offset - kMifHeaderSize);
  std::memmove(start, pbData + behind, usedBefore - behind);
  uLen -= length + kMifHeaderSize;
  // Where uLen claims bytes beyond the block, zeros move in from there.
  unsigned char* const moved = start + (usedBefore - behind);
  unsigned char* const end = pbData + usedBytes();
  if (moved < end) {
    std::memset(moved, 0, static_cast<size_t>(end - moved));
  }
  return 1;
}
