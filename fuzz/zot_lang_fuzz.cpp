// What zot-lang reads: a language file, a catalogue as msgfmt compiled it, what gettext says
// about one, and the marks in texts.  A sound file is built again byte for byte, a text that
// a catalogue or a file keeps comes back as it was, and every other one is told.
#include <map>
#include <set>

#include "FileInMemory.h"
#include "LanguageModel.h"
#include "tools/common/Failure.h"
#include "tools/common/Output.h"
#include "tools/common/Text.h"
#include "tools/lang/Catalogue.h"
#include "tools/lang/Comparison.h"
#include "tools/lang/Gettext.h"
#include "tools/lang/Marks.h"
#include "tools/lang/TextFile.h"

namespace {

using lang::Place, lang::Text, lang::Texts;

// What gettext answers, and what it was asked.
lang::GettextRun answer;
std::vector<std::pair<std::string, std::string>> asked;

bool haveSameTexts(const Texts& one, const Texts& other) {
  return std::equal(one.texts.begin(), one.texts.end(), other.texts.begin(), other.texts.end(),
                    [](const auto& left, const auto& right) {
                      return left.first == right.first && left.second.bytes == right.second.bytes;
                    });
}

std::string littleEndian(size_t number) {
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) {
    bytes += static_cast<char>(number >> shift & 0xFF);
  }
  return bytes;
}

using Messages = std::vector<std::pair<std::string, std::string>>;  // sources and translations

// As msgfmt compiles them; their order does not matter to the reader.
std::string compiled(Messages messages, const std::string& charset) {
  messages.insert(messages.begin(), {"", "Content-Type: text/plain; charset=" + charset + "\n"});
  std::string sources, translations, strings;
  const size_t count = messages.size(), stringsAt = 28 + 16 * count;
  for (const auto& [source, translation] : messages) {
    for (auto [table, text] : {std::pair(&sources, &source), std::pair(&translations, &translation)}) {
      *table += littleEndian(text->size()) + littleEndian(stringsAt + strings.size());
      strings += *text + '\0';
    }
  }
  return littleEndian(0x950412DE) + littleEndian(0) + littleEndian(count) + littleEndian(28) +
         littleEndian(28 + 8 * count) + littleEndian(0) + littleEndian(0) + sources + translations + strings;
}

Messages messagesOf(const Texts& texts, bool inUtf8) {
  Messages messages;
  for (const auto& [place, text] : texts.texts) {
    messages.emplace_back(nameOf(place) + "\4source", inUtf8 ? tool::utf8FromLatin1(text.bytes) : text.bytes);
  }
  return messages;
}

void keepWhatBothHold(Texts& texts) {
  std::erase_if(texts.texts, [](const auto& entry) {
    return entry.second.bytes.empty() || entry.second.bytes.find('\0') != std::string::npos ||
           lang::escaped(entry.second.bytes).size() > lang::kLongestText;
  });
}

std::string catalogueOf(const Texts& texts) {
  char* bytes = nullptr;
  size_t size = 0;
  std::FILE* const stream = open_memstream(&bytes, &size);
  tool::Output output(stream, false);
  writeCatalogue(texts, &texts, output);
  std::fclose(stream);
  const std::string catalogue(bytes, size);
  std::free(bytes);
  return catalogue;
}

// Where a place stands in a catalogue, from 1; 0 where its text was left out.
size_t lineOf(const std::string& catalogue, const Place& place) {
  const size_t at = catalogue.find("\nmsgctxt \"" + nameOf(place) + "\"\n");
  return at == catalogue.npos
             ? 0
             : 2 + static_cast<size_t>(
                       std::count(catalogue.begin(), catalogue.begin() + static_cast<ptrdiff_t>(at), '\n'));
}

