// Language files laid byte by byte, numbers in host order.  Bytes that nobody reads
// hold a value that would show.
#ifndef LANGUAGE_FILE_BYTES_H
#define LANGUAGE_FILE_BYTES_H

#include <cstdint>
#include <cstring>
#include <numeric>
#include <string>
#include <vector>

inline std::string number(uint32_t value) {
  std::string bytes(4, '\0');
  std::memcpy(bytes.data(), &value, 4);
  return bytes;
}

inline std::string fileHeader(uint32_t forms, std::string version = "\0031.0") {
  version.resize(12, '\xEE');
  return version + number(forms) + std::string(48, '\xEE');
}

inline std::string formRecord(uint32_t texts, uint32_t form, uint32_t offset) {
  return number(texts) + number(form) + number(offset) + std::string(84, '\xEE');
}

inline std::string textRecord(uint32_t element, uint32_t sub, const std::string& text) {
  const auto length = static_cast<uint32_t>(text.size());
  return number(13 + length) + "\xEE\xEE\xEE\xEE" + number(element) + number(sub) +
         static_cast<char>(length) + text;
}

// A whole file with one form.
inline std::string oneForm(uint32_t form, const std::vector<std::string>& textRecords) {
  const auto count = static_cast<uint32_t>(textRecords.size());
  const std::string before = fileHeader(1) + formRecord(count, form, 160);
  return std::accumulate(textRecords.begin(), textRecords.end(), before);
}

#endif
