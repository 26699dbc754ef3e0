#include "tools/lang/Comparison.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "tools/common/Text.h"
#include "tools/lang/Marks.h"

namespace lang {

namespace {

std::string shown(const std::string& latin1) {
  return fmt::format("\"{}\"", shownText(latin1));
}

std::string shown(const std::vector<std::string>& conversions) {
  return conversions.empty() ? "none" : fmt::format("{}", fmt::join(conversions, " "));
}

// What is wrong with a translation of this source; empty for nothing.
std::vector<std::string> faultsOf(const std::string& text, const std::string& source) {
  std::vector<std::string> faults;
  const auto conversions = conversionsIn(text), wanted = conversionsIn(source);
  if (conversions != wanted) {
    faults.push_back(fmt::format("has other conversions than the reference: {}, not {}, in {}",
                                 shown(conversions), shown(wanted), shown(text)));
  }
  const size_t marks = acceleratorsIn(text).size(), wantedMarks = acceleratorsIn(source).size();
  if (marks == 0 && wantedMarks != 0) {
    faults.push_back(
        fmt::format("has lost its accelerator: write \"&\" before a letter of {}, as the reference does "
                    "in {}",
                    shown(text), shown(source)));
  } else if (marks > 1 && wantedMarks <= 1) {
    faults.push_back(fmt::format("has {} accelerators, one at most: {}", marks, shown(text)));
  }
  return faults;
}

tool::Finding missing(const Texts& texts, const Place& place, const std::string& source) {
  const auto line = texts.lines.find(place);
  if (line == texts.lines.end()) {
    return {fmt::format("{} is missing; the reference has {}", nameOf(place), shown(source))};
  }
  return findingAt(
      texts, line->second,
      fmt::format("{} is not translated, or its translation is marked as fuzzy; the reference has {}",
                  nameOf(place), shown(source)));
}

// The accelerator's letter, if there is just one.
char acceleratorAt(const Texts& texts, const Place& place) {
  const auto text = texts.texts.find(place);
  const std::string letters = text != texts.texts.end() ? acceleratorsIn(text->second.bytes) : "";
  return letters.size() == 1 ? letters[0] : '\0';
}

}  // namespace

std::vector<tool::Finding> compare(const Texts& texts, const Texts& reference) {
  std::vector<tool::Finding> findings;
  if (!texts.isRead || !reference.isRead) {
    return findings;
  }
  for (const auto& [place, source] : reference.texts) {
    const auto text = texts.texts.find(place);
    if (text == texts.texts.end()) {
      if (!texts.refused.contains(place)) {
        findings.push_back(missing(texts, place, source.bytes));
      }
      continue;
    }
    for (const std::string& fault : faultsOf(text->second.bytes, source.bytes)) {
      findings.push_back(findingAt(texts, text->second.at, fmt::format("{} {}", nameOf(place), fault)));
    }
  }
  for (const auto& [place, text] : texts.texts) {
    if (!reference.texts.contains(place) && !reference.refused.contains(place)) {
      findings.push_back(findingAt(
          texts, text.at, fmt::format("{} is not in the reference: {}", nameOf(place), shown(text.bytes))));
    }
  }
  return findings;
}

std::vector<tool::Finding> sharedAccelerators(const Texts& texts, const Texts* reference) {
  std::vector<tool::Finding> findings;
  std::map<std::pair<uint32_t, char>, Place> first;  // of each letter in a form
  for (const auto& [place, text] : texts.texts) {
    const char letter = acceleratorAt(texts, place);
    if (letter == '\0') {
      continue;
    }
    const auto [found, isFirst] = first.try_emplace({place.form, letter}, place);
    const Place& other = found->second;
    // Texts of one element take turns on one control.
    if (isFirst || other.element == place.element) {
      continue;
    }
    const char source = reference != nullptr ? acceleratorAt(*reference, place) : '\0';
    if (source == '\0' || source != acceleratorAt(*reference, other)) {
      findings.push_back(
          findingAt(texts, text.at,
                    fmt::format("{} has the accelerator of {}, \"{}\": choose another letter of {} or of {}",
                                nameOf(place), nameOf(other), tool::utf8FromLatin1({&letter, 1}),
                                shown(text.bytes), shown(texts.texts.at(other).bytes))));
    }
  }
  return findings;
}

}  // namespace lang
