#include <fmt/format.h>

#include <filesystem>
#include <map>
#include <system_error>

#include "tools/common/ByteOrder.h"
#include "tools/common/Files.h"
#include "tools/common/Report.h"
#include "tools/common/Text.h"
#include "tools/lang/Catalogue.h"
#include "tools/lang/Commands.h"
#include "tools/lang/Languages.h"
#include "tools/lang/TextFile.h"

namespace lang {

namespace {

// Adds the texts of one catalogue to those of its language.
void merge(std::map<uint32_t, Texts>& languages, Texts texts, tool::Report& report) {
  report.add(texts.file, texts.damage);
  const auto [found, isFirst] = languages.try_emplace(texts.language, texts);
  if (isFirst) {
    return;
  }
  for (const auto& [place, text] : texts.texts) {
    if (!found->second.texts.try_emplace(place, text).second) {
      report.add(texts.file, findingAt(texts, text.at,
                                       fmt::format("{} stands in {} already", nameOf(place),
                                                   tool::shownName(found->second.file))));
    }
  }
}

std::filesystem::path pathFor(const BuildOptions& options, const Texts& texts) {
  const Language* language = languageOf(texts.language);
  if (language == nullptr) {
    throw tool::Failure(
        fmt::format("{}: nothing tells its language: add a header field like \"Language: de\", "
                    "or --language",
                    tool::shownName(texts.file)));
  }
  const std::string name = options.base.empty() ? std::string(language->defaultFile)
                                                : options.base + std::string(language->extension);
  return std::filesystem::path(options.output) / name;
}

void makeDirectory(const std::string& path) {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  if (error) {
    throw tool::Failure(fmt::format("{}: {}", tool::shownName(path), error.message()));
  }
}

}  // namespace

tool::Exit build(const BuildOptions& options, tool::Output& errors) {
  tool::Report report(errors, false);
  std::map<uint32_t, Texts> languages;
  for (const std::string& catalogue : options.catalogues) {
    Texts texts = readCatalogue(catalogue, tool::readWhole(catalogue, kLargestFile));
    if (!options.language.empty()) {
      texts.language = languageFrom(options.language);
    }
    merge(languages, std::move(texts), report);
  }
  if (report.finish() != tool::Exit::Done) {
    return tool::Exit::Findings;
  }
  const bool toOutput = options.output == "-";
  if (toOutput && languages.size() != 1) {
    throw tool::Failure("only one language goes to standard output");
  }
  std::map<std::string, std::string> files;
  for (const auto& [language, texts] : languages) {
    const auto order = tool::orderNamed(options.order);
    files[toOutput ? "-" : pathFor(options, texts).string()] =
        textFile(texts.texts, order ? *order : texts.order.value_or(std::endian::native));
  }
  if (!toOutput) {
    makeDirectory(options.output);
  }
  for (const auto& [path, bytes] : files) {
    tool::writeWhole(path, bytes);
  }
  return tool::Exit::Done;
}

}  // namespace lang
