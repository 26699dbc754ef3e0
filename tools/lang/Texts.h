// The texts of one language, from a language file or from a catalogue.
#ifndef ZOT_TOOLS_LANG_TEXTS_H
#define ZOT_TOOLS_LANG_TEXTS_H

#include <bit>
#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tools/common/Report.h"

namespace lang {

// Where a text stands.  Written "form/element/sub-element".
struct Place {
  uint32_t form = 0;
  uint32_t element = 0;
  uint32_t subElement = 0;

  auto operator<=>(const Place&) const = default;
};

std::string nameOf(const Place& place);
std::optional<Place> placeFrom(std::string_view name);

struct Text {
  std::string bytes;  // ISO 8859-1, escapes resolved
  uint64_t at = 0;    // the offset of its record, or the line of its context; 0: unknown
};

struct Texts {
  std::string file;  // as the user wrote it
  bool isCatalogue = false;
  bool isRead = true;                  // false: nothing in it could be read
  uint32_t language = 0;               // 0: unknown
  std::optional<std::endian> order;    // of a language file, or that a catalogue asks for
  std::map<Place, Text> texts;         // without the empty ones of a catalogue
  std::vector<tool::Finding> damage;   // what is wrong with the file itself
  std::vector<tool::Finding> notKept;  // what a file built of these texts would lack

  // Of a catalogue only: where each place stands, translated or not, and the places whose
  // texts are told as damage.
  std::map<Place, uint64_t> lines;
  std::set<Place> refused;
};

// A text as people read it, in UTF-8 and one line.
std::string shownText(std::string_view latin1);

// A finding about a text in a file like `texts`.
tool::Finding findingAt(const Texts& texts, uint64_t at, std::string text);

// Reads either kind: a catalogue ends in .po or .pot, or looks like one.  order: of a
// language file; without it this host's, or the other one where only that makes sense.
// Throws tool::Failure when the file cannot be read.
Texts readTexts(const std::string& file, std::optional<std::endian> order = std::nullopt);

}  // namespace lang

#endif
