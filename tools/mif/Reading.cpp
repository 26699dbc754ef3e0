#include "tools/mif/Reading.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/common/Text.h"

namespace mif {

namespace {

bool makesTheSame(const Reading& reading, Bytes value, std::endian order) {
  const auto made = valueOf(reading.kind, reading.text, order);
  return made && std::equal(made->begin(), made->end(), value.begin(), value.end());
}

// The code point that \xNN at the start of text stands for.
std::optional<char> escapedByte(std::string_view text) {
  if (text.size() < 4 || text.substr(0, 2) != "\\x") {
    return std::nullopt;
  }
  const auto bytes = bytesFromHex(text.substr(2, 2));
  return bytes && bytes->size() == 1 ? std::optional(static_cast<char>(bytes->front())) : std::nullopt;
}

}  // namespace

Reading readingOf(const Part& record, std::endian order, const View& view) {
  const Field* const field = view.fields.find(record.oid);
  Reading reading{.name = field != nullptr ? std::string_view(field->name) : std::string_view(),
                  .kind = field != nullptr ? field->kind : suggestedKind(record.value, order),
                  .text = {},
                  .exact = true,
                  .wrong = {}};
  std::optional<std::string> text;
  if (record.missing != 0) {
    reading.wrong = fmt::format("{} missing", tool::counted(record.missing, "byte"));
  } else {
    text = textOf(reading.kind, record.value, order);
  }
  if (!text) {
    if (reading.wrong.empty()) {
      reading.wrong = fmt::format("{} has {}", nameOf(reading.kind), lengthsOf(reading.kind));
    }
    // A cut password still tells most of itself.
    const bool hidden = reading.kind == Kind::Password && !view.reveal;
    reading.kind = hidden ? Kind::Password : Kind::Hex;
    text = hidden ? std::string(kStars) : hexText(record.value);
    reading.exact = !hidden;
    reading.text = *text;
    return reading;
  }
  reading.text = *text;
  reading.exact = makesTheSame(reading, record.value, order);
  if (reading.kind == Kind::Password && !view.reveal) {
    reading.text = kStars;
    reading.exact = false;
  }
  return reading;
}

std::string quotedText(const Reading& reading) {
  const bool hidden = reading.kind == Kind::Password && !reading.exact && reading.text == kStars;
  const bool text = reading.kind == Kind::Text || reading.kind == Kind::Password;
  return text && !hidden ? quoted(reading.text) : reading.text;
}

std::string quoted(std::string_view text) {
  std::string shown = "\"";
  for (size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    const auto next = at + 1 < text.size() ? static_cast<unsigned char>(text[at + 1]) : 0u;
    if (byte == '"' || byte == '\\') {
      shown += '\\';
    }
    if (byte < 0x20 || byte == 0x7F) {
      shown += fmt::format("\\x{:02x}", byte);
    } else if (byte == 0xC2 && next < 0xA0) {  // U+0080 to U+009F move a terminal's cursor
      shown += fmt::format("\\x{:02x}", next);
      ++at;
    } else {
      shown += text[at];
    }
  }
  return shown + '"';
}

std::optional<std::string> unquoted(std::string_view& text) {
  std::string plain;
  for (size_t at = 1; at < text.size();) {
    const char character = text[at];
    const char next = at + 1 < text.size() ? text[at + 1] : '\0';
    const auto escaped = escapedByte(text.substr(at));
    if (character == '"') {
      text.remove_prefix(at + 1);
      return plain;
    }
    if (character == '\\' && !escaped && next != '"' && next != '\\') {
      return std::nullopt;
    }
    if (escaped) {
      plain += tool::utf8FromLatin1(std::string_view(&*escaped, 1));
      at += 4;
    } else {
      plain += character == '\\' ? next : character;
      at += character == '\\' ? 2 : 1;
    }
  }
  return std::nullopt;
}

}  // namespace mif
