#include "tools/lang/MessageFile.h"

#include <cstdint>

#include "tools/common/Failure.h"
#include "tools/common/Text.h"

namespace lang {

namespace {

constexpr uint32_t kMagic = 0x950412DE;

[[noreturn]] void notOurs() {
  throw tool::Failure("what msgfmt wrote cannot be read");
}

uint32_t numberAt(std::string_view bytes, size_t at) {
  if (at > bytes.size() || bytes.size() - at < 4) {
    notOurs();
  }
  uint32_t value = 0;
  for (size_t i = 4; i-- > 0;) {
    value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
  }
  return value;
}

// Tables hold pairs of a length and an offset.
std::string_view textAt(std::string_view bytes, size_t table, size_t index) {
  const uint32_t length = numberAt(bytes, table + 8 * index);
  const uint32_t offset = numberAt(bytes, table + 8 * index + 4);
  if (offset > bytes.size() || length > bytes.size() - offset) {
    notOurs();
  }
  return bytes.substr(offset, length);
}

}  // namespace

std::vector<Message> messagesIn(std::string_view bytes) {
  std::vector<Message> messages;
  if (bytes.empty()) {
    return messages;  // a catalogue without a message
  }
  if (numberAt(bytes, 0) != kMagic) {
    notOurs();
  }
  const uint32_t count = numberAt(bytes, 8), sources = numberAt(bytes, 12),
                 translations = numberAt(bytes, 16);
  for (uint32_t i = 0; i < count; ++i) {
    Message message;
    std::string_view source = textAt(bytes, sources, i);
    if (const size_t end = source.find('\4'); end != source.npos) {
      message.hasContext = true;
      message.context = source.substr(0, end);
      source.remove_prefix(end + 1);
    }
    // The singular, a zero byte, the plural.
    message.hasPlural = source.find('\0') != source.npos;
    message.source = source;
    message.translation = textAt(bytes, translations, i);
    messages.push_back(message);
  }
  return messages;
}

std::string headerField(std::string_view header, std::string_view name) {
  while (!header.empty()) {
    const std::string_view line = tool::takeLine(header);
    if (line.size() > name.size() && line.starts_with(name) && line[name.size()] == ':') {
      const size_t start = line.find_first_not_of(' ', name.size() + 1);
      return start != line.npos ? std::string(line.substr(start)) : std::string();
    }
  }
  return {};
}

}  // namespace lang
