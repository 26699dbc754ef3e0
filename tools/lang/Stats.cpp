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

}  // namespace

tool::Exit stats(const StatsOptions& options, tool::Output& output, tool::Output& errors) {
  tool::Report report(errors, false);
  const Texts reference = readTexts(options.against);
  tool::JsonList list(output);
  if (output.terminal() && !options.json) {
    output.print("{}\n",
                 output.paint(tool::Colour::Bold, "texts translated missing  same extra  language   file"));
  }
  for (const std::string& file : options.files) {
    const Texts texts = readTexts(file);
    const Counts counts = count(texts, reference);
    if (options.json) {
      list.add({{"file", tool::shownName(file)},
                {"language", languageName(texts)},
                {"texts", counts.texts},
                {"translated", counts.translated},
                {"missing", counts.missing},
                {"same", counts.same},
                {"extra", counts.extra}});
    } else {
      output.print("{:>5} {:>10} {:>7} {:>5} {:>5}  {:<10} {}\n", counts.texts, counts.translated,
                   counts.missing, counts.same, counts.extra, languageName(texts), tool::shownName(file));
    }
    for (const tool::Finding& finding : texts.damage) {
      report.add(file, finding);
    }
  }
  if (options.json) {
    list.finish();
  }
  for (const tool::Finding& finding : reference.damage) {
    report.add(reference.file, finding);
  }
  return report.finish();
}

}  // namespace lang