void throughACatalogueAndAFile(const Texts& texts, std::endian order) {
  const std::string catalogue = catalogueOf(texts);
  for (const bool inUtf8 : {false, true}) {
    Texts read;
    takeMessages(read, compiled(messagesOf(texts, inUtf8), inUtf8 ? "UTF-8" : "ISO-8859-1"), catalogue);
    require(read.damage.empty() && haveSameTexts(texts, read), "texts from a catalogue");
    for (const auto& [place, text] : read.texts) {
      require(text.at == lineOf(catalogue, place), "the line of a text");
    }
  }
  const std::string file = textFile(texts.texts, order);
  const Texts again = lang::readTextFile("f", file, std::nullopt);
  require(again.damage.empty() && haveSameTexts(texts, again), "texts from a file");
  require(texts.texts.empty() || again.order == order, "the order of a file");
  require(compare(again, again).empty() && sharedAccelerators(again, &again).empty(), "texts compared");
  Texts fewer = again;
  if (!fewer.texts.empty()) {
    fewer.texts.erase(fewer.texts.begin());
    require(compare(fewer, again).size() == 1 && compare(again, fewer).size() == 1, "a text that one lacks");
  }
}

struct Refusal {
  const char *charset, *told;
  void (*spoil)(std::string& source, std::string& translation);
};
constexpr Refusal kRefusals[] = {
    {"ISO-8859-1", "plural forms", [](std::string& source, std::string&) { source += '\0'; }},
    {"UTF-8", "is not in the encoding", [](std::string&, std::string& text) { text += '\xE4'; }},
    {"UTF-8", "has \"\u20AC\", which", [](std::string&, std::string& text) { text += "\u20AC"; }},
    {"UTF-8", "255 at most", [](std::string&, std::string& text) { text.append(256, 'x'); }},
    {"UTF-8", "has no place", [](std::string& source, std::string&) { source[source.find('\4')] = ' '; }},
    {"UTF-8", "is no place",
     [](std::string& source, std::string&) { source.insert(source.find('\4'), "/1"); }},
    {"UTF-8", "is no place", [](std::string& source, std::string&) { source.insert(0, "-"); }},
};

// None of the messages can be kept, each for the same reason.
void expectRefused(const Texts& texts, const Refusal& refusal) {
  Messages messages = messagesOf(texts, refusal.charset == std::string("UTF-8"));
  for (auto& [source, translation] : messages) {
    refusal.spoil(source, translation);
  }
  Texts read;
  takeMessages(read, compiled(messages, refusal.charset), "");
  require(read.texts.empty() && read.damage.size() == messages.size(), "that texts are refused");
  for (const tool::Finding& finding : read.damage) {
    require(finding.text.find(refusal.told) != std::string::npos, "why a text is refused");
  }
  const Messages once = messagesOf(texts, true);
  messages = once;
  messages.insert(messages.end(), once.begin(), once.end());
  Texts twice;
  takeMessages(twice, compiled(messages, "UTF-8"), "");
  require(haveSameTexts(texts, twice) && twice.damage.size() == texts.texts.size(), "texts that stand twice");
  Texts unknown;
  takeMessages(unknown, compiled(messages, "NONE"), "");
  require(unknown.texts.empty() && unknown.damage.size() == 1, "an encoding that nobody knows");
}

// A file of this host's order holds what the client's own loader finds in it.
void expectAsLoaded(const std::string& file, const Texts& texts) {
  bool isSound = file.size() >= 64 && file.starts_with("\0031.0");
  size_t bytes = 0;
  std::set<uint32_t> forms;
  std::map<Place, std::string> wanted;
  const uint32_t count = isSound ? numberAt(file, 12) : 0;
  for (size_t i = 0, at = 64; i < count && isSound; ++i, at += 96) {
    const uint32_t number = at + 96 <= file.size() ? numberAt(file, at + 4) : 0;
    const Form form = readForm(file, number);
    bytes += form.bytes;
    isSound = at + 96 <= file.size() && forms.insert(number).second && form.whole && bytes <= file.size();
    for (const Entry& entry : form.entries) {
      wanted.try_emplace({number, entry.element, entry.sub}, resolved(entry.raw));
    }
  }
  std::erase_if(wanted, [](const auto& entry) { return entry.second.empty(); });
  require(texts.damage.empty() == isSound, "whether a file is damaged");
  require(!isSound || std::equal(wanted.begin(), wanted.end(), texts.texts.begin(), texts.texts.end(),
                                 [](const auto& left, const auto& right) {
                                   return left.first == right.first && left.second == right.second.bytes;
                                 }),
          "what a file holds");
}

