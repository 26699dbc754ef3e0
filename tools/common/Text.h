// Texts between files, people and JSON: ISO 8859-1 in files, UTF-8 everywhere else.
#ifndef ZOT_TOOLS_TEXT_H
#define ZOT_TOOLS_TEXT_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tool {

// Every byte is a character.
std::string utf8FromLatin1(std::string_view bytes);

// Nothing when the text is no UTF-8 or has a character that ISO 8859-1 lacks; *at,
// where given, is then the offset of that character in bytes.
std::optional<std::string> latin1FromUtf8(std::string_view text, size_t* at = nullptr);

// UTF-8 that a terminal and a JSON reader take: control characters, and bytes that
// are no UTF-8, show as \xNN.  For file names and other texts of unknown origin.
std::string visible(std::string_view text);

// A whole number, decimal or hexadecimal with 0x, up to largest; nothing else before or behind it.
std::optional<uint64_t> numberFrom(std::string_view text, uint64_t largest = UINT64_MAX);

// Takes the first line off the text and returns it without its end.
std::string_view takeLine(std::string_view& text);

// "1 record", "2 records".
std::string counted(uint64_t count, std::string_view noun);

}  // namespace tool

#endif
