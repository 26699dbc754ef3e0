#include <fmt/format.h>

#include "tools/common/ByteOrder.h"
#include "tools/common/Text.h"
#include "tools/lang/Catalogue.h"
#include "tools/lang/Languages.h"

namespace lang {

namespace {

// In quotes, one line a line of the text, as gettext writes it.
std::string quoted(std::string_view text) {
  constexpr std::string_view plain = "\"\\\a\b\f\n\r\t\v", letters = "\"\\abfnrtv";
  std::string lines = text.find('\n') < text.size() - 1 ? "\"\"\n\"" : "\"";
  for (size_t i = 0; i < text.size(); ++i) {
    const size_t at = plain.find(text[i]);
    if (at != plain.npos) {
      lines += {'\\', letters[at]};
    } else if (const auto code = static_cast<unsigned char>(text[i]); code < 0x20 || code == 0x7F) {
      lines += fmt::format("\\{:03o}", code);
    } else {
      lines += text[i];
    }
    if (text[i] == '\n' && i + 1 < text.size()) {
      lines += "\"\n\"";
    }
  }
  return lines + '"';
}

std::string utf8(const std::string& latin1) {
  return tool::utf8FromLatin1(latin1);
}

// gettext refuses pairs of which only one begins, or ends, with a newline.
bool isPair(const std::string& source, const std::string& translation) {
  return fitsCatalogue(source) && (source.front() == '\n') == (translation.front() == '\n') &&
         (source.back() == '\n') == (translation.back() == '\n');
}

void writeHeader(const Texts& texts, tool::Output& output) {
  output.print("msgid \"\"\nmsgstr \"\"\n");
  if (const Language* language = languageOf(texts.language); language != nullptr) {
    output.print("\"Language: {}\\n\"\n", language->codes.substr(0, language->codes.find(' ')));
  }
  output.print(
      "\"MIME-Version: 1.0\\n\"\n\"Content-Type: text/plain; charset=UTF-8\\n\"\n"
      "\"Content-Transfer-Encoding: 8bit\\n\"\n");
  // A catalogue is for every host, unless it comes from a file that this one cannot read.
  if (texts.order.value_or(std::endian::native) != std::endian::native) {
    output.print("\"X-Byte-Order: {}\\n\"\n", tool::nameOf(*texts.order));
  }
}

}  // namespace

void writeCatalogue(const Texts& texts, const Texts* reference, tool::Output& output) {
  static const std::map<Place, Text> none;
  const auto& sources = reference != nullptr ? reference->texts : none;
  writeHeader(texts, output);
  const auto write = [&](const Place& place, const std::string& source, const std::string& text) {
    if (!fitsCatalogue(source) || !fitsCatalogue(text)) {
      return;
    }
    output.print("\nmsgctxt \"{}\"\nmsgid {}\nmsgstr {}\n", nameOf(place), quoted(utf8(source)),
                 quoted(utf8(text)));
  };
  auto source = sources.begin();
  for (const auto& [place, text] : texts.texts) {
    for (; source != sources.end() && source->first < place; ++source) {
      write(source->first, source->second.bytes, "");
    }
    const bool hasSource = source != sources.end() && source->first == place;
    const bool isUsable = hasSource && isPair(source->second.bytes, text.bytes);
    write(place, isUsable ? source->second.bytes : text.bytes, text.bytes);
    source = hasSource ? std::next(source) : source;
  }
  for (; source != sources.end(); ++source) {
    write(source->first, source->second.bytes, "");
  }
}

}  // namespace lang
