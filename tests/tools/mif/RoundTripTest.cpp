// What dump writes builds the same bytes again: generated and damaged buffers, both byte
// orders, both forms, any fields.
#include <gtest/gtest.h>

#include <random>

#include "tests/tools/mif/WrittenForms.h"

namespace {

using zot_test::allKinds;
using zot_test::Buffer;
using zot_test::inputOf;
using zot_test::written;

class Generator {
 public:
  explicit Generator(unsigned int seed) : random_(seed) {}

  unsigned int below(unsigned int limit) { return static_cast<unsigned int>(random_()) % limit; }

  void number(Buffer& buffer, unsigned int value, std::endian order) {
    const auto low = static_cast<unsigned char>(value);
    const auto high = static_cast<unsigned char>(value >> 8);
    buffer.insert(buffer.end(),
                  {order == std::endian::big ? high : low, order == std::endian::big ? low : high});
  }

  // Lengths and bytes that the kinds care for, and any others.
  Buffer value() {
    const unsigned int lengths[] = {0, 2, 4, 4, 6, 8, 8, 12, 16, below(40), below(400)};
    Buffer bytes(lengths[below(std::size(lengths))]);
    const unsigned int style = below(4);
    for (unsigned char& byte : bytes) {
      const unsigned int marks[] = {0, 0xFE, '"', '\\', 0x7F, 0x9B, 0xFF, '#'};
      byte = static_cast<unsigned char>(style == 0   ? below(0x100)
                                        : style == 1 ? 0x20 + below(0x5F)
                                        : style == 2 ? marks[below(8)]
                                                     : below(3) * below(0x100));
    }
    return bytes;
  }

  Buffer buffer(std::endian order) {
    Buffer bytes;
    for (unsigned int records = below(12); records > 0; --records) {
      const Buffer content = value();
      number(bytes, below(20), order);
      number(bytes, static_cast<unsigned int>(content.size()), order);
      bytes.insert(bytes.end(), content.begin(), content.end());
    }
    if (below(4) != 0) {
      number(bytes, 0xFFFF, order);
    }
    damage(bytes);
    return bytes;
  }

 private:
  void damage(Buffer& bytes) {
    switch (below(6)) {
      case 0:
        bytes.resize(below(static_cast<unsigned int>(bytes.size()) + 1));
        break;
      case 1:
        bytes.resize(bytes.size() + below(100), static_cast<unsigned char>(below(0x100)));
        break;
      case 2:
        for (unsigned int hits = below(4); hits > 0 && !bytes.empty(); --hits) {
          bytes[below(static_cast<unsigned int>(bytes.size()))] = static_cast<unsigned char>(below(0x100));
        }
        break;
    }
  }

  std::mt19937 random_;
};

TEST(ZotMif, BuildsTheBytesThatWereDumped) {
  const mif::Fields kinds = allKinds();
  const mif::Fields none;
  unsigned int damaged = 0;
  for (unsigned int seed = 0; seed < 10000; ++seed) {
    Generator generator(seed);
    const std::endian order = seed % 2 == 0 ? std::endian::little : std::endian::big;
    const Buffer bytes = generator.buffer(order);
    const mif::Message message(bytes, order);
    const mif::View view{seed % 3 == 0 ? none : kinds, seed % 5 == 0};
    damaged += message.damage() ? 1 : 0;
    const bool json = seed / 2 % 2 == 0;
    std::string text = written(message, view, json);
    tool::Input input = inputOf(text);
    ASSERT_EQ(bytes, bytesWritten(input, std::nullopt, none)) << "seed " << seed << "\n" << text;
  }
  EXPECT_GT(damaged, 2000u);
}

// A text form in which nothing stands as bytes that could stand as what it is.
TEST(ZotMif, ShowsEveryKindInItsOwnText) {
  std::string text =
      "order big\n0 int 16909060\n1 int64 4294967296\n2 time 1901-12-13T20:45:52Z\n3 text "
      "\"a\\\"\\\\\\x9b\\x00ä\"\n"
      "4 bytes 00 ff\n5 ip 10.1.2.3\n6 ip-range 10.0.0.1-10.0.0.254\n7 ip-net 2001:db8::1\n8 mac "
      "00.1A.2B.3C.4D.5E\n"
      "9 mac-range 00.1A.2B.3C.4D.5E-00.1A.2B.3C.4D.FF\n10 word-range 10-20\n11 byte-range 3-40\n12 password "
      "\"Nachtwache\"\n13 key 0F.1E.2D.3C.4B.5A.69.78.87.96.A5.B4.C3.D2.E1.F0\nend\n";
  const Buffer expected = {0,    0,    0,    4,    1,    2,    3,    4,                           // int
                           0,    1,    0,    8,    0,    0,    0,    1,    0,    0,    0,    0,   // int64
                           0,    2,    0,    4,    0x80, 0,    0,    0,                           // time
                           0,    3,    0,    6,    'a',  '"',  '\\', 0x9B, 0,    0xE4,            // text
                           0,    4,    0,    2,    0,    0xFF,                                    // bytes
                           0,    5,    0,    4,    3,    2,    1,    10,                          // ip
                           0,    6,    0,    8,    1,    0,    0,    10,   254,  0,    0,    10,  // ip-range
                           0,    7,    0,    16,   0x20, 1,    0xD,  0xB8, 0,    0,    0,    0,    0,
                           0,    0,    0,    0,    0,    0,    1,                       // ip-net
                           0,    8,    0,    6,    0,    0x1A, 0x2B, 0x3C, 0x4D, 0x5E,  // mac
                           0,    9,    0,    12,   0,    0x1A, 0x2B, 0x3C, 0x4D, 0x5E, 0,    0x1A, 0x2B,
                           0x3C, 0x4D, 0xFF, 0,    10,   0,    4,    0,    10,   0,    20,  // word-range
                           0,    11,   0,    2,    3,    40,                                // byte-range
                           0,    12,   0,    18,   0xFE, 0x26, 0xFE, 0x2E, 0xFE, 0x2F, 0xFE, 0x24, 0xFE,
                           0x3B, 0xFE, 0x20, 'A',  '1',  0xFE, 0x2D, 0xFE, 0x20, 0,    13,   0,    16,
                           0xF,  0x1E, 0x2D, 0x3C, 0x4B, 0x5A, 0x69, 0x78, 0x87, 0x96, 0xA5, 0xB4, 0xC3,
                           0xD2, 0xE1, 0xF0, 0xFF, 0xFF};
  tool::Input input = inputOf(text);
  const Buffer bytes = mif::bytesWritten(input, std::nullopt, {});
  EXPECT_EQ(expected, bytes);
  const mif::Fields kinds = allKinds();
  std::string shown = written({bytes, std::endian::big}, {kinds, true}, false);
  for (size_t at; (at = shown.find("  #")) != shown.npos;) {
    shown.erase(at, shown.find('\n', at) - at);
  }
  EXPECT_EQ(text, shown + "\n");
}

}  // namespace
