#include <fmt/format.h>

#include <algorithm>

#include "tools/common/Files.h"
#include "tools/common/Text.h"
#include "tools/mif/Commands.h"
#include "tools/mif/Reading.h"
#include "tools/mif/Written.h"

namespace mif {

namespace {

using tool::Colour;

constexpr size_t kHexLine = 16;       // bytes a line of the hex view
constexpr size_t kLongestValue = 72;  // characters of a value in the table

// Cuts between characters, never within one of several bytes or within an escape.
std::string shortened(const std::string& text, size_t bytes) {
  if (text.size() <= kLongestValue) {
    return text;
  }
  size_t end = kLongestValue;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
    --end;
  }
  const size_t escape = text.substr(0, end).rfind('\\');
  end = escape != text.npos && end - escape < 4 ? escape : end;
  return fmt::format("{}... ({})", text.substr(0, end), tool::counted(bytes, "byte"));
}

// The table of a dump: one line a part, and its bytes below it where wanted.
class Table {
 public:
  Table(const Message& message, const View& view, bool hex, tool::Output& output)
      : message_(message), view_(view), hex_(hex), output_(output), nameWidth_(view.fields.longestName()) {}

  void print() {
    if (output_.terminal()) {
      const std::string heading = fmt::format("{:>7} {:>5} {:>6}  {}{:<10}  value", "offset", "OID", "length",
                                              nameColumn("name"), "kind");
      output_.print("{}\n", output_.paint(Colour::Bold, heading));
    }
    message_.eachPart([this](const Part& part) { printPart(part); });
  }

 private:
  std::string nameColumn(std::string_view name) const {
    return nameWidth_ == 0 ? "" : fmt::format("{:<{}}  ", name, std::max<size_t>(nameWidth_, 4));
  }

  void printPart(const Part& part) {
    switch (part.type) {
      case Part::Type::Record:
        printRecord(part);
        break;
      case Part::Type::End:
        printLine(part, "65535", "-", "-", "end", "-");
        break;
      case Part::Type::Rest:
        printLine(
            part, "-", std::to_string(part.value.size()), "-", "rest",
            shortened(hexText(part.value.first(std::min<size_t>(part.value.size(), 32))), part.value.size()));
        printHex(part, false);
        break;
    }
  }

  void printRecord(const Part& part) {
    const Reading reading = readingOf(part, message_.order(), view_);
    std::string value = shortened(quotedText(reading), part.value.size());
    if (!reading.wrong.empty()) {
      value += "  " + output_.paint(Colour::Red, fmt::format("({})", reading.wrong));
    }
    printLine(part, std::to_string(part.oid), std::to_string(part.length()),
              reading.name.empty() ? "-" : reading.name, nameOf(reading.kind), value);
    printHex(part, reading.kind == Kind::Password && !view_.reveal);
  }

  void printLine(const Part& part, std::string_view oid, std::string_view length, std::string_view name,
                 std::string_view kind, std::string_view value) {
    output_.print("{} {:>5} {:>6}  {}{}  {}\n", output_.paint(Colour::Dim, fmt::format("{:>7}", part.offset)),
                  oid, length, output_.paint(Colour::Cyan, nameColumn(name)), fmt::format("{:<10}", kind),
                  value);
  }

  void printHex(const Part& part, bool hidden) {
    for (size_t at = 0; hex_ && at < part.value.size(); at += kHexLine) {
      const Bytes bytes = part.value.subspan(at, std::min(kHexLine, part.value.size() - at));
      const std::string line = hidden ? hiddenLine(bytes) : shownLine(bytes);
      const uint64_t offset = part.offset + (part.type == Part::Type::Record ? 4 : 0) + at;
      output_.print("{}\n", output_.paint(Colour::Dim, fmt::format("{:>15}  {}", offset, line)));
    }
  }

  static std::string shownLine(Bytes bytes) {
    std::string characters;
    for (const unsigned char byte : bytes) {
      characters += byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '.';
    }
    return fmt::format("{:<47}  {}", hexText(bytes), characters);
  }

  static std::string hiddenLine(Bytes bytes) {
    std::string stars;
    for (size_t byte = 0; byte < bytes.size(); ++byte) {
      stars += byte == 0 ? "**" : " **";
    }
    return stars;
  }

  const Message& message_;
  const View& view_;
  bool hex_;
  tool::Output& output_;
  size_t nameWidth_;
};

}  // namespace

tool::Exit dump(const DumpOptions& options, tool::Output& output, tool::Output& errors) {
  if (options.hex + options.text + options.json > 1) {
    throw tool::Failure("--hex, --text and --json exclude each other");
  }
  const Fields fields = readFields(options.input.fields);
  const Message message = readMessage(options.file, options.input);
  const View view{fields, options.reveal};
  if (options.json) {
    writeJson(message, view, output);
  } else if (options.text) {
    writeText(message, view, [&](const std::string& line) { output.write(line + "\n"); });
  } else {
    Table(message, view, options.hex, output).print();
  }
  const auto damage = message.damage();
  if (!damage) {
    return tool::Exit::Done;
  }
  output.flush();
  errors.write(messageOf(errors, options.file, *damage));
  return tool::Exit::Findings;
}

}  // namespace mif
