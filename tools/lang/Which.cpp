#include <fmt/format.h>

#include <filesystem>
#include <vector>

#include "multilang/ZOT_MultiLanguage.h"
#include "tools/common/Files.h"
#include "tools/common/JsonList.h"
#include "tools/common/Text.h"
#include "tools/lang/Commands.h"
#include "tools/lang/Languages.h"
#include "tools/lang/Texts.h"

namespace lang {

namespace {

struct Answer {
  uint32_t language = 0;
  std::string file;
  std::vector<std::string> steps;
  bool isSound = false;
};

// The codes that ZOTMultiLang takes from the user's preferences, exactly.
uint32_t numberOfPreference(std::string_view code) {
  for (const std::string_view known : {"de", "en", "fr", "nl", "pl"}) {
    if (code == known) {
      return numberOfCode(code);
    }
  }
  return 0;
}

uint32_t chooseLanguage(const std::string& wanted, std::vector<std::string>& steps) {
  const auto number = tool::numberFrom(wanted, UINT32_MAX);
  const uint32_t chosen = number ? static_cast<uint32_t>(*number) : numberOfPreference(wanted);
  const Language* language = languageOf(chosen);
  const std::string who = number ? fmt::format("language {}", chosen)
                                 : fmt::format("the preference \"{}\"", tool::visible(wanted));
  if (language != nullptr) {
    steps.push_back(fmt::format("{} is {}", who, language->name));
  } else {
    steps.push_back(fmt::format("{} is none that the {}, so English is served", who,
                                number ? "loader has (1 to 11)" : "front end knows (de, en, fr, nl, pl)"));
  }
  return chosen;
}

// As the loader joins and chooses it.
std::string loaderPath(const std::string& directory, const std::string& base, const std::string& name,
                       uint32_t language) {
  ZOT_MultiLanguage loader;
  loader.SetLanguageFilePath(directory.c_str());
  loader.SetLanguageFileBaseName(base.c_str());
  loader.SetLanguageFileName(name.c_str());
  const char* path = loader.buildFilePathName(language);
  if (path == nullptr) {
    throw std::bad_alloc();
  }
  return path;
}

// The name looked for before English takes its place.
std::string firstName(const WhichOptions& options, const Language& language) {
  if (!options.name.empty()) {
    return options.name;
  }
  return options.base.empty() ? std::string(language.defaultFile)
                              : options.base + std::string(language.extension);
}

Answer find(const WhichOptions& options) {
  Answer answer;
  answer.language = chooseLanguage(options.language, answer.steps);
  answer.file = loaderPath(options.directory, options.base, options.name, answer.language);
  const Language* language = languageOf(answer.language);
  const std::string name = firstName(options, language != nullptr ? *language : *languageOf(kEnglish));
  if (const std::string first = loaderPath(options.directory, "", name, kEnglish); first != answer.file) {
    answer.steps.push_back(
        fmt::format("{} does not exist, so English takes its place", tool::visible(first)));
  }
  if (!std::filesystem::exists(answer.file)) {
    answer.steps.push_back(
        fmt::format("{} does not exist either way: every load fails", tool::visible(answer.file)));
    return answer;
  }
  const Texts texts = readTexts(answer.file);
  answer.isSound = texts.damage.empty() && texts.order.value_or(std::endian::native) == std::endian::native;
  answer.steps.push_back(fmt::format("{} {}", tool::visible(answer.file),
                                     answer.isSound
                                         ? fmt::format("has {}", tool::counted(texts.texts.size(), "text"))
                                         : "is damaged, and nothing takes its place: see 'zot-lang check'"));
  return answer;
}

}  // namespace

tool::Exit which(const WhichOptions& options, tool::Output& output) {
  const Answer answer = find(options);
  if (options.json) {
    output.print("{}\n", tool::jsonText({{"file", tool::visible(answer.file)},
                                         {"language", answer.language},
                                         {"sound", answer.isSound},
                                         {"steps", answer.steps}}));
  } else {
    output.print("{}\n", tool::visible(answer.file));
    for (const std::string& step : answer.steps) {
      output.print("  {}\n", step);
    }
  }
  return answer.isSound ? tool::Exit::Done : tool::Exit::Findings;
}

}  // namespace lang
