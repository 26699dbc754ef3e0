#include "tools/mif/Message.h"

#include <fmt/format.h>

#include <utility>

#include "mif/MifRecord.h"
#include "tools/common/ByteOrder.h"
#include "tools/common/Progress.h"
#include "tools/common/Text.h"

namespace mif {

namespace {

std::endian otherThan(std::endian order) {
  return order == std::endian::big ? std::endian::little : std::endian::big;
}

// Swaps OID and length of every record, so that the library's walk reads them.
void swapHeaders(std::vector<unsigned char>& bytes) {
  for (size_t at = 0; bytes.size() - at >= kMifHeaderSize;) {
    unsigned char* const header = bytes.data() + at;
    std::swap(header[0], header[1]);
    if (mifLoad<unsigned short>(header) == kMifEndMarker) {
      break;
    }
    std::swap(header[2], header[3]);
    const size_t length = mifLoad<unsigned short>(header + 2);
    if (bytes.size() - at - kMifHeaderSize < length) {
      break;
    }
    at += kMifHeaderSize + length;
  }
}

Part partOf(const MifRecord& record) {
  return {.type = Part::Type::Record,
          .offset = record.offset,
          .oid = record.oid,
          .missing = static_cast<uint32_t>(record.length - record.available),
          .value = Bytes(record.value, record.available)};
}

bool isEndMarker(Bytes bytes) {
  return bytes.size() >= kMifEndMarkerSize && mifLoad<unsigned short>(bytes.data()) == kMifEndMarker;
}

}  // namespace

Message::Message(std::vector<unsigned char> bytes, std::endian order)
    : bytes_(std::move(bytes)), order_(order) {
  if (order_ != std::endian::native) {
    swapHeaders(bytes_);
  }
}

void Message::eachPart(const std::function<void(const Part&)>& visit) const {
  tool::Progress progress("reading records", bytes_.size());
  const MifRecords records(bytes_.data(), bytes_.size());
  auto record = records.begin();
  for (; record != records.end(); ++record) {
    visit(partOf(*record));
    progress.at(record->offset);
  }
  uint64_t at = record.offset();
  if (at > bytes_.size()) {  // behind a cut record
    return;
  }
  Bytes left = Bytes(bytes_).subspan(static_cast<size_t>(at));
  if (isEndMarker(left)) {
    visit({.type = Part::Type::End, .offset = at, .value = left.first(kMifEndMarkerSize)});
    left = left.subspan(kMifEndMarkerSize);
    at += kMifEndMarkerSize;
  }
  if (!left.empty()) {
    visit({.type = Part::Type::Rest, .offset = at, .value = left});
  }
}

std::optional<Part> Message::find(unsigned short oid, uint32_t occurrence) const {
  const auto record = MifRecords(bytes_.data(), bytes_.size()).find(oid, occurrence);
  return record ? std::optional(partOf(*record)) : std::nullopt;
}

std::optional<tool::Finding> Message::damage() const {
  std::optional<tool::Finding> found;
  bool ended = false;
  eachPart([&](const Part& part) {
    ended = ended || part.type == Part::Type::End;
    const std::string bytes = tool::counted(part.value.size(), "byte");
    if (part.missing != 0) {
      found = {fmt::format("the record of OID {} is cut: its length says {}, {} left", part.oid,
                           tool::counted(part.length(), "byte"), part.value.size()),
               part.offset};
    } else if (part.type == Part::Type::Rest) {
      found = {bytes + (ended ? " behind the end marker" : " left, too few for a record's header"),
               part.offset};
    }
  });
  // The wrong byte order looks like damage.
  if (found && order_ == std::endian::native) {
    const Message other(bytes_, otherThan(order_));
    if (!other.damage()) {
      found->text += fmt::format("; with --order {} it is whole", tool::nameOf(other.order()));
    }
  }
  return found;
}

std::optional<tool::Finding> Message::fault() const {
  std::optional<tool::Finding> found = damage();
  if (!found) {
    found = {"no end marker behind the last record", bytes_.size()};
    eachPart([&](const Part& part) {
      if (part.type == Part::Type::End) {
        found.reset();
      }
    });
  }
  return found;
}

}  // namespace mif
