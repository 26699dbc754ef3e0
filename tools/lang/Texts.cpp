#include "tools/lang/Texts.h"

#include <fmt/format.h>

#include <charconv>

#include "tools/common/Files.h"
#include "tools/common/Text.h"
#include "tools/lang/Catalogue.h"
#include "tools/lang/TextFile.h"

namespace lang {

namespace {

bool looksLikeCatalogue(const std::string& file, std::string_view bytes) {
  return file.ends_with(".po") || isTemplate(file) ||
         (bytes.find('\0') == bytes.npos && bytes.find("msgid") != bytes.npos);
}

}  // namespace

std::string nameOf(const Place& place) {
  return fmt::format("{}/{}/{}", place.form, place.element, place.subElement);
}

std::optional<Place> placeFrom(std::string_view name) {
  Place place;
  const char* at = name.data();
  const char* const end = at + name.size();
  for (uint32_t* number : {&place.form, &place.element, &place.subElement}) {
    if (number != &place.form && (at == end || *at++ != '/')) {
      return std::nullopt;
    }
    const auto [behind, error] = std::from_chars(at, end, *number);
    if (error != std::errc()) {
      return std::nullopt;
    }
    at = behind;
  }
  return at == end ? std::optional(place) : std::nullopt;
}

std::string shownText(std::string_view latin1) {
  std::string text;
  for (; !latin1.empty(); latin1.remove_prefix(1)) {
    text += latin1[0] == '\n'   ? "\\n"
            : latin1[0] == '\t' ? "\\t"
                                : tool::visible(tool::utf8FromLatin1(latin1.substr(0, 1)));
  }
  return text;
}

tool::Finding findingAt(const Texts& texts, uint64_t at, std::string text) {
  if (!texts.isCatalogue) {
    return {std::move(text), at};
  }
  const auto line = at != 0 ? std::optional(at) : std::nullopt;
  return {std::move(text), line, tool::Finding::Unit::Line};
}

Texts readTexts(const std::string& file, std::optional<std::endian> order) {
  const std::string bytes = tool::readWhole(file, kLargestFile);
  return looksLikeCatalogue(file, bytes) ? readCatalogue(file, bytes) : readTextFile(file, bytes, order);
}

}  // namespace lang
