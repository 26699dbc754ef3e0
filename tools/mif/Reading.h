// What a record says to people: its name, kind and text.
#ifndef ZOT_TOOLS_MIF_READING_H
#define ZOT_TOOLS_MIF_READING_H

#include <string>
#include <string_view>

#include "tools/mif/Fields.h"
#include "tools/mif/Message.h"

namespace mif {

// How records are read.
struct View {
  const Fields& fields;
  bool reveal = false;  // show passwords
};

struct Reading {
  std::string_view name;  // empty without a field
  Kind kind;              // the field's, or what the bytes suggest; Hex when they can't be the field's
  std::string text;       // UTF-8, as textOf() makes it; stars for a hidden password
  bool exact;             // valueOf() makes the same bytes of it again
  std::string wrong;      // why the bytes can't be the field's kind; empty when they can
};

inline constexpr std::string_view kStars = "********";

Reading readingOf(const Part& record, std::endian order, const View& view);

// The text as people and files see it: texts and passwords in quotes, with \", \\ and
// control characters as \xNN; stars and all other kinds as they are.
std::string quotedText(const Reading& reading);
std::string quoted(std::string_view text);

// What stands between the quotes at the start of text, which then begins behind them;
// nothing when they are not closed or an escape is none of the above.
std::optional<std::string> unquoted(std::string_view& text);

}  // namespace mif

#endif
