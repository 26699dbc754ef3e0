// The lines of text of Written.h.
#include <fmt/format.h>

#include <sstream>

#include "tools/common/ByteOrder.h"
#include "tools/common/Failure.h"
#include "tools/common/Progress.h"
#include "tools/common/Text.h"
#include "tools/mif/Written.h"
#include "tools/mif/WrittenInternal.h"

namespace mif {

namespace {

std::string lineOf(const Part& part, std::endian order, const View& view) {
  if (part.type != Part::Type::Record) {
    return part.type == Part::Type::End ? "end" : "rest " + hexText(part.value);
  }
  const StoredReading stored = storedReadingOf(part, order, view);
  std::string line = fmt::format("{} {}", part.oid, nameOf(stored.reading.kind));
  if (const std::string text = quotedText(stored.reading); !text.empty()) {
    line += " " + text;
  }
  if (stored.bytes) {
    line += " stored " + *stored.bytes;
  }
  if (part.missing != 0) {
    line += fmt::format(" missing {}", part.missing);
  }
  return stored.reading.name.empty() ? line : fmt::format("{}  # {}", line, stored.reading.name);
}

std::string_view wordIn(std::string_view& text) {
  constexpr std::string_view kBlanks = " \t\r";
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
  text.remove_prefix(word.size());
  return word;
}

// The words up to a comment: a value where none stands in quotes, `stored`, `missing`.
void takeWords(std::string_view text, bool valueGiven, WrittenRecord& record) {
  std::string* target = valueGiven ? nullptr : &record.text;
  text = text.substr(0, text.find('#'));
  for (std::string_view word = wordIn(text); !word.empty(); word = wordIn(text)) {
    if (word == "stored") {
      target = &record.stored.emplace();
    } else if (word == "missing") {
      record.missing.clear();
      target = &record.missing;
    } else if (target == nullptr) {
      throw tool::Failure(fmt::format("'{}' behind the value", tool::visible(word.substr(0, 40))));
    } else {
      *target += target->empty() ? "" : " ";
      *target += word;
    }
  }
}

WrittenRecord recordIn(std::string_view oid, std::string_view line) {
  WrittenRecord record{.oid = std::string(oid), .kind = std::string(wordIn(line)), .text = {}};
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  const bool inQuotes = line.substr(0, 1) == "\"";
  if (inQuotes) {
    const auto text = unquoted(line);
    if (!text) {
      throw tool::Failure("the quotes are not closed, or a \\ is not followed by \", \\ or xNN");
    }
    record.text = *text;
  }
  takeWords(line, inQuotes, record);
  const auto kind = kindNamed(record.kind);
  if (!inQuotes && !record.stored && kind == Kind::Text) {
    throw tool::Failure("a text stands in double quotes");
  }
  return record;
}

void addLine(Builder& builder, std::string_view line) {
  const std::string_view first = wordIn(line);
  if (first.empty() || first[0] == '#') {
    return;
  }
  WrittenRecord words{};
  if (first == "order" || first == "end" || first == "rest") {
    takeWords(line, false, words);
  }
  if (first == "order") {
    builder.order(words.text);
  } else if (first == "rest") {
    builder.rest(words.text);
  } else if (first == "end" && !words.text.empty()) {
    throw tool::Failure(fmt::format("'{}' behind the end", tool::visible(words.text.substr(0, 40))));
  } else if (first == "end") {
    builder.end();
  } else {
    builder.record(recordIn(first, line));
  }
}

}  // namespace

StoredReading storedReadingOf(const Part& record, std::endian order, const View& view) {
  StoredReading stored{readingOf(record, order, view), std::nullopt};
  if (!stored.reading.exact && stored.reading.kind == Kind::Password) {
    stored.bytes = hexText(record.value);
  } else if (!stored.reading.exact) {
    stored.reading.kind = Kind::Hex;
    stored.reading.text = hexText(record.value);
  }
  return stored;
}

void eachShortPart(const Message& message, const std::function<void(const Part&)>& visit) {
  constexpr size_t kRestBytes = 32;  // a line
  message.eachPart([&](Part part) {
    while (part.type == Part::Type::Rest && part.value.size() > kRestBytes) {
      Part first = part;
      first.value = part.value.first(kRestBytes);
      visit(first);
      part.value = part.value.subspan(kRestBytes);
      part.offset += kRestBytes;
    }
    visit(part);
  });
}

void writeText(const Message& message, const View& view,
               const std::function<void(const std::string&)>& print) {
  print(fmt::format("order {}", tool::nameOf(message.order())));
  eachShortPart(message, [&](const Part& part) { print(lineOf(part, message.order(), view)); });
}

std::vector<unsigned char> bytesWritten(tool::Input& file, std::optional<std::endian> order,
                                        const Fields& fields) {
  Builder builder(order, fields);
  const int first = std::ungetc(std::fgetc(file.stream()), file.stream());
  if (first == '[') {
    addJson(builder, file);
    return builder.bytes();
  }
  tool::Progress progress("reading lines");
  for (std::string line; file.line(line); progress.at(file.lines())) {
    try {
      addLine(builder, line);
    } catch (const tool::Failure& failure) {
      throw tool::FailureAt(fmt::format("{}:{}: {}", file.name(), file.lines(), failure.what()));
    }
  }
  return builder.bytes();
}

}  // namespace mif
