// Messages and fields from files.
#include <fmt/format.h>

#include "tools/common/ByteOrder.h"
#include "tools/common/Files.h"
#include "tools/common/Text.h"
#include "tools/mif/Commands.h"

namespace mif {

namespace {

constexpr const char* kBlanks = " \t\r\n\v\f";

[[noreturn]] void refuseHex(const std::string& name, std::string_view text, size_t at,
                            const std::string& what) {
  const auto line = std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n') + 1;
  throw tool::FailureAt(fmt::format("{}:{}: {}", name, line, what));
}

std::vector<unsigned char> bytesFromHexFile(const std::string& file) {
  // Each byte may be followed by some blanks and a newline.
  const std::string text = tool::readWhole(file, 8 * kMostBytes);
  const size_t wrong = text.find_first_not_of(std::string("0123456789abcdefABCDEF") + kBlanks);
  if (wrong != text.npos) {
    refuseHex(tool::shownName(file), text, wrong,
              fmt::format("'{}' is no hexadecimal digit", tool::visible(text.substr(wrong, 1))));
  }
  auto bytes = bytesFromHex(text);
  if (!bytes) {
    refuseHex(tool::shownName(file), text, text.find_last_not_of(kBlanks),
              "half a byte: the count of digits is odd");
  }
  return *bytes;
}

std::vector<unsigned char> bytesOf(const std::string& file, const InputOptions& options) {
  if (options.from == "hex") {
    return bytesFromHexFile(file);
  }
  const std::string bytes = tool::readWhole(file, kMostBytes);
  return {bytes.begin(), bytes.end()};
}

}  // namespace

Message readMessage(const std::string& file, const InputOptions& options) {
  return {bytesOf(file, options), tool::orderNamed(options.order).value_or(std::endian::native)};
}

Fields readFields(const std::string& file) {
  if (file.empty()) {
    return {};
  }
  tool::Input input(file);
  return Fields(input);
}

}  // namespace mif
