#include "tools/lang/Catalogue.h"

#include <fmt/format.h>
#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <unordered_map>

#include "tools/common/ByteOrder.h"
#include "tools/common/Failure.h"
#include "tools/common/Files.h"
#include "tools/common/Text.h"
#include "tools/lang/Gettext.h"
#include "tools/lang/Languages.h"
#include "tools/lang/MessageFile.h"
#include "tools/lang/TextFile.h"

namespace lang {

namespace {

// From a catalogue's encoding to UTF-8.
class Decoder {
 public:
  // An empty name, and the one that templates start with, stand for ASCII.
  explicit Decoder(const std::string& charset)
      : handle_(iconv_open("UTF-8", charset.empty() || charset == "CHARSET" ? "ASCII" : charset.c_str())) {}
  ~Decoder() {
    if (isKnown()) {
      iconv_close(handle_);
    }
  }
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;

  bool isKnown() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

  // Nothing when the bytes are none in this encoding.
  std::optional<std::string> operator()(std::string_view bytes) const {
    std::string decoded(4 * bytes.size() + 4, '\0');
    auto* in = const_cast<char*>(bytes.data());
    char* out = decoded.data();
    size_t inLeft = bytes.size(), outLeft = decoded.size();
    iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    if (iconv(handle_, &in, &inLeft, &out, &outLeft) == static_cast<size_t>(-1)) {
      return std::nullopt;
    }
    decoded.resize(decoded.size() - outLeft);
    return decoded;
  }

 private:
  iconv_t handle_;
};

// The lines on which a keyword's quoted text stands, as far as it is on one line.
class Lines {
 public:
  explicit Lines(std::string_view catalogue) {
    for (uint64_t number = 1; !catalogue.empty(); ++number) {
      std::string_view line = tool::takeLine(catalogue);
      line.remove_prefix(std::min(line.size(), line.find_first_not_of(" \t")));
      for (const std::string_view keyword : {"msgctxt", "msgid"}) {
        const size_t quote = line.find('"');
        if (line.starts_with(keyword) && quote != line.npos) {
          const std::string_view rest = line.substr(quote + 1);
          found_.try_emplace(std::string(keyword) + '"' + std::string(rest.substr(0, rest.find('"'))),
                             number);
        }
      }
    }
  }

  template <class Tell>
  void forEachContext(Tell tell) const {
    constexpr std::string_view before = "msgctxt\"";
    for (const auto& [key, line] : found_) {
      if (key.starts_with(before)) {
        tell(key.substr(before.size()), line);
      }
    }
  }

  // 0 when it is not there.
  uint64_t of(std::string_view keyword, std::string_view text) const {
    const auto found = found_.find(std::string(keyword) + '"' + std::string(text));
    return found != found_.end() ? found->second : 0;
  }

