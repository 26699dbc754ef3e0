#include "tools/mif/Fields.h"

#include <fmt/format.h>

#include <algorithm>
#include <sstream>

#include "mif/MifRecord.h"
#include "tools/common/Failure.h"
#include "tools/common/Text.h"

namespace mif {

namespace {

// What is wrong with a field; empty when nothing is.
std::string fault(const std::string& oid, const Field& field, const std::string& kind, const Fields& before) {
  if (!tool::numberFrom(oid, kMifEndMarker - 1)) {
    return fmt::format("'{}' is no OID of 0 to {}", tool::visible(oid), kMifEndMarker - 1);
  }
  if (tool::numberFrom(field.name) || tool::visible(field.name) != field.name) {
    return fmt::format("'{}' cannot be a name", tool::visible(field.name));
  }
  if (!kindNamed(kind)) {
    return fmt::format("'{}' is no kind of value, which are {}", tool::visible(kind), allKindNames());
  }
  if (oidFrom(oid, before) && before.find(*oidFrom(oid, before)) != nullptr) {
    return fmt::format("OID {} has a name already", oid);
  }
  return before.oidOf(field.name) ? fmt::format("the name {} stands for another OID", field.name) : "";
}

}  // namespace

Fields::Fields(tool::Input& file) {
  for (std::string line; file.line(line, 1000);) {
    std::istringstream words(line);
    std::string oid, kind, more;
    Field field;
    words >> oid >> field.name >> kind >> more;
    if (oid.empty() || oid[0] == '#') {
      continue;
    }
    const bool three = !kind.empty() && more.empty();
    const std::string wrong = three ? fault(oid, field, kind, *this) : "the line is not \"OID name kind\"";
    if (!wrong.empty()) {
      throw tool::FailureAt(fmt::format("{}:{}: {}", file.name(), file.lines(), wrong));
    }
    field.kind = *kindNamed(kind);
    fields_.emplace(*oidFrom(oid, *this), field);
  }
}

const Field* Fields::find(unsigned short oid) const {
  const auto found = fields_.find(oid);
  return found != fields_.end() ? &found->second : nullptr;
}

std::optional<unsigned short> Fields::oidOf(std::string_view name) const {
  const auto found = std::find_if(fields_.begin(), fields_.end(),
                                  [&](const auto& entry) { return entry.second.name == name; });
  return found != fields_.end() ? std::optional(found->first) : std::nullopt;
}

size_t Fields::longestName() const {
  size_t longest = 0;
  for (const auto& [oid, field] : fields_) {
    longest = std::max(longest, field.name.size());
  }
  return longest;
}

std::optional<unsigned short> oidFrom(std::string_view text, const Fields& fields) {
  const auto number = tool::numberFrom(text, kMifEndMarker - 1);
  return number ? std::optional(static_cast<unsigned short>(*number)) : fields.oidOf(text);
}

}  // namespace mif
