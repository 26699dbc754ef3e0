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
  std::string output;  // '#' where nothing was written
  std::string produced() const { return output.substr(0, result); }
};

Decoded decoded(const std::string& text, bool blocksOf20, unsigned short capacity) {
  std::vector<unsigned char> input(text.c_str(), text.c_str() + text.size() + 1);
  std::vector<unsigned char> output(capacity, '#');
  const auto decode = blocksOf20 ? DeCryptPasw_20 : DeCryptPasw;
  const unsigned short result = decode(output.data(), input.data(), capacity);
  return {result, {output.begin(), output.end()}};
}

TEST(Scrambling, HasTheseBytesInBothPairs) {
  const struct {
    std::string text;
    std::string stored;
  } cases[] = {
      {"", ""},
      {"secret", ";\xFE*\xFE/\xFE>\xFE*\xFE#"},
      {"WO", "\xFE? "},  // results 0x1F and 0x20
      // Bytes of 0x80 and above are never escaped, not even where they become 0xFE.
      {"\xC8\xEF\xB6", "\x80\x80\xDA"},
      {"\xB6\x91", "\xFE\xFE"},
      {"se" + std::string(65536, 'x'), ";\xFE*"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.stored, scrambled(c.text, false));
    EXPECT_EQ(c.stored, scrambled(c.text, true));
  }
}

// Two blocks of 20 and two characters more; the pairs differ at positions 19 and 39.
TEST(Scrambling, PassesTheLastPlaceOfEachBlockOf20) {
  const std::string upTo18 = "\xFE).--.6a\xFE\x33$$%a\xFE\x35 //$32";
  EXPECT_EQ(upTo18 + "o" + upTo18 + "o\xFE).", scrambled(std::string(42, 'A'), false));
  EXPECT_EQ(upTo18 + "A" + upTo18 + "A\xFE).", scrambled(std::string(42, 'A'), true));
  EXPECT_EQ(upTo18 + "'", scrambled(std::string(19, 'A') + "\t", false));
  EXPECT_EQ(upTo18 + "\xFE)", scrambled(std::string(19, 'A') + "\t", true));
}

TEST(Scrambling, ReadsEveryByteBackButTheOneThatBecomesTheMarker) {
  for (const size_t position : {0u, 18u, 19u, 20u, 21u, 38u, 39u, 40u}) {
    for (const bool blocksOf20 : {false, true}) {
      int lost = 0;
      for (int value = 1; value < 256; ++value) {
        const std::string text = std::string(position, 'A') + static_cast<char>(value) + "xy";
        const std::string stored = scrambled(text, blocksOf20);
        for (const char byte : stored) {
          ASSERT_LE(0x20, static_cast<unsigned char>(byte)) << position << " " << value;
        }
        lost += decoded(stored, blocksOf20, 99).produced() != text;
      }
      EXPECT_EQ(1, lost) << position << " " << blocksOf20;
    }
  }
}

TEST(Unscrambling, TakesAnyBytes) {
  const struct {
    std::string stored;
    std::string plain;
  } cases[] = {
      {"\xFE\xFE", "\xB6"},           // marker escape: 0xFE
      {";\xFE", "s\x8F"},             // cut off by the terminator: 0xE0
      {"\xFE\x01", "\xA9"},           // below the offset: 0xE1
      {"\xFE.", "F"},                 // "\xB6\x41" scrambled: the bare marker takes a byte along
      {"\xFE\x20\x6F", "H\0"s},       // a zero byte counts like any other
      {"\xFF\x80\x01", "\xB7\xEFm"},  // no escape of any kind
      {";" + std::string(65536, 'x'), "s"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.plain, decoded(c.stored, false, 30).produced());
    EXPECT_EQ(c.plain, decoded(c.stored, true, 30).produced());
  }
}

TEST(Unscrambling, WantsOneByteMoreThanItProduces) {
  const std::string stored = ";\xFE*\xFE/";  // "sec"
  for (const bool blocksOf20 : {false, true}) {
    for (const size_t capacity : {0u, 1u, 3u}) {
      const Decoded full = decoded(stored, blocksOf20, static_cast<unsigned short>(capacity));
      EXPECT_EQ(0, full.result);
      EXPECT_EQ(";\x0A\x0F"s.substr(0, capacity), full.output) << "escapes resolved, nothing more";
    }
  }
  std::string longest;  // 65,535 bytes, the last of which is a marker
  for (int i = 0; i < 32767; ++i) {
    longest += "\xFE ";
  }
  for (const bool blocksOf20 : {false, true}) {
    EXPECT_EQ(32768, decoded(longest + "\xFE", blocksOf20, 40000).result) << "the walk ends there";
  }
  EXPECT_EQ("sec#", decoded(stored, false, 4).output);
  EXPECT_EQ("sec\0#"s, decoded(stored, true, 5).output);
  EXPECT_EQ("\0"s, decoded("", true, 1).output);
}

}  // namespace
