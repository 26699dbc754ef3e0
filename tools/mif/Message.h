// A buffer of records in either byte order, whole or damaged.
#ifndef ZOT_TOOLS_MIF_MESSAGE_H
#define ZOT_TOOLS_MIF_MESSAGE_H

#include <bit>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/common/Report.h"
#include "tools/mif/Kinds.h"

namespace mif {

// No message is longer; memory stays bounded whatever a file holds.
inline constexpr uint64_t kMostBytes = 16 << 20;

// One piece of a buffer; all of them, in order, are its bytes.
struct Part {
  enum class Type {
    Record,
    End,  // the end marker
    Rest  // bytes behind the end marker, or too few for a header
  };

  Type type = Type::Record;
  uint64_t offset = 0;
  unsigned short oid = 0;  // of a record
  uint32_t missing = 0;    // value bytes that its length promises and the buffer lacks
  Bytes value = {};        // of a record, or the rest; bytes of the message

  size_t length() const { return value.size() + missing; }
};

class Message {
 public:
  // order: of the numbers in headers and values.
  Message(std::vector<unsigned char> bytes, std::endian order);

  std::endian order() const { return order_; }
  size_t size() const { return bytes_.size(); }

  // Calls visit for every part, and shows progress.
  void eachPart(const std::function<void(const Part&)>& visit) const;

  // The record of an OID that is the occurrence-th, from 1.
  std::optional<Part> find(unsigned short oid, uint32_t occurrence) const;

  // Where its records break off; nothing for whole records, with an end marker or without.
  std::optional<tool::Finding> damage() const;

  // As damage(), and also a missing end marker.
  std::optional<tool::Finding> fault() const;

 private:
  std::vector<unsigned char> bytes_;  // headers in host order, values as they came
  std::endian order_;
};

}  // namespace mif

#endif
