#include "tools/common/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace tool {

namespace {

// The character at the start of the text and its bytes; bytes is 0 when there is none.
struct Character {
  uint32_t code;
  size_t bytes;
};

Character characterAt(std::string_view text) {
  const auto byte = [&](size_t index) {
    return index < text.size() ? static_cast<unsigned char>(text[index]) : 0u;
  };
  const uint32_t first = byte(0);
  if (text.empty() || first < 0x80) {
    return {first, text.empty() ? 0u : 1u};
  }
  const size_t bytes = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  uint32_t code = first & (0x7Fu >> bytes);
  for (size_t index = 1; index < bytes; ++index) {
    if ((byte(index) & 0xC0) != 0x80) {
      return {0, 0};
    }
    code = code << 6 | (byte(index) & 0x3F);
  }
  constexpr uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool sound = first >= 0xC2 && first < 0xF5 && code >= kLeast[bytes] && code <= 0x10FFFF &&
                     (code & 0x1FF800) != 0xD800;
  return {code, sound ? bytes : 0};
}

}  // namespace

std::string utf8FromLatin1(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    if (code < 0x80) {
      text += byte;
    } else {
      text += static_cast<char>(0xC0 | code >> 6);
      text += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  return text;
}

std::optional<std::string> latin1FromUtf8(std::string_view text, size_t* at) {
  std::string bytes;
  for (size_t offset = 0; offset < text.size();) {
    const Character character = characterAt(text.substr(offset));
    if (character.bytes == 0 || character.code > 0xFF) {
      if (at != nullptr) {
        *at = offset;
      }
      return std::nullopt;
    }
    bytes += static_cast<char>(character.code);
    offset += character.bytes;
  }
  return bytes;
}

std::string visible(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    const Character character = characterAt(text);
    const bool control = character.code < 0x20 || (character.code >= 0x7F && character.code < 0xA0);
    const size_t bytes = character.bytes != 0 ? character.bytes : 1;
    if (character.bytes == 0 || control) {
      for (const char byte : text.substr(0, bytes)) {
        shown += fmt::format("\\x{:02x}", static_cast<unsigned char>(byte));
      }
    } else {
      shown += text.substr(0, bytes);
    }
    text.remove_prefix(bytes);
  }
  return shown;
}

std::optional<uint64_t> numberFrom(std::string_view text, uint64_t largest) {
  const bool hexadecimal = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
  if (hexadecimal) {
    text.remove_prefix(2);
  }
  uint64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [behind, error] = std::from_chars(text.data(), end, number, hexadecimal ? 16 : 10);
  const bool whole = error == std::errc() && behind == end && number <= largest;
  return whole ? std::optional(number) : std::nullopt;
}

std::string_view takeLine(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(text.size(), line.size() + 1));
  return line;
}

std::string counted(uint64_t count, std::string_view noun) {
  return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

}  // namespace tool
