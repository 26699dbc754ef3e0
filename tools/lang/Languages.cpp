#include "tools/lang/Languages.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

#include "tools/common/Failure.h"
#include "tools/common/Text.h"

namespace lang {

namespace {

constexpr Language kLanguages[] = {
    {1, "German", "de", ".de", "deutsch.dat"},   {2, "English", "en", ".en", "english.dat"},
    {3, "Spanish", "es", ".es", "spain.dat"},    {4, "French", "fr", ".fr", "french.dat"},
    {5, "Italian", "it", ".it", "italian.dat"},  {6, "Swedish", "sv", ".se", "swedish.dat"},
    {7, "Danish", "da", ".dk", "danish.dat"},    {8, "Norwegian", "nb nn no", ".no", "norweg.dat"},
    {9, "Finnish", "fi", ".fi", "finnish.dat"},  {10, "Dutch", "nl", ".nl", "dutch.dat"},
    {11, "Polish", "pl", ".pl", "polnisch.dat"},
};

template <class Matches>
uint32_t numberWhere(Matches matches) {
  const auto* found = std::find_if(std::begin(kLanguages), std::end(kLanguages), matches);
  return found != std::end(kLanguages) ? found->number : 0;
}

}  // namespace

std::span<const Language> languages() {
  return kLanguages;
}

const Language* languageOf(uint32_t number) {
  return number >= 1 && number <= std::size(kLanguages) ? &kLanguages[number - 1] : nullptr;
}

uint32_t numberOfCode(std::string_view code) {
  const std::string wanted = fmt::format(" {} ", code.substr(0, code.find_first_of("_-.@")));
  return numberWhere([&](const Language& language) {
    return fmt::format(" {} ", language.codes).find(wanted) != wanted.npos;
  });
}

uint32_t languageOfFile(const std::string& file) {
  const std::filesystem::path path(file);
  const std::string extension = path.extension(), name = path.filename();
  if (extension == ".po") {
    return numberOfCode(path.stem().string());
  }
  return numberWhere([&](const Language& language) {
    return extension == language.extension || name == language.defaultFile;
  });
}

uint32_t languageFrom(const std::string& numberOrCode) {
  const auto number = tool::numberFrom(numberOrCode, std::size(kLanguages));
  const uint32_t found = number ? static_cast<uint32_t>(*number) : numberOfCode(numberOrCode);
  if (found == 0) {
    throw tool::Failure(fmt::format("'{}' is no language: numbers are 1 to {}, codes such as de, en or fr",
                                    tool::visible(numberOrCode), std::size(kLanguages)));
  }
  return found;
}

}  // namespace lang
