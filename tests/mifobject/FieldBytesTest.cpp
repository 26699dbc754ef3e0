#include "mifobject/FieldBytesInternal.h"

#include <gtest/gtest.h>

#include <bit>
#include <string>

namespace {

TEST(FieldByte, IsTheOneAtTheLowestAddress) {
  const bool little = std::endian::native == std::endian::little;
  EXPECT_EQ(little ? 44 : 0, zot::fieldByte(int32_t{300}));
  EXPECT_EQ(255, zot::fieldByte(int32_t{-1}));
  EXPECT_EQ(little ? 0x78 : 0x12, zot::fieldByte(int32_t{0x12345678}));
  EXPECT_EQ(little ? 0x34 : 0x12, zot::fieldByte(uint16_t{0x1234}));
}

TEST(LooseIpV4, ReadsWhatStandsThere) {
  const struct {
    std::string text;
    int32_t numbers[4];
  } cases[] = {
      {"1.2", {1, 2, 0, 0}},
      {"", {0, 0, 0, 0}},
      {"1..3.", {1, 0, 3, 0}},
      {"1.2.3.4.56789", {1, 2, 3, 4}},
      {" 7.-1.+9.8x", {7, -1, 9, 8}},
      // A longer field runs on into the next one's room.
      {"1234.5.6.7", {12345, 5, 6, 7}},
      {"12345678.9", {12349678, 9678, 0, 0}},
      {"1.2.3456.7", {1, 2, 34567, 7}},
      // These fill the room of the fourth: what comes behind them is dropped.
      {"10.1.2.255", {10, 1, 2, 255}},
      {"x1.300.0x9.007", {0, 300, 0, 7}},
      {"1.2.3456789", {1, 2, 3456789, 789}},
      {"1.2.3.456", {1, 2, 3, 456}},
      {"000000000012345", {12345, 12345, 12345, 345}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const bool full = &c >= std::end(cases) - 5;
    const auto value = zot::looseIpV4(c.text.c_str());
    for (size_t i = 0; i < 4; ++i) {
      EXPECT_EQ(zot::fieldByte(c.numbers[i]), value[3 - i]) << i;
    }
    EXPECT_TRUE(!full || value == zot::looseIpV4((c.text + "9").c_str()));
  }
}

}  // namespace
