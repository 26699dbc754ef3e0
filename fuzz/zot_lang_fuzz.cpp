// What zot-lang reads: a language file, and a catalogue as msgfmt compiled it.  A sound file
// is built again byte for byte, and a text that a catalogue or a file keeps comes back as
// it was.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tools/common/Failure.h"
#include "tools/common/Output.h"
#include "tools/lang/Catalogue.h"
#include "tools/lang/Comparison.h"
#include "tools/lang/TextFile.h"

namespace {

using lang::Texts;

void require(bool holds) {
  if (!holds) {
    std::abort();
  }
}

bool haveSameTexts(const Texts& one, const Texts& other) {
  require(one.texts.size() == other.texts.size());
  for (const auto& [place, text] : one.texts) {
    const auto found = other.texts.find(place);
    require(found != other.texts.end() && found->second.bytes == text.bytes);
  }
  return true;
}

std::string littleEndian(size_t number) {
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) {
    bytes += static_cast<char>(number >> shift & 0xFF);
  }
  return bytes;
}

// As msgfmt compiles the texts; their order does not matter to the reader.
std::string compiled(const Texts& texts) {
  std::string sources, translations, strings;
  const size_t count = texts.texts.size() + 1, stringsAt = 28 + 16 * count;
  const auto add = [&](const std::string& source, const std::string& translation) {
    for (auto [table, text] : {std::pair(&sources, &source), std::pair(&translations, &translation)}) {
      *table += littleEndian(text->size()) + littleEndian(stringsAt + strings.size());
      strings += *text + '\0';
    }
  };
  add("", "Content-Type: text/plain; charset=ISO-8859-1\n");
  for (const auto& [place, text] : texts.texts) {
    add(nameOf(place) + "\4source", text.bytes);
  }
  return littleEndian(0x950412DE) + littleEndian(0) + littleEndian(count) + littleEndian(28) +
         littleEndian(28 + 8 * count) + littleEndian(0) + littleEndian(0) + sources + translations + strings;
}

void keepWhatBothHold(Texts& texts) {
  std::erase_if(texts.texts, [](const auto& entry) {
    return entry.second.bytes.empty() || entry.second.bytes.find('\0') != std::string::npos ||
           lang::escaped(entry.second.bytes).size() > lang::kLongestText;
  });
}

void throughACatalogueAndAFile(Texts texts, std::endian order) {
  keepWhatBothHold(texts);
  Texts read;
  takeMessages(read, compiled(texts), "");
  require(read.damage.empty() && haveSameTexts(texts, read));
  const std::string file = textFile(texts.texts, order);
  const Texts again = lang::readTextFile("f", file, order);
  require(again.damage.empty() && haveSameTexts(texts, again));
  require(compare(again, again).empty() && sharedAccelerators(again, &again).empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static std::FILE* const nowhere = std::fopen("/dev/null", "w");
  static tool::Output output(nowhere, false);
  if (size == 0) {
    return 0;
  }
  const std::string input(reinterpret_cast<const char*>(data + 1), size - 1);
  const std::endian order = (data[0] & 1) != 0 ? std::endian::big : std::endian::little;
  Texts texts;
  if ((data[0] & 2) == 0) {
    texts = lang::readTextFile("f", input, order);
    if (texts.damage.empty() && texts.notKept.empty()) {
      require(textFile(texts.texts, order) == input);
    }
    writeCatalogue(texts, &texts, output);
  } else {
    try {
      takeMessages(texts, input, input);
    } catch (const tool::Failure&) {
    }
  }
  throughACatalogueAndAFile(std::move(texts), order);
  return 0;
}
