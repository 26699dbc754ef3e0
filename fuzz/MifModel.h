// Records and the record buffer, said in the simplest way, for the fuzz targets to
// hold the library against.
#ifndef FUZZ_MIF_MODEL_H
#define FUZZ_MIF_MODEL_H

#include <optional>
#include <vector>

#include "Script.h"

struct ModelRecord {
  uint16_t oid;
  uint16_t length;
  size_t offset;  // of the value
};

struct ModelWalk {
  explicit ModelWalk(std::string_view bytes) {
    while (end + 4 <= bytes.size() && hostNumber<uint16_t>(bytes.substr(end, 2)) != 0xFFFF) {
      records.push_back({hostNumber<uint16_t>(bytes.substr(end, 2)),
                         hostNumber<uint16_t>(bytes.substr(end + 2, 2)), end + 4});
      end += size_t{4} + records.back().length;
    }
  }

  std::optional<ModelRecord> find(uint16_t oid, uint32_t occurrence) const {
    for (const ModelRecord& record : records) {
      if (record.oid == oid && --occurrence == 0) {
        return record;
      }
    }
    return std::nullopt;
  }

  std::vector<ModelRecord> records;
  size_t end = 0;
};

// Bytes from an offset on; those outside are 0.
inline std::string peek(std::string_view bytes, size_t offset, size_t count) {
  std::string seen(bytes.substr(std::min(offset, bytes.size()), count));
  seen.resize(count);
  return seen;
}

// A Mif32.  A null pointer for a value is std::nullopt.
struct MifModel {
  using Value = std::optional<std::string>;

  std::string used() const { return block.substr(0, len); }
  std::optional<ModelRecord> find(uint16_t oid, uint32_t occurrence) const {
    return ModelWalk(used()).find(oid, occurrence);
  }

  bool hasRoom(uint64_t n) const { return len + n <= allocLen && (exists || n == 0); }

  bool checkSize(uint64_t n) {
    const uint64_t grown = len + n + 1000;
    if (external || hasRoom(n) || grown > UINT32_MAX) {
      return hasRoom(n);
    }
    own(peek(block, 0, static_cast<size_t>(grown)), len);
    return true;
  }

  void own(const std::string& bytes, uint32_t inUse) {
    block = bytes;
    exists = true;
    external = false;
    len = inUse;
    allocLen = static_cast<uint32_t>(bytes.size());
  }

  bool setExternal(const std::string& bytes, uint32_t inUse) {
    own(bytes, inUse);
    return external = true;
  }

  bool alloc(uint16_t size) {
    if (external) {
      return false;
    }
    own(std::string(size, '\0'), 0);
    return true;
  }

  void clear() {
    if (external) {
      *this = {};
      return;
    }
    len = 0;
    std::fill(block.begin(), block.end(), '\0');
  }

  void setData(const Value& data) {
    *this = {};
    if (data && !data->empty()) {
      own(*data, static_cast<uint32_t>(data->size()));
    }
  }

  // Writes as far as the block reaches.
  void put(size_t offset, std::string_view bytes) {
    const size_t left = block.size() - std::min(offset, block.size());
    block.replace(std::min(offset, block.size()), std::min(bytes.size(), left), bytes.substr(0, left));
  }

  bool append(std::string_view bytes) {
    if (!checkSize(bytes.size())) {
      return false;
    }
    put(len, bytes);
    len += static_cast<uint32_t>(bytes.size());
    return true;
  }

  bool add(uint16_t oid, const Value& value, uint16_t length) {
    if (!value && length != 0) {
      return false;
    }
    const std::string bytes = value.value_or("").substr(0, length);
    if (oid != 0xFFFF) {
      return append(hostBytes(oid) + hostBytes(length) + bytes);
    }
    const uint32_t count = 2u + length;
    if (!checkSize(count)) {
      return false;
    }
    put(len, "\xFF\xFF");
    put(size_t{len} + 4, bytes);
    len += count;
    return true;
  }

  bool addInt64(uint16_t oid, uint64_t value) {
    const std::string bytes = image64(value);
    return add(oid, bytes, static_cast<uint16_t>(bytes.size()));
  }

  static std::string image64(uint64_t value) { return hostBytes(value).substr(0, value >> 32 != 0 ? 8 : 4); }

  bool addEndKz() {
    const std::string bytes = used();
    const size_t end = ModelWalk(bytes).end;
    if (end + 4 <= bytes.size()) {
      return false;
    }
    return peek(bytes, end, 2) == "\xFF\xFF" || add(0xFFFF, "", 0);
  }

  bool delEndKz() {
    const std::string bytes = used();
    if (len != bytes.size() || len < 2 || !bytes.ends_with("\xFF\xFF") || ModelWalk(bytes).end != len - 2) {
      return false;
    }
    len -= 2;
    return true;
  }

  template <typename Add>
  bool appendBeforeEndKz(Add addRecord) {
    const bool hadMarker = delEndKz();
    addRecord();
    if (hadMarker) {
      addEndKz();
    }
    return false;
  }

  bool updBin(uint16_t oid, const Value& value, uint16_t length, uint32_t occurrence) {
    if (!value || occurrence == 0) {
      return false;
    }
    const auto found = find(oid, occurrence);
    if (!found) {
      return appendBeforeEndKz([&] { add(oid, value, length); });
    }
    const int64_t total = int64_t{len} - found->length + length;
    const int64_t newAlloc = external ? int64_t{allocLen} : total + 10;
    if (total < 0 || total > newAlloc || newAlloc > UINT32_MAX) {
      return false;
    }
    const std::string bytes = used();
    const size_t oldEnd = std::min(found->offset + found->length, bytes.size());
    const std::string image = bytes.substr(0, found->offset - 2) + hostBytes(length) +
                              value->substr(0, length) + bytes.substr(oldEnd);
    if (external) {
      put(0, peek(image, 0, static_cast<size_t>(total)));
      len = static_cast<uint32_t>(total);
    } else {
      own(peek(image, 0, static_cast<size_t>(newAlloc)), static_cast<uint32_t>(total));
    }
    return true;
  }

  bool updInt(uint16_t oid, uint32_t value, uint32_t occurrence) {
    const auto found = find(oid, occurrence);
    if (occurrence == 0 || !found) {
      return occurrence != 0 && appendBeforeEndKz([&] { add(oid, hostBytes(value), sizeof value); });
    }
    put(found->offset, hostBytes(value));
    return true;
  }

  bool updInt64(uint16_t oid, uint64_t value, uint32_t occurrence) {
    const auto found = find(oid, occurrence);
    const std::string bytes = image64(value);
    if (occurrence == 0 || !found) {
      return occurrence != 0 && appendBeforeEndKz([&] { addInt64(oid, value); });
    }
    if (found->length != bytes.size()) {
      return updBin(oid, bytes, static_cast<uint16_t>(bytes.size()), 1);
    }
    put(found->offset, bytes);
    return true;
  }

  bool delOid(uint16_t oid) {
    const auto found = find(oid, 1);
    if (!found || found->offset + found->length > len) {
      return false;
    }
    const size_t behind = found->offset + found->length;
    put(found->offset - 4, peek(block, behind, std::min<size_t>(len - behind, block.size())));
    len -= 4u + found->length;
    return true;
  }

  std::string block;
  bool exists = false;  // there is one, if only of 0 bytes
  bool external = false;
  uint32_t len = 0;
  uint32_t allocLen = 0;
};

#endif
