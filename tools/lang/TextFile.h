// Language files as bytes.
#ifndef ZOT_TOOLS_LANG_TEXT_FILE_H
#define ZOT_TOOLS_LANG_TEXT_FILE_H

#include <string>
#include <string_view>

#include "tools/lang/Texts.h"

namespace lang {

constexpr uint64_t kLargestFile = 16 << 20;

// A text as it stands in a file, with its escapes; 255 bytes of them fit.
std::string escaped(std::string_view text);
constexpr size_t kLongestText = 255;

// Reads as far as the file is sound, in bounded memory whatever it claims.
Texts readTextFile(const std::string& file, std::string_view bytes, std::optional<std::endian> order);

// The bytes of a file with these texts: forms and texts in the order of their numbers, every
// byte that is not read 0.  No text may be empty or too long.
std::string textFile(const std::map<Place, Text>& texts, std::endian order);

}  // namespace lang

#endif
