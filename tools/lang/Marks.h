// What a text has besides words: printf conversions and accelerators.
#ifndef ZOT_TOOLS_LANG_MARKS_H
#define ZOT_TOOLS_LANG_MARKS_H

#include <string>
#include <string_view>
#include <vector>

namespace lang {

// The conversions in the order of their arguments, such as "%d" or "%ls", without flags,
// width and precision; a "*" is an argument of its own.  A "%" before a blank is a percent
// sign.
std::vector<std::string> conversionsIn(std::string_view text);

// The letters behind "&", small, in ISO 8859-1.  "&&" and "& " are no accelerators.
std::string acceleratorsIn(std::string_view text);

}  // namespace lang

#endif
