#include <fmt/format.h>

#include "tools/common/ByteOrder.h"
#include "tools/common/JsonList.h"
#include "tools/common/Report.h"
#include "tools/common/Text.h"
#include "tools/lang/Catalogue.h"
#include "tools/lang/Commands.h"

namespace lang {

namespace {

void writeTable(const Texts& texts, tool::Output& output) {
  if (output.terminal()) {
    output.print("{}\n", output.paint(tool::Colour::Bold,
                                      fmt::format("{:>8}  {:<16} text", texts.isCatalogue ? "line" : "offset",
                                                  "place")));
  }
  for (const auto& [place, text] : texts.texts) {
    output.print("{}  {:<16} {}\n", output.paint(tool::Colour::Dim, fmt::format("{:>8}", text.at)),
                 nameOf(place), shownText(text.bytes));
  }
}

void writeJson(const Texts& texts, const Texts* reference, tool::Output& output) {
  tool::JsonList list(output);
  for (const auto& [place, text] : texts.texts) {
    tool::Json element = {{"form", place.form}, {"element", place.element}, {"subElement", place.subElement}};
    if (text.at != 0) {
      element[texts.isCatalogue ? "line" : "offset"] = text.at;
    }
    element["text"] = tool::utf8FromLatin1(text.bytes);
    if (reference != nullptr) {
      const auto source = reference->texts.find(place);
      element["reference"] = source != reference->texts.end()
                                 ? tool::Json(tool::utf8FromLatin1(source->second.bytes))
                                 : tool::Json();
    }
    list.add(element);
  }
  list.finish();
}

}  // namespace

tool::Exit dump(const DumpOptions& options, tool::Output& output, tool::Output& errors) {
  const Texts texts = readTexts(options.file, tool::orderNamed(options.order));
  Texts reference;
  if (!options.reference.empty()) {
    reference = readTexts(options.reference);
  }
  const Texts* sources = options.reference.empty() ? nullptr : &reference;
  if (options.table) {
    writeTable(texts, output);
  } else if (options.json) {
    writeJson(texts, sources, output);
  } else {
    writeCatalogue(texts, sources, output);
  }
  output.flush();

  tool::Report report(errors, false);
  report.add(texts.file, texts.damage);
  report.add(reference.file, reference.damage);
  if (!options.table && !options.json) {
    report.add(texts.file, texts.notKept);
  }
  return report.finish();
}

}  // namespace lang