// The file is built again, or what that would lose is told.
void expectKeptOrTold(const std::string& file, const Texts& texts) {
  bool canBeBuilt = true, fits = true;
  for (const auto& [place, text] : texts.texts) {
    canBeBuilt = canBeBuilt && lang::escaped(text.bytes).size() <= lang::kLongestText;
    fits = fits && text.bytes.find('\4') == std::string::npos;
  }
  const bool isKept = canBeBuilt && fits && textFile(texts.texts, *texts.order) == file;
  require(texts.notKept.empty() == isKept, "what is not kept");
}

// The same file from a disk.
void expectSameFromAPath(const std::string& bytes, std::endian order, const Texts& texts) {
  static const FileInMemory file;
  file.hold(bytes);
  answer = {};
  const Texts read = lang::readTexts(file.path(), order);
  if (read.isCatalogue) {
    require(bytes.find('\0') == bytes.npos && bytes.find("msgid") != bytes.npos,
            "a catalogue without a name");
  } else {
    require(haveSameTexts(read, texts) && read.damage.size() == texts.damage.size(), "texts from a path");
  }
}

Texts fromAFile(const std::string& file, std::endian order) {
  Texts texts = lang::readTextFile("f", file, order);
  if (order == std::endian::native) {
    expectAsLoaded(file, texts);
  }
  if (texts.damage.empty()) {
    expectKeptOrTold(file, texts);
  }
  const Texts likely = lang::readTextFile("f", file, std::nullopt);
  const Texts same = lang::readTextFile("f", file, likely.order);
  require(haveSameTexts(likely, same) && likely.damage.size() == same.damage.size(), "the likely order");
  expectSameFromAPath(file, order, texts);
  return texts;
}

// Every message but headers is kept or told.
Texts fromMessages(const std::string& bytes, const std::string& lines) {
  Texts texts;
  try {
    takeMessages(texts, bytes, lines);
  } catch (const tool::Failure&) {
    return texts;
  }
  const auto number = [&](size_t at) { return at + 4 <= bytes.size() ? numberAt(bytes, at) : 0; };
  size_t messages = 0;
  for (uint32_t i = 0; i < number(8); ++i) {
    messages += number(number(12) + size_t{8} * i) != 0 ? 1 : 0;
  }
  const bool isUnknown = texts.texts.empty() && texts.damage.size() == 1;
  require(isUnknown || texts.texts.size() + texts.damage.size() == messages,
          "that messages are kept or told");
  for (const auto& [place, text] : texts.texts) {
    require(lang::escaped(text.bytes).size() <= lang::kLongestText, "that a file can hold what is kept");
  }
  require(std::is_sorted(texts.damage.begin(), texts.damage.end(),
                         [](const auto& left, const auto& right) { return left.place < right.place; }),
          "the order of what is told");
  return texts;
}

// What gettext said about a catalogue that it refused, line by line.
void expectMessagesTold(const std::string& messages, const Texts& texts) {
  require(!texts.isRead && texts.texts.empty(), "a catalogue that gettext refuses");
  std::vector<std::optional<uint64_t>> places;
  for (size_t at = 0, end = 0; at < messages.size(); at = end + 1) {
    end = std::min(messages.size(), messages.find('\n', at));
    const std::string line = messages.substr(at, end - at);
    const bool isPlaced = line.starts_with("<stdin>:");
    const size_t digitsEnd = isPlaced ? line.find_first_not_of("0123456789", 8) : line.npos;
    const bool isNumbered =
        digitsEnd != line.npos && line[digitsEnd] == ':' && digitsEnd > 8 && digitsEnd < 18;
    const uint64_t number = isNumbered ? std::stoul(line.substr(8)) : 0;
    if (isPlaced || line.find("fatal error") == line.npos) {
      places.push_back(number != 0 ? std::optional<uint64_t>(number) : std::nullopt);
    }
  }
  require(texts.damage.size() == std::max<size_t>(places.size(), 1), "that all messages are told");
  for (size_t i = 0; i < places.size(); ++i) {
    require(!places[i] || texts.damage[i].place == places[i], "the line of a message");
  }
}

