// The languages that the loader knows, by number.
#ifndef ZOT_TOOLS_LANG_LANGUAGES_H
#define ZOT_TOOLS_LANG_LANGUAGES_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace lang {

struct Language {
  uint32_t number;
  std::string_view name;         // English
  std::string_view codes;        // of catalogues, separated by blanks; the first is written
  std::string_view extension;    // behind a base name
  std::string_view defaultFile;  // where there is no base name
};

constexpr uint32_t kEnglish = 2;

std::span<const Language> languages();

// Null for a number that none has.
const Language* languageOf(uint32_t number);

// The number for "de", "de_AT", "de-AT" and so on; 0 for one that the loader lacks.
uint32_t numberOfCode(std::string_view code);

// The number that a language file's name tells, or a catalogue's like "de.po"; 0 for none.
uint32_t languageOfFile(const std::string& file);

// A number, or a code; throws tool::Failure for others.
uint32_t languageFrom(const std::string& numberOrCode);

}  // namespace lang

#endif
