// A message put together part by part.
#ifndef ZOT_TOOLS_MIF_BUILDER_H
#define ZOT_TOOLS_MIF_BUILDER_H

#include <bit>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/mif/Fields.h"
#include "tools/mif/Kinds.h"

namespace mif {

// A record as a person or a program wrote it down.
struct WrittenRecord {
  std::string oid;  // a number, or a name in the fields
  std::string kind;
  std::string text;
  std::optional<std::string> stored = std::nullopt;  // hexadecimal; decides where it is given
  std::string missing = "0";                         // value bytes to promise and leave out
};

// Every call throws tool::Failure, without a place, for what can't be done or comes
// where the buffer would read differently: behind a cut record, or behind the end marker.
class Builder {
 public:
  // order: the one that counts whatever order() says.
  Builder(std::optional<std::endian> order, const Fields& fields) : fixed_(order), fields_(fields) {}

  void order(std::string_view name);
  void record(const WrittenRecord& record);
  void end();
  void rest(std::string_view hex);

  const std::vector<unsigned char>& bytes() const { return bytes_; }

 private:
  enum class State { Records, Cut, Ended, Rest };

  void addNumber(size_t number);
  void addBytes(Bytes bytes);
  void advance(State state);

  std::optional<std::endian> fixed_;
  const Fields& fields_;
  std::endian order_ = fixed_.value_or(std::endian::native);
  State state_ = State::Records;
  std::vector<unsigned char> bytes_;
};

}  // namespace mif

#endif