// A catalogue, and what gettext makes of it.
Texts fromACatalogue(Script script, bool isTemplate) {
  answer.succeeded = script.number<uint8_t>() % 2 != 0;
  const std::string catalogue = script.text(script.number<uint8_t>());
  answer.output = answer.messages = script.rest();
  asked.clear();
  Texts texts;
  try {
    texts = lang::readCatalogue(isTemplate ? "sv.pot" : "sv.po", catalogue);
  } catch (const tool::Failure&) {
    return texts;
  }
  const bool goesOn = isTemplate && answer.succeeded;
  require(asked.size() == (goesOn ? 2 : 1) &&
              asked[0] == std::pair(std::string(isTemplate ? "msgen" : "msgfmt"), catalogue),
          "what gettext is asked first");
  require(!goesOn || asked[1] == std::pair(std::string("msgfmt"), answer.output),
          "what gettext is asked then");
  if (answer.succeeded) {
    const Texts same = fromMessages(answer.output, catalogue);
    require(texts.isRead && haveSameTexts(texts, same) && texts.damage.size() == same.damage.size(),
            "what gettext compiled");
    return texts;
  }
  expectMessagesTold(answer.messages, texts);
  return texts;
}

// Pieces of a text, and what is to be found in them.
struct Piece {
  const char* text;
  std::vector<std::pair<uint32_t, std::string>> conversions;  // a position of 0: the next one
  const char* accelerators;
};

void expectMarksFound(Script script) {
  static const std::vector<Piece> pieces = {
      {"plain ", {}, ""},
      {"%d", {{0, "%d"}}, ""},
      {"%i,", {{0, "%d"}}, ""},
      {"%-+#0'12.3lx", {{0, "%lx"}}, ""},
      {"%*.*f", {{0, "%*"}, {0, "%*"}, {0, "%f"}}, ""},
      {"%2$s", {{2, "%s"}}, ""},
      {"%1$*3$u", {{3, "%*"}, {1, "%u"}}, ""},
      {"%12345$s", {{1234, "%s"}}, ""},
      {"100%% ", {}, ""},
      {"50% off", {}, ""},
      {"&Open", {}, "o"},
      {"Salt && pepper", {}, ""},
      {"this & that", {}, ""},
      {"&\xC4rger", {}, "\xE4"},
      {"&\xD7", {}, "\xD7"},
  };
  std::string text, accelerators;
  std::multimap<uint32_t, std::string> found;
  for (uint32_t next = 1; script.more();) {
    const Piece& piece = pieces[script.number<uint8_t>() % pieces.size()];
    text += piece.text;
    accelerators += piece.accelerators;
    for (const auto& [position, conversion] : piece.conversions) {
      found.emplace(position != 0 ? position : next++, conversion);
    }
  }
  std::vector<std::string> conversions;
  for (const auto& [position, conversion] : found) {
    conversions.push_back(conversion);
  }
  require(lang::conversionsIn(text) == conversions, "the conversions in a text");
  require(lang::acceleratorsIn(text + "&") == accelerators, "the accelerators in a text");
}

void expectOneLine(const std::string& input) {
  for (const char letter : lang::shownText(input)) {
    require(static_cast<unsigned char>(letter) >= 0x20 && letter != 0x7F, "a text in one line");
  }
  if (const auto place = lang::placeFrom(input)) {
    require(lang::placeFrom(nameOf(*place)) == place, "a place by its name");
  }
}

}  // namespace

// Stands before the one in the programs' archive.
lang::GettextRun lang::runGettext(const std::vector<std::string>& command, std::string_view input) {
  asked.emplace_back(command[0], input);
  return answer;
}

// The first byte: bit 0 the order, or a template; bits 1 to 3 what the rest is; bits 4 and up
// why texts are refused.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Script script(data, size);
  const uint32_t options = script.number<uint8_t>();
  const std::endian order = (options & 1) != 0 ? std::endian::big : std::endian::little;
  const std::string input = Script(script).rest();
  Texts texts;
  switch (options >> 1 & 7) {
    case 0:
      texts = fromAFile(input, order);
      break;
    case 1:
      texts = fromMessages(input, input);
      break;
    case 2:
      texts = fromACatalogue(script, (options & 1) != 0);
      break;
    default:
      expectMarksFound(script);
      expectOneLine(input);
      return 0;
  }
  keepWhatBothHold(texts);
  throughACatalogueAndAFile(texts, order);
  expectRefused(texts, kRefusals[(options >> 4) % std::size(kRefusals)]);
  return 0;
}
