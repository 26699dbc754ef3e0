// Texts from gettext catalogues, and catalogues from texts.  A message's context is its
// place, "form/element/sub-element".
#ifndef ZOT_TOOLS_LANG_CATALOGUE_H
#define ZOT_TOOLS_LANG_CATALOGUE_H

#include <string>
#include <string_view>

#include "tools/common/Output.h"
#include "tools/lang/Texts.h"

namespace lang {

// Whether it is a template (.pot): each of its texts stands for itself, in English where
// its header names no language.
bool isTemplate(const std::string& file);

// Takes what msgfmt takes; what it refuses, and what no language file can hold, is told
// as damage with the line where known.
Texts readCatalogue(const std::string& file, std::string_view bytes);

// Takes the texts of a compiled catalogue.  lines: of the catalogue, to find places in.
void takeMessages(Texts& texts, std::string_view compiled, std::string_view lines);

// Whether gettext takes the text: it parts contexts from texts with a byte 4.
inline bool fitsCatalogue(std::string_view text) {
  return text.find('\4') == text.npos;
}

// reference: null, or the texts that are being translated; what the texts lack of it is
// left to be translated.  Texts that gettext refuses are left out.
void writeCatalogue(const Texts& texts, const Texts* reference, tool::Output& output);

}  // namespace lang

#endif
