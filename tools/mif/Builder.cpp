#include "tools/mif/Builder.h"

#include <fmt/format.h>

#include "mif/MifRecord.h"
#include "tools/common/ByteOrder.h"
#include "tools/common/Failure.h"
#include "tools/common/Text.h"
#include "tools/mif/Message.h"
#include "tools/mif/Reading.h"

namespace mif {

namespace {

constexpr size_t kMostValue = 0xFFFF;

std::vector<unsigned char> hexBytes(std::string_view hex) {
  auto bytes = bytesFromHex(hex);
  if (!bytes) {
    throw tool::Failure(fmt::format("'{}' are no hexadecimal pairs", tool::visible(hex.substr(0, 40))));
  }
  return *bytes;
}

std::vector<unsigned char> valueOf(const WrittenRecord& record, std::endian order) {
  const auto kind = kindNamed(record.kind);
  if (!kind) {
    throw tool::Failure(fmt::format("'{}' is no kind of value, which are {}",
                                    tool::visible(record.kind.substr(0, 40)), allKindNames()));
  }
  if (record.stored) {
    return hexBytes(*record.stored);
  }
  if (*kind == Kind::Password && record.text == kStars) {
    throw tool::Failure("the password is hidden and its stored bytes are not given");
  }
  auto value = valueOf(*kind, record.text, order);
  if (!value) {
    const bool text = *kind == Kind::Text || *kind == Kind::Password;
    throw tool::Failure(fmt::format("'{}' is no {}{}", tool::visible(record.text.substr(0, 40)), record.kind,
                                    text ? " of ISO 8859-1 characters" : ""));
  }
  return *value;
}

}  // namespace

void Builder::order(std::string_view name) {
  const auto order = tool::orderNamed(name);
  if (!order) {
    throw tool::Failure(fmt::format("the order is 'little' or 'big', not '{}'", tool::visible(name)));
  }
  if (!bytes_.empty()) {
    throw tool::Failure("the order comes before the first record");
  }
  order_ = fixed_.value_or(*order);
}

void Builder::record(const WrittenRecord& record) {
  const auto oid = oidFrom(record.oid, fields_);
  if (!oid) {
    throw tool::Failure(fmt::format("'{}' is neither an OID of 0 to {} nor a name in the fields",
                                    tool::visible(record.oid.substr(0, 40)), kMifEndMarker - 1));
  }
  const std::vector<unsigned char> value = valueOf(record, order_);
  const auto missing = tool::numberFrom(record.missing, kMostValue);
  if (!missing) {
    throw tool::Failure(
        fmt::format("'{}' is no count of missing bytes", tool::visible(record.missing.substr(0, 40))));
  }
  if (value.size() + *missing > kMostValue) {
    throw tool::Failure(
        fmt::format("a value has {} bytes at most, this has {}", kMostValue, value.size() + *missing));
  }
  if (state_ == State::Ended || state_ == State::Rest) {
    throw tool::Failure("a record behind the end of the records");
  }
  advance(*missing != 0 ? State::Cut : State::Records);
  addNumber(*oid);
  addNumber(value.size() + *missing);
  addBytes(value);
}

void Builder::end() {
  if (state_ == State::Ended || state_ == State::Rest) {
    throw tool::Failure("a second end of the records");
  }
  advance(State::Ended);
  addNumber(kMifEndMarker);
}

void Builder::rest(std::string_view hex) {
  const std::vector<unsigned char> bytes = hexBytes(hex);
  advance(State::Rest);
  addBytes(bytes);
}

void Builder::advance(State state) {
  if (state_ == State::Cut) {
    throw tool::Failure("nothing can follow a record with missing bytes");
  }
  state_ = state;
}

void Builder::addNumber(size_t number) {
  unsigned char bytes[2];
  mifStore(bytes,
           static_cast<unsigned short>(order_ == std::endian::native ? number : number << 8 | number >> 8));
  addBytes(bytes);
}

void Builder::addBytes(Bytes bytes) {
  if (bytes.size() > kMostBytes - bytes_.size()) {
    throw tool::Failure(fmt::format("a message has {} bytes at most", kMostBytes));
  }
  bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
}

}  // namespace mif
