// Turns a gettext catalogue (.mo, little-endian, as msgfmt writes it) into a language
// file in the order of the host that it runs on:
//
//   write_language_file CATALOGUE LANGUAGE-FILE
//
// Each message's context is its place, "form/element/sub-element".  What a table
// would resolve as an escape is written as one.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

constexpr uint32_t kHeaderSize = 64;
constexpr uint32_t kFormSize = 96;
constexpr size_t kLongestText = 255;

// The text records of one form, ready to be written.
struct Form {
  uint32_t textCount = 0;
  std::string records;
};
using Forms = std::map<uint32_t, Form>;

uint32_t littleEndian(std::string_view bytes, size_t at) {
  uint32_t value = 0;
  for (size_t i = 4; i-- > 0;) {
    value = value << 8 | static_cast<unsigned char>(bytes.substr(at + i, 1).at(0));
  }
  return value;
}

std::string hostOrder(uint32_t value) {
  std::string bytes(sizeof value, '\0');
  std::memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

std::string shortString(const std::string& text) {
  return static_cast<char>(text.size()) + text;
}

std::string escaped(std::string_view text) {
  constexpr std::string_view plain = "\b\t\n\r\\\"'", letters = "btnr\\\"'";
  std::string result;
  for (const char c : text) {
    const size_t at = plain.find(c);
    result += at != plain.npos ? std::string{'\\', letters[at]} : std::string{c};
  }
  return result;
}

void addText(Forms* forms, const std::string& place, std::string_view text) {
  unsigned int form, element, subElement;
  if (std::sscanf(place.c_str(), "%u/%u/%u", &form, &element, &subElement) != 3) {
    throw std::runtime_error("not a place: " + place);
  }
  const std::string written = escaped(text);
  if (written.size() > kLongestText) {
    throw std::runtime_error("text too long: " + place);
  }
  const std::string record = hostOrder(0) + hostOrder(element) + hostOrder(subElement) + shortString(written);
  Form& target = (*forms)[form];
  target.textCount += 1;
  target.records += hostOrder(static_cast<uint32_t>(record.size())) + record;
}

// A catalogue has two parallel tables of (length, offset): the messages, each with
// its context and a byte 4 in front, and their translations.
Forms readCatalogue(std::string_view catalogue) {
  if (littleEndian(catalogue, 0) != 0x950412DE) {
    throw std::runtime_error("not a little-endian catalogue");
  }
  const auto textAt = [&](size_t entry) {
    return catalogue.substr(littleEndian(catalogue, entry + 4), littleEndian(catalogue, entry));
  };
  const size_t messages = littleEndian(catalogue, 12), translations = littleEndian(catalogue, 16);
  Forms forms;
  for (size_t i = 0; i < littleEndian(catalogue, 8); ++i) {
    const std::string_view message = textAt(messages + 8 * i);
    // The empty message is the catalogue's own header.
    if (!message.empty()) {
      addText(&forms, std::string(message.substr(0, message.find('\4'))), textAt(translations + 8 * i));
    }
  }
  return forms;
}

std::string languageFile(const Forms& forms) {
  const auto count = static_cast<uint32_t>(forms.size());
  std::string header = shortString("1.0");
  header.resize(12, '\0');
  header += hostOrder(count);
  header.resize(kHeaderSize, '\0');

  std::string records, texts;
  for (const auto& [number, form] : forms) {
    const auto offset = static_cast<uint32_t>(kHeaderSize + count * kFormSize + texts.size());
    records += hostOrder(form.textCount) + hostOrder(number) + hostOrder(offset);
    records.append(kFormSize - 12, '\0');
    texts += form.records;
  }
  return header + records + texts;
}

std::string readFile(const char* path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    throw std::runtime_error(std::string("cannot read ") + path);
  }
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 3) {
    std::fprintf(stderr, "usage: write_language_file CATALOGUE LANGUAGE-FILE\n");
    return 2;
  }
  std::ofstream file(argv[2], std::ios::binary);
  file << languageFile(readCatalogue(readFile(argv[1])));
  if (!file.flush()) {
    throw std::runtime_error(std::string("cannot write ") + argv[2]);
  }
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "write_language_file: %s\n", error.what());
  return 1;
}