 private:
  std::unordered_map<std::string, uint64_t> found_;
};

// gettext's messages name standard input, which it reads the catalogue from.
void tellMessages(Texts& texts, std::string_view messages) {
  constexpr std::string_view input = "<stdin>:";
  while (!messages.empty()) {
    std::string_view line = tool::takeLine(messages);
    uint64_t number = 0;
    if (line.starts_with(input)) {
      line.remove_prefix(input.size());
      const size_t end = line.find(':');
      number = tool::numberFrom(line.substr(0, end), UINT32_MAX).value_or(0);
      line.remove_prefix(number != 0 ? end + 1 : 0);
      // Some have a column too.
      line.remove_prefix(std::min(line.size(), line.find_first_not_of("0123456789: ")));
    } else if (line.find("fatal error") != line.npos) {
      continue;  // counts the lines before
    }
    texts.damage.push_back(findingAt(texts, number, tool::visible(line)));
  }
}

// The message's text as a language file can hold it; the reason is a finding when it
// can't.
std::optional<std::string> takeText(const Message& message, const Decoder& decode, std::string* reason) {
  if (message.hasPlural) {
    *reason = "has plural forms, which have no place in a language file";
    return std::nullopt;
  }
  const auto utf8 = decode(message.translation);
  if (!utf8) {
    *reason = "is not in the encoding that the header of the catalogue names";
    return std::nullopt;
  }
  size_t at = 0;
  auto bytes = tool::latin1FromUtf8(*utf8, &at);
  if (!bytes) {
    size_t end = at + 1;
    while (end < utf8->size() && ((*utf8)[end] & 0xC0) == 0x80) {
      ++end;
    }
    *reason = fmt::format("has \"{}\", which ISO 8859-1 lacks", utf8->substr(at, end - at));
    return std::nullopt;
  }
  const size_t length = escaped(*bytes).size();
  if (length > kLongestText) {
    *reason = fmt::format("has {} bytes with escapes, {} at most", length, kLongestText);
    return std::nullopt;
  }
  return bytes;
}

void takeMessage(Texts& texts, const Message& message, const Decoder& decode, const Lines& lines) {
  if (!message.hasContext) {
    texts.damage.push_back(findingAt(
        texts, lines.of("msgid", message.source),
        fmt::format("\"{}\" has no place: a line like msgctxt \"10/1/0\" (form, element, sub-element)",
                    tool::visible(message.source))));
    return;
  }
  const uint64_t line = lines.of("msgctxt", message.context);
  const auto place = placeFrom(message.context);
  const auto tell = [&](const std::string& what) {
    texts.damage.push_back(
        findingAt(texts, line, fmt::format("{} {}", tool::visible(message.context), what)));
  };
  if (!place) {
    tell("is no place: three numbers are, form/element/sub-element");
    return;
  }
  std::string reason;
  const auto bytes = takeText(message, decode, &reason);
  if (!bytes) {
    tell(reason);
    texts.refused.insert(*place);
  } else if (!texts.texts.try_emplace(*place, Text{*bytes, line}).second) {
    tell("stands there a second time");
  }
}

}  // namespace

bool isTemplate(const std::string& file) {
  return file.ends_with(".pot");
}

void takeMessages(Texts& texts, std::string_view compiled, std::string_view lines) {
  const std::vector<Message> messages = messagesIn(compiled);
  const auto header = std::find_if(messages.begin(), messages.end(), [](const Message& message) {
    return !message.hasContext && message.source.empty();
  });
  const std::string_view fields = header != messages.end() ? header->translation : std::string_view();
  const std::string type = headerField(fields, "Content-Type");
  const size_t charsetAt = type.find("charset=");
  const std::string charset = charsetAt != type.npos ? type.substr(charsetAt + 8) : "";
  const Decoder decode(charset);
  if (!decode.isKnown()) {
    texts.damage.push_back(
        {fmt::format("nobody knows the encoding \"{}\" in its header", tool::visible(charset))});
    return;
  }
  if (const uint32_t language = numberOfCode(headerField(fields, "Language")); language != 0) {
    texts.language = language;
  }
  texts.order = tool::orderNamed(headerField(fields, "X-Byte-Order"));
  const Lines lineOf(lines);
  lineOf.forEachContext([&](std::string_view context, uint64_t line) {
    if (const auto place = placeFrom(context); place) {
      texts.lines[*place] = line;
    }
  });
  for (const Message& message : messages) {
    if (message.hasContext || !message.source.empty()) {
      takeMessage(texts, message, decode, lineOf);
    }
  }
  // Compiled messages stand in the order of their bytes.
  std::stable_sort(texts.damage.begin(), texts.damage.end(),
                   [](const auto& one, const auto& other) { return one.place < other.place; });
}

Texts readCatalogue(const std::string& file, std::string_view bytes) {
  Texts texts;
  texts.file = file;
  texts.isCatalogue = true;
  texts.language = isTemplate(file) ? kEnglish : languageOfFile(file);
  GettextRun run;
  std::string filled;
  if (isTemplate(file)) {
    run = runGettext({"msgen", "-"}, bytes);
    filled = std::move(run.output);
  }
  if (!isTemplate(file) || run.succeeded) {
    run = runGettext({"msgfmt", "--check-format", "--endianness=little", "--output-file=-", "-"},
                     isTemplate(file) ? std::string_view(filled) : bytes);
  }
  if (run.succeeded) {
    takeMessages(texts, run.output, bytes);
  } else {
    texts.isRead = false;
    tellMessages(texts, run.messages);
    if (texts.damage.empty()) {
      texts.damage.push_back({"gettext cannot read it and says nothing about it"});
    }
  }
  return texts;
}

}  // namespace lang
