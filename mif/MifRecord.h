// The record format and the one walk over it.
//
// A buffer is a run of records without padding, each a 16-bit OID, a 16-bit
// length that counts the value's bytes only, and the value.  OID and length are
// in host byte order and may stand at odd addresses.  The OID 0xFFFF alone, with
// neither length nor value, is the end marker at which every walk stops.
//
// Nothing here allocates, throws or keeps more than pointers into the caller's
// bytes, which must outlive it unchanged.  Threads may walk the same bytes.
#ifndef MIF_RECORD_H
#define MIF_RECORD_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <optional>

inline constexpr unsigned short kMifEndMarker = 0xFFFF;
inline constexpr unsigned int kMifEndMarkerSize = 2;
inline constexpr unsigned int kMifHeaderSize = 4;

// Reads and writes a number in host order at any address.
template <typename Number>
Number mifLoad(const unsigned char* at) {
  Number number;
  std::memcpy(&number, at, sizeof number);
  return number;
}

template <typename Number>
void mifStore(unsigned char* at, Number number) {
  std::memcpy(at, &number, sizeof number);
}

// Copies count bytes that start offset bytes into a block; those that lie beyond
// the block's size are zero in dst.
inline void mifCopyBounded(void* dst, const unsigned char* block, uint64_t size, uint64_t offset,
                           size_t count) {
  const uint64_t left = offset < size ? size - offset : 0;
  const size_t inside = left < count ? static_cast<size_t>(left) : count;
  if (inside != 0) {
    std::memcpy(dst, block + offset, inside);
  }
  if (inside != count) {
    std::memset(static_cast<unsigned char*>(dst) + inside, 0, count - inside);
  }
}

// One record in place.
struct MifRecord {
  uint64_t offset;             // of its header, in bytes from where the walk began
  unsigned short oid;          // never the end marker
  unsigned short length;       // value bytes as the header says
  const unsigned char* value;  // first value byte; not to be read when available is 0
  size_t available;            // value bytes that lie inside the walked bytes

  uint64_t valueOffset() const { return offset + kMifHeaderSize; }
  bool complete() const { return available >= length; }
};

// The records of raw bytes, in order:
//
//   for (const MifRecord& record : MifRecords(bytes, size)) ...
//
// A record whose length runs past the bytes is still shown, as the last one; it
// is not complete().  The walk ends at the end marker, and where no whole header
// is left.
class MifRecords {
 public:
  // An input iterator: it gives records by value, since it holds the only one.
  class iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = MifRecord;
    using difference_type = std::ptrdiff_t;
    using pointer = const MifRecord*;
    using reference = MifRecord;

    iterator() = default;
    reference operator*() const { return record_; }
    pointer operator->() const { return &record_; }
    iterator& operator++() {
      record_.offset = record_.valueOffset() + record_.length;
      if (record_.length > behind_) {
        atEnd_ = true;
      } else {
        look(record_.value + record_.length, behind_ - record_.length);
      }
      return *this;
    }
    iterator operator++(int) {
      const iterator before = *this;
      ++*this;
      return before;
    }
    bool operator==(const iterator& other) const {
      return atEnd_ == other.atEnd_ && (atEnd_ || record_.offset == other.record_.offset);
    }
    bool operator!=(const iterator& other) const { return !(*this == other); }

    // Where the iterator stands, also once it has reached the end: at the end
    // marker, at the first byte of a remnant, or past the size when the last
    // record ran past it.
    uint64_t offset() const { return record_.offset; }

   private:
    friend class MifRecords;
    iterator(const unsigned char* bytes, uint64_t size) { look(bytes, size); }

    // Takes what stands at the next header, which has left bytes of the walk.
    void look(const unsigned char* header, uint64_t left) {
      atEnd_ = left < kMifHeaderSize || mifLoad<unsigned short>(header) == kMifEndMarker;
      if (atEnd_) {
        return;
      }
      behind_ = left - kMifHeaderSize;
      record_.oid = mifLoad<unsigned short>(header);
      record_.length = mifLoad<unsigned short>(header + 2);
      record_.value = header + kMifHeaderSize;
      record_.available = behind_ < record_.length ? static_cast<unsigned short>(behind_) : record_.length;
    }

    bool atEnd_ = true;
    uint64_t behind_ = 0;  // bytes of the walk from the value on
    MifRecord record_ = {};
  };

  // The bytes may be null when size is 0.
  MifRecords(const unsigned char* bytes, uint64_t size) : bytes_(bytes), size_(size) {}

  iterator begin() const { return iterator(bytes_, size_); }
  iterator end() const { return {}; }

  // The record of an OID that is the occurrence-th, counted from 1; nothing when
  // there are fewer, and for occurrence 0.
  std::optional<MifRecord> find(unsigned short oid, uint32_t occurrence) const {
    if (size_ < kMifHeaderSize) {
      return std::nullopt;
    }
    // A leaner loop than an iterator's, which fills a whole record at each step.
    const uint64_t lastHeader = size_ - kMifHeaderSize;
    uint64_t count = 0;
    uint64_t at = 0;
    while (at <= lastHeader) {
      const unsigned char* header = bytes_ + at;
      const auto recordOid = mifLoad<unsigned short>(header);
      const auto length = mifLoad<unsigned short>(header + 2);
      if (recordOid == kMifEndMarker) {
        break;
      }
      if (recordOid == oid && ++count == occurrence) {
        const uint64_t behind = lastHeader - at;
        return MifRecord{at, oid, length, header + kMifHeaderSize,
                         behind < length ? static_cast<size_t>(behind) : length};
      }
      at += kMifHeaderSize + uint64_t{length};
    }
    return std::nullopt;
  }

  // Where the walk ends, as iterator::offset() tells it.
  uint64_t endOffset() const {
    iterator at = begin();
    while (at != end()) {
      ++at;
    }
    return at.offset();
  }

 private:
  const unsigned char* bytes_;
  uint64_t size_;
};

#endif
