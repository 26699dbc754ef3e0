#include <fmt/format.h>

#include <algorithm>

#include "tools/common/Files.h"
#include "tools/common/JsonList.h"
#include "tools/common/Report.h"
#include "tools/lang/Commands.h"
#include "tools/lang/Languages.h"
#include "tools/lang/Texts.h"

namespace lang {

namespace {

struct Counts {
  uint64_t texts = 0;  // of the reference; the next three add up to it
  uint64_t translated = 0;
  uint64_t missing = 0;
  uint64_t same = 0;
  uint64_t extra = 0;  // beside the reference
};

Counts count(const Texts& texts, const Texts& reference) {
  Counts counts;
  for (const auto& [place, source] : reference.texts) {
    const auto text = texts.texts.find(place);
    const bool isThere = text != texts.texts.end(), isSame = isThere && text->second.bytes == source.bytes;
    ++counts.texts;
    ++(!isThere ? counts.missing : isSame ? counts.same : counts.translated);
  }
  counts.extra = texts.texts.size() - counts.translated - counts.same;
  return counts;
}

std::string languageName(const Texts& texts) {
  const Language* language = languageOf(texts.language);
  return language != nullptr ? std::string(language->name) : "?";
}

tool::Json elementOf(const Texts& texts, const Counts& counts) {
  return {{"file", tool::shownName(texts.file)},
          {"language", languageName(texts)},
          {"texts", counts.texts},
          {"translated", counts.translated},
          {"missing", counts.missing},
          {"same", counts.same},
          {"extra", counts.extra}};
}

}  // namespace

tool::Exit stats(const StatsOptions& options, tool::Output& output, tool::Output& errors) {
  const Texts reference = readTexts(options.against);
  std::vector<std::pair<std::string, std::vector<tool::Finding>>> damage = {
      {reference.file, reference.damage}};
  tool::JsonList list(output);
  if (output.terminal() && !options.json) {
    output.print("{}\n",
                 output.paint(tool::Colour::Bold, "texts translated missing  same extra  language   file"));
  }
  for (const std::string& file : options.files) {
    const Texts texts = readTexts(file);
    const Counts counts = count(texts, reference);
    if (options.json) {
      list.add(elementOf(texts, counts));
    } else {
      output.print("{:>5} {:>10} {:>7} {:>5} {:>5}  {:<10} {}\n", counts.texts, counts.translated,
                   counts.missing, counts.same, counts.extra, languageName(texts), tool::shownName(file));
    }
    damage.emplace_back(file, texts.damage);
  }
  if (options.json) {
    list.finish();
  }
  output.flush();

  tool::Report report(errors, false);
  for (const auto& [file, findings] : damage) {
    report.add(file, findings);
  }
  return report.finish();
}

}  // namespace lang
