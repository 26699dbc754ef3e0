// A catalogue as msgfmt compiled it (.mo, little-endian).
#ifndef ZOT_TOOLS_LANG_MESSAGE_FILE_H
#define ZOT_TOOLS_LANG_MESSAGE_FILE_H

#include <string>
#include <string_view>
#include <vector>

namespace lang {

// Texts in the catalogue's own encoding.
struct Message {
  std::string_view context;  // the part before a byte 4; hasContext tells whether there was one
  std::string_view source;
  std::string_view translation;
  bool hasContext = false;
  bool hasPlural = false;
};

// The messages, the catalogue's own header (source "") among them.  They point into the
// bytes.  Throws tool::Failure when the bytes are none that msgfmt writes.
std::vector<Message> messagesIn(std::string_view bytes);

// The value of a line "NAME: VALUE" in the header; empty when it is not there.
std::string headerField(std::string_view header, std::string_view name);

}  // namespace lang

#endif
