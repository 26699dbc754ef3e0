#include "mifobject/PasswordScrambling.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using std::string_literals::operator""s;

// The blocks have exactly the promised size, so that the address sanitizer
// guards their ends.
std::string scrambled(const std::string& text, bool blocksOf20) {
  std::vector<char> input(text.c_str(), text.c_str() + text.size() + 1);
  std::vector<char> output(2 * text.size() + 1, '#');
  if (blocksOf20) {
    EncryptPasw_20(input.data(), output.data());
  } else {
    EXPECT_EQ(text.size() % 65536, EncryptPasw(input.data(), output.data()));
  }
  return output.data();
}

struct Decoded {
  unsigned short result;
  std::string bytes;  // the whole output, '#' where nothing was written
};

Decoded decoded(const std::string& text, bool blocksOf20, unsigned short capacity) {
  std::vector<unsigned char> input(text.c_str(), text.c_str() + text.size() + 1);
  std::vector<unsigned char> output(capacity, '#');
  const auto decode = blocksOf20 ? DeCryptPasw_20 : DeCryptPasw;
  const unsigned short result = decode(output.data(), input.data(), capacity);
  return {result, {output.begin(), output.end()}};
}

std::string readBack(const std::string& text, bool blocksOf20) {
  const Decoded whole = decoded(scrambled(text, blocksOf20), blocksOf20, 600);
  return whole.bytes.substr(0, whole.result);
}

TEST(Scrambling, HasTheseBytesInBothPairs) {
  const struct {
    std::string text;
    std::string stored;
  } cases[] = {
      {"", ""},
      {"secret", ";\xFE*\xFE/\xFE>\xFE*\xFE#"},
      // Results 0x1F and 0x20 are the two sides of the escape.
      {"Wz", "\xFE?\xFE\x35"},
      {"hO", "  "},
      // Bytes of 0x80 and above are never escaped, not even where they become 0xFE.
      {"\xC8\xEF\xB6", "\x80\x80\xDA"},
      {"\xB6\x91", "\xFE\xFE"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(c.stored, scrambled(c.text, false));
    EXPECT_EQ(c.stored, scrambled(c.text, true));
  }
}

// Two blocks of 20 and two characters more of the letter A; the pairs differ at
// positions 19 and 39 alone.
TEST(Scrambling, PassesTheLastPlaceOfEachBlockOf20) {
  const std::string text(42, 'A');
  const std::string upTo18 = "\xFE).--.6a\xFE\x33$$%a\xFE\x35 //$32";
  const std::string from20 = "\xFE).";
  EXPECT_EQ(upTo18 + "o" + upTo18 + "o" + from20, scrambled(text, false));
  EXPECT_EQ(upTo18 + "A" + upTo18 + "A" + from20, scrambled(text, true));
  EXPECT_EQ(text, readBack(text, false));
  EXPECT_EQ(text, readBack(text, true));

  const std::string tabAt19 = std::string(19, 'A') + "\tA";
  EXPECT_EQ(upTo18 + "'\xFE)", scrambled(tabAt19, false));
  EXPECT_EQ(upTo18 + "\xFE)\xFE)", scrambled(tabAt19, true));
}

TEST(Scrambling, ReadsEveryByteBackButTheOneThatBecomesTheMarker) {
  for (const size_t position : {0u, 18u, 19u, 20u, 39u, 40u}) {
    for (const bool blocksOf20 : {false, true}) {
      int lost = 0;
      for (int value = 1; value < 256; ++value) {
        const std::string text = std::string(position, 'A') + static_cast<char>(value) + "xy";
        const std::string stored = scrambled(text, blocksOf20);
        for (const char byte : stored) {
          ASSERT_LE(0x20, static_cast<unsigned char>(byte)) << position << " " << value;
        }
        lost += readBack(text, blocksOf20) != text;
      }
      EXPECT_EQ(1, lost) << position << " " << blocksOf20;
    }
  }
  // Bare 0xFE swallows the next byte: 'A' there becomes 0x2E, less 0x20 is 0x0E,
  // and 0x0E under the first key character is 'F'.
  EXPECT_EQ("F", readBack("\xB6\x41", false));
  EXPECT_EQ("F", readBack("\xB6\x41", true));
}

TEST(Unscrambling, TakesAnyBytes) {
  const struct {
    std::string scrambled;
    std::string plain;
  } cases[] = {
      {"\xFE\xFE", "\xB6"},           // marker escape: 0xFE
      {";\xFE", "s\x8F"},             // cut off by the terminator: 0xE0
      {"\xFE\x01", "\xA9"},           // below the offset: 0xE1
      {"\xFE\x20\x6F", "H\0"s},       // a zero byte counts like any other
      {"\xFF\x80\x01", "\xB7\xEFm"},  // no escape of any kind
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.plain);
    for (const bool blocksOf20 : {false, true}) {
      const Decoded whole = decoded(c.scrambled, blocksOf20, 30);
      EXPECT_EQ(c.plain.size(), whole.result);
      EXPECT_EQ(c.plain, whole.bytes.substr(0, whole.result));
    }
  }
}

TEST(Unscrambling, WantsOneByteMoreThanItProduces) {
  const std::string stored = ";\xFE*\xFE/";  // "sec"
  for (const unsigned short capacity : std::vector<unsigned short>{0, 1, 3}) {
    SCOPED_TRACE(capacity);
    const std::string unfinished = ";\x0A\x0F"s.substr(0, capacity);
    for (const bool blocksOf20 : {false, true}) {
      const Decoded full = decoded(stored, blocksOf20, capacity);
      EXPECT_EQ(0, full.result);
      EXPECT_EQ(unfinished, full.bytes);
    }
  }
  EXPECT_EQ("sec#", decoded(stored, false, 4).bytes);
  EXPECT_EQ("sec\0"s, decoded(stored, true, 4).bytes);
  EXPECT_EQ("#", decoded("", false, 1).bytes);
  EXPECT_EQ("\0"s, decoded("", true, 1).bytes);
}

TEST(Scrambling, CountsModulo65536) {
  EXPECT_EQ(";\xFE*", scrambled("se" + std::string(65536, 'x'), true).substr(0, 3));
  EXPECT_EQ(3u, scrambled("se" + std::string(65536, 'x'), true).size());
  EXPECT_EQ("", scrambled(std::string(65536, 'x'), false));
  EXPECT_EQ(65535u, scrambled(std::string(65535, '\x80'), false).size());

  const Decoded wrapped = decoded(";" + std::string(65536, 'x'), true, 8);
  EXPECT_EQ(1, wrapped.result);
  EXPECT_EQ("s\0######"s, wrapped.bytes);
}

}  // namespace
