// Scrambling and unscrambling of foreign text, in blocks of exactly the size that each
// function may write, beside both ways through the key said position by position.
#include "Script.h"
#include "mifobject/PasswordScrambling.h"

namespace {

constexpr std::string_view kKey = "Hollow Reed Tanners.";

uint8_t keyAt(size_t position, bool blocksOf20) {
  const size_t place = position % kKey.size();
  return blocksOf20 && place == kKey.size() - 1 ? 0 : static_cast<uint8_t>(kKey[place]);
}

std::string scrambled(const std::string& plain, bool blocksOf20) {
  std::string stored;
  for (size_t i = 0; i < plain.size(); ++i) {
    const auto result = static_cast<uint8_t>(static_cast<uint8_t>(plain[i]) ^ keyAt(i, blocksOf20));
    stored += result < 0x20 ? std::string("\xFE") + static_cast<char>(result + 0x20)
                            : std::string(1, static_cast<char>(result));
  }
  return stored;
}

// The whole result; unscrambled tells whether a capacity held it.
std::string unscrambled(const std::string& stored, bool blocksOf20, size_t capacity) {
  std::string plain;
  for (size_t i = 0; i < stored.size() && plain.size() < capacity; ++i) {
    const bool escaped = stored[i] == '\xFE';
    const char code = i + escaped < stored.size() ? stored[i + escaped] : '\0';
    plain += escaped && code != '\xFE' ? static_cast<char>(code - 0x20) : code;
    i += escaped;
  }
  for (size_t i = 0; i < plain.size() && plain.size() < capacity; ++i) {
    plain[i] = static_cast<char>(static_cast<uint8_t>(plain[i]) ^ keyAt(i, blocksOf20));
  }
  return plain;
}

void encode(const std::string& text, bool blocksOf20) {
  const Block input(text + '\0');
  const std::string expected = scrambled(text, blocksOf20);
  const Block output(std::string(2 * text.size() + 1, '#'));
  if (blocksOf20) {
    EncryptPasw_20(input.chars(), output.chars());
  } else {
    require(EncryptPasw(input.chars(), output.chars()) == text.size(), "the result of EncryptPasw");
  }
  require(output.chars() == expected, "a scrambled text");
}

void decode(const std::string& text, bool blocksOf20, uint16_t capacity) {
  const Block input(text + '\0');
  const Block output(std::string(capacity, '#'));
  const std::string expected = unscrambled(text, blocksOf20, capacity);
  const bool full = expected.size() == capacity;
  const auto result = (blocksOf20 ? DeCryptPasw_20 : DeCryptPasw)(output.get(), input.get(), capacity);
  require(result == (full ? 0 : expected.size()), "the result of a decoder");
  const std::string behind = full ? "" : blocksOf20 ? std::string(1, '\0') : "#";
  require(output.str().starts_with(expected + behind), "an unscrambled text");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Script script(data, size);
  const uint16_t capacity = script.number<uint8_t>();
  const std::string text = script.rest().c_str();
  for (const bool blocksOf20 : {false, true}) {
    encode(text, blocksOf20);
    decode(text, blocksOf20, capacity);
    decode(scrambled(text, blocksOf20), blocksOf20, 4000);
  }
  return 0;
}
