// Byte orders by the names that options and files give them.
#ifndef ZOT_TOOLS_BYTE_ORDER_H
#define ZOT_TOOLS_BYTE_ORDER_H

#include <bit>
#include <optional>
#include <string_view>

namespace tool {

inline std::string_view nameOf(std::endian order) {
  return order == std::endian::big ? "big" : "little";
}

// Nothing for any other name, the empty one included.
inline std::optional<std::endian> orderNamed(std::string_view name) {
  for (const std::endian order : {std::endian::little, std::endian::big}) {
    if (name == nameOf(order)) {
      return order;
    }
  }
  return std::nullopt;
}

}  // namespace tool

#endif
