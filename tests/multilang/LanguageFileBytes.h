// Language files laid byte by byte, numbers in host order.
#ifndef LANGUAGE_FILE_BYTES_H
#define LANGUAGE_FILE_BYTES_H

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

inline std::string number(uint32_t value) {
  std::string bytes(4, '\0');
  std::memcpy(bytes.data(), &value, 4);
  return bytes;
}

// Bytes that nobody reads hold a value that would show.
inline std::string unread(size_t count) {
  return std::string(count, '\xEE');
}

inline std::string fileHeader(uint32_t forms, std::string version = "\0031.0") {
  version.resize(12, '\xEE');
  return version + number(forms) + unread(48);
}

inline std::string formRecord(uint32_t texts, uint32_t form, uint32_t offset) {
  return number(texts) + number(form) + number(offset) + unread(84);
}

inline std::string textRecord(uint32_t element, uint32_t sub, const std::string& text) {
  const auto length = static_cast<uint32_t>(text.size());
  return number(13 + length) + unread(4) + number(element) + number(sub) + static_cast<char>(length) + text;
}

// A whole file with one form.
inline std::string oneForm(uint32_t form, const std::vector<std::string>& textRecords) {
  std::string bytes = fileHeader(1) + formRecord(static_cast<uint32_t>(textRecords.size()), form, 160);
  for (const auto& record : textRecords) {
    bytes += record;
  }
  return bytes;
}

#endif
