// What zot-mif reads: a buffer that is written down and built again is the same, text that
// builds a buffer says the same as that buffer, and everything else is refused with a place.
#include <map>
#include <sstream>

#include "FileInMemory.h"
#include "tests/tools/mif/WrittenForms.h"
#include "tools/common/ByteOrder.h"
#include "tools/common/JsonList.h"
#include "tools/common/Text.h"

namespace {

using zot_test::Buffer;
using zot_test::inputOf;
using zot_test::written;

// A buffer without fault is records up to an end marker that is its last two bytes.
void expectFaultIsTold(const mif::Message& message) {
  bool whole = false;
  message.eachPart([&](const mif::Part& part) { whole = part.type == mif::Part::Type::End; });
  require(whole != message.fault().has_value(), "whether a buffer has a fault");
  require(!message.damage() || message.fault(), "damage is a fault");
}

// The other order is proposed when it makes a buffer whole, and when it is not this host's.
void expectOrderIsTold(const Buffer& bytes) {
  const auto other = std::endian::native == std::endian::little ? std::endian::big : std::endian::little;
  const auto damage = mif::Message(bytes, std::endian::native).damage();
  const bool isTold = damage && damage->text.find("it is whole") != std::string::npos;
  require(!damage || isTold == !mif::Message(bytes, other).damage(), "whether another order is told");
}

void expectEachIsFound(const mif::Message& message) {
  std::map<uint16_t, uint32_t> counts;
  message.eachPart([&](const mif::Part& part) {
    if (part.type == mif::Part::Type::Record) {
      const auto found = message.find(part.oid, ++counts[part.oid]);
      require(found && found->offset == part.offset && found->value.data() == part.value.data(), "a record");
    }
  });
  for (const auto& [oid, count] : counts) {
    require(!message.find(oid, count + 1), "one record too many");
  }
}

void expectSameAgain(const Buffer& bytes, std::endian order, const mif::View& view) {
  expectFaultIsTold({bytes, order});
  expectOrderIsTold(bytes);
  expectEachIsFound({bytes, order});
  for (const bool json : {false, true}) {
    std::string text = written({bytes, order}, view, json);
    tool::Input input = inputOf(text);
    require(bytesWritten(input, std::nullopt, view.fields) == bytes, "a buffer that is built again");
  }
}

// Nothing for a text that is refused, which must be with its name and a place.
template <typename Read>
auto unlessRefused(const std::string& name, Read read) -> std::optional<decltype(read())> {
  try {
    return read();
  } catch (const tool::FailureAt& failure) {
    const std::string what = failure.what();
    require(what.starts_with(name + ':') && std::atoi(what.c_str() + name.size() + 1) > 0,
            "the place of a refusal");
    return std::nullopt;
  }
}

// A list that builds a buffer has objects of strings and numbers, nothing else.
void expectPlainList(const std::string& text) {
  for (const tool::Json& element : tool::Json::parse(text)) {
    require(element.is_object(), "an element");
    for (const auto& [name, value] : element.items()) {
      const bool isRead = name == "oid" || name == "kind" || name == "value" || name == "missing";
      const bool isPlain = isRead ? value.is_string() || value.is_number_unsigned() : !value.is_structured();
      const bool isRecord =
          !element.contains("order") && !element.contains("end") && !element.contains("rest");
      require(isPlain || !(isRecord || value.is_structured()), "a member");
    }
  }
}

void expectFieldsKept(const std::string& text, const mif::Fields& fields) {
  std::istringstream lines(text);
  std::string_view rest = text;
  size_t longest = 0;
  for (std::string line; std::getline(lines, line);) {
    require(tool::takeLine(rest) == line, "a line");
    std::istringstream words(line);
    std::string oid, name, kind;
    if (words >> oid >> name >> kind && oid[0] != '#') {
      const auto number = mif::oidFrom(oid, {});
      const mif::Field* const field = number ? fields.find(*number) : nullptr;
      require(field != nullptr && field->name == name && nameOf(field->kind) == kind, "a field");
      require(fields.oidOf(name) == number && mif::oidFrom(name, fields) == number, "a field by its name");
      longest = std::max(longest, name.size());
    }
  }
  require(fields.longestName() == longest && fields.empty() == (longest == 0), "the names of fields");
}

// The text in a file.
const std::string& pathOf(const std::string& text) {
  static const FileInMemory file;
  file.hold(text);
  return file.path();
}

std::string shown(const mif::Message& message) {
  return written(message, {{}, true}, false);
}

// A file of hexadecimal digits, pair by pair.
std::optional<Buffer> fromHex(const std::string& text, std::endian order) {
  const std::string& path = pathOf(text);
  const auto message = unlessRefused(path, [&] {
    return mif::readMessage(path, {.from = "hex", .order = std::string(tool::nameOf(order)), .fields = {}});
  });
  std::string digits = text;
  std::erase_if(digits,
                [](char c) { return std::string_view(" \t\r\n\v\f").find(c) != std::string_view::npos; });
  const bool isSound =
      digits.size() % 2 == 0 &&
      std::all_of(digits.begin(), digits.end(), [](unsigned char c) { return std::isxdigit(c) != 0; });
  require(message.has_value() == isSound, "whether digits are refused");
  if (!message) {
    return std::nullopt;
  }
  Buffer bytes;
  for (size_t at = 0; at < digits.size(); at += 2) {
    bytes.push_back(static_cast<unsigned char>(std::stoul(digits.substr(at, 2), nullptr, 16)));
  }
  require(shown(*message) == shown({bytes, order}), "the bytes of digits");
  return bytes;
}

void expectSameFromAFile(const std::string& bytes) {
  const mif::Message message = mif::readMessage(pathOf(bytes), {});
  require(shown(message) == shown({{bytes.begin(), bytes.end()}, std::endian::native}),
          "the bytes of a file");
}

}  // namespace

// The first byte: bit 0 the order, bit 1 passwords shown, bits 2 and up what the rest is.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) {
    return 0;
  }
  require(mif::readFields("").empty(), "fields without a file");
  static const mif::Fields fields = zot_test::allKinds();
  const std::endian order = (data[0] & 1) != 0 ? std::endian::big : std::endian::little;
  const mif::View view{fields, (data[0] & 2) != 0};
  std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
  switch (data[0] >> 2 & 3) {
    case 0:
      expectSameFromAFile(text);
      expectSameAgain({data + 1, data + size}, order, view);
      break;
    case 1: {
      tool::Input input = inputOf(text);
      if (const auto bytes = unlessRefused("input", [&] { return bytesWritten(input, order, fields); })) {
        if (text[0] == '[') {
          expectPlainList(text);
        }
        expectSameAgain(*bytes, order, view);
      }
      break;
    }
    case 2: {
      const std::string& path = pathOf(text);
      if (const auto read = unlessRefused(path, [&] { return mif::readFields(path); })) {
        expectFieldsKept(text, *read);
        expectSameAgain({data + 1, data + size}, order, {*read, view.reveal});
      }
      break;
    }
    default:
      if (const auto bytes = fromHex(text, order)) {
        expectSameAgain(*bytes, order, view);
      }
  }
  return 0;
}
