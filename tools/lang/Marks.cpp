#include "tools/lang/Marks.h"

#include <cstdint>
#include <map>

namespace lang {

namespace {

// Takes the characters of this kind from the front.
std::string_view take(std::string_view& text, std::string_view kind) {
  const std::string_view taken = text.substr(0, std::min(text.size(), text.find_first_not_of(kind)));
  text.remove_prefix(taken.size());
  return taken;
}

// "2$" is 2; nothing is taken, and 0, without such a number.
uint32_t takePosition(std::string_view& text) {
  std::string_view rest = text;
  uint32_t position = 0;
  for (const char digit : take(rest, "0123456789").substr(0, 4)) {
    position = 10 * position + static_cast<uint32_t>(digit - '0');
  }
  if (!rest.starts_with('$')) {
    return 0;
  }
  text = rest.substr(1);
  return position;
}

char smallLetter(char letter) {
  const auto code = static_cast<unsigned char>(letter);
  const bool capital = (code >= 'A' && code <= 'Z') || (code >= 0xC0 && code <= 0xDE && code != 0xD7);
  return static_cast<char>(capital ? code + 0x20 : code);
}

}  // namespace

std::vector<std::string> conversionsIn(std::string_view text) {
  std::multimap<uint32_t, std::string> found;
  uint32_t next = 1;
  const auto add = [&](uint32_t position, std::string conversion) {
    found.emplace(position != 0 ? position : next++, std::move(conversion));
  };
  for (size_t at; (at = text.find('%')) != text.npos;) {
    text.remove_prefix(at + 1);
    std::string_view rest = text;
    const uint32_t position = takePosition(rest);
    take(rest, "-+#0'");
    for (const std::string_view digits : {"0123456789", ".", "0123456789"}) {
      take(rest, digits);
      if (!take(rest, "*").empty()) {
        add(takePosition(rest), "%*");
      }
    }
    const std::string size(take(rest, "hlLqjzt"));
    if (!rest.empty() && std::string_view("diouxXeEfFgGaAcspn").find(rest[0]) != rest.npos) {
      add(position, "%" + size + (rest[0] == 'i' ? 'd' : rest[0]));
      text = rest.substr(1);
    } else if (rest.starts_with('%')) {
      text = rest.substr(1);
    }
  }
  std::vector<std::string> conversions;
  for (auto& [position, conversion] : found) {
    conversions.push_back(std::move(conversion));
  }
  return conversions;
}

std::string acceleratorsIn(std::string_view text) {
  std::string letters;
  for (size_t at; (at = text.find('&')) != text.npos && at + 1 < text.size();) {
    const char letter = text[at + 1];
    if (letter != '&' && letter != ' ') {
      letters += smallLetter(letter);
    }
    text.remove_prefix(at + 2);
  }
  return letters;
}

}  // namespace lang
