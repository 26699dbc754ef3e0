#include "mif/zotmif.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "ipaddr/ZotIpAddr.h"
#include "mif/Mif32.h"
#include "mif/MifRecord.h"
#include "tests/mif/MifBytes.h"

namespace {

// Bytes in a block of exactly their size, so that an access past the end is caught.
struct Block {
  explicit Block(const std::string& text)
      : bytes(std::make_unique<unsigned char[]>(text.size())), len(static_cast<uint32_t>(text.size())) {
    std::copy(text.begin(), text.end(), bytes.get());
  }
  std::string text() const { return {reinterpret_cast<const char*>(bytes.get()), len}; }

  std::unique_ptr<unsigned char[]> bytes;
  uint32_t len;
};

// Bytes for a line: a zero shows as '.', a byte that no call wrote as '#'.
template <typename Object>
std::string shown(const Object& object) {
  std::string bytes(reinterpret_cast<const char*>(&object), sizeof object);
  std::replace(bytes.begin(), bytes.end(), '\0', '.');
  return bytes;
}

// What each reader makes of one record: its result and its outputs, for a room of 8 bytes.
std::string answers(const std::string& bytes, unsigned short oid, uint32_t occurrence) {
  const Block block(bytes);
  const unsigned char* buf = block.bytes.get();
  uint32_t number = 0x23232323;
  unsigned long long wide = 0x2323232323232323;
  char str[] = {'#', '#', '#', '#', '#', '#', '#', '#'};
  unsigned char bin[] = {'#', '#', '#', '#', '#', '#', '#', '#'};
  uint32_t room = sizeof bin;
  const unsigned char* at = nullptr;
  uint32_t atLen = 77;
  ZotIpAddr addr("9.9.9.9");
  ZotIpAddr addr4("9.9.9.9");
  std::ostringstream line;
  line << "int " << zotmifGetInt(buf, block.len, oid, &number, occurrence) << " " << shown(number);
  line << ", int64 " << zotmifGetInt64(buf, block.len, oid, &wide, occurrence) << " " << shown(wide);
  line << ", str " << zotmifGetStr(buf, block.len, oid, str, sizeof str, occurrence) << " " << shown(str);
  line << ", bin " << zotmifGetBinData(buf, block.len, oid, bin, &room, occurrence) << " " << shown(bin);
  line << " " << room;
  line << ", ptr " << zotmifGetBinDataPtr(buf, block.len, oid, &at, &atLen, occurrence) << " "
       << (at == nullptr ? -1 : at - buf) << " " << atLen;
  line << ", addr " << zotmifGetIpAddr(buf, block.len, oid, &addr, occurrence) << " " << addr.GetStr();
  line << ", v4 " << zotmifGetIpAddrV4(buf, block.len, oid, &addr4, occurrence) << " " << addr4.GetStr();
  return line.str();
}

const std::string kUntouched =
    "int 0 ####, int64 0 ########, str 0 ########, bin 0 ######## 8, ptr 0 -1 77, ";
const std::string kMissing = kUntouched + "addr 0 , v4 0 0.0.0.0";

TEST(RecordWalk, GivesRecordsByValueAndTellsItsEnd) {
  static_assert(std::input_iterator<MifRecords::iterator>);
  const std::string bytes = rec(1, "a") + rec(2, "bc", 9);
  const MifRecords records(bytesOf(bytes), bytes.size());
  auto at = records.begin();
  const MifRecord& first = *at++;
  const MifRecord& second = *at++;
  EXPECT_EQ(1, first.oid);
  EXPECT_TRUE(first.complete());
  EXPECT_EQ(2, second.oid);
  EXPECT_EQ(2u, second.available);
  EXPECT_FALSE(second.complete());
  EXPECT_EQ(records.end(), at);
  EXPECT_EQ(bytes.size() + 7, at.offset()) << "where the last length leads";
  EXPECT_EQ(at.offset(), records.endOffset());
  EXPECT_EQ(5u, records.find(2, 1)->offset);
  EXPECT_FALSE(records.find(1, 0));
}

TEST(RawAccess, AnswersByTheValueAndItsLength) {
  const struct {
    std::string bytes;
    std::string answers;
  } cases[] = {
      {rec(8, "abcd") + kEndKz,
       "int 1 abcd, int64 1 abcd...., str 1 abcd.###, bin 1 abcd#### 4, ptr 1 4 4, addr 1 97.98.99.100, "
       "v4 0 97.98.99.100"},
      {rec(8, "abcdefgh"),
       "int 1 abcd, int64 1 abcdefgh, str 0 ########, bin 1 abcdefgh 8, ptr 1 4 8, addr 0 , v4 1 0.0.0.0"},
      {rec(8, std::string("x\0y", 3)),
       "int 0 ####, int64 0 ........, str 1 x.y.####, bin 1 x.y##### 3, ptr 1 4 3, addr 0 , v4 1 0.0.0.0"},
      {rec(8, ""),
       "int 0 ####, int64 0 ........, str 1 .#######, bin 1 ######## 0, ptr 1 4 0, addr 0 , v4 1 0.0.0.0"},
      {rec(8, "ab") + "cd",  // numbers take what follows a short value
       "int 1 abcd, int64 1 abcd...., str 1 ab.#####, bin 1 ab###### 2, ptr 1 4 2, addr 0 , v4 1 0.0.0.0"},
      {rec(8, "0123456789abcdef"),
       "int 1 0123, int64 1 0123...., str 0 ########, bin 0 ######## 0, ptr 1 4 16, "
       "addr 1 3031:3233:3435:3637:3839:6162:6364:6566, v4 0 3031:3233:3435:3637:3839:6162:6364:6566"},
      // Lengths that run past the end.
      {rec(8, "ab", 4),
       "int 0 ####, int64 0 ........, str 0 ########, bin 0 ######## 8, ptr 0 -1 77, addr 1 97.98.0.0, "
       "v4 0 97.98.0.0"},
      {rec(8, "abcdef", 8),
       "int 1 abcd, int64 1 abcd...., str 0 ########, bin 0 ######## 8, ptr 0 -1 77, addr 0 , v4 1 0.0.0.0"},
      {rec(8, "abcd", 16),
       "int 1 abcd, int64 1 abcd...., str 0 ########, bin 0 ######## 0, ptr 0 -1 77, addr 1 6162:6364::, "
       "v4 0 6162:6364::"},
      {rec(8, "abcd", 65535),
       "int 1 abcd, int64 1 abcd...., str 0 ########, bin 0 ######## 0, ptr 0 -1 77, addr 0 , v4 1 0.0.0.0"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.answers, answers(c.bytes, 8, 1));
  }
}

TEST(RawAccess, CountsOccurrencesUpToTheEndMarker) {
  const std::string bytes =
      rec(8, "1st.") + rec(9, "") + rec(8, "2nd.") + kEndKz + rec(8, "3rd.") + rec(7, "late");
  EXPECT_EQ("int 1 1st.", answers(bytes, 8, 1).substr(0, 10));
  EXPECT_EQ("int 1 2nd.", answers(bytes, 8, 2).substr(0, 10));
  EXPECT_EQ(kMissing, answers(bytes, 8, 3));
  EXPECT_EQ(kMissing, answers(bytes, 7, 1));
  EXPECT_EQ(kMissing, answers(bytes, 0xFFFF, 1));
  EXPECT_EQ(kUntouched + "addr 0 9.9.9.9, v4 0 9.9.9.9", answers(bytes, 8, 0));
  EXPECT_EQ(kUntouched + "addr 0 9.9.9.9, v4 0 9.9.9.9", answers("", 8, 1));
  EXPECT_EQ(kMissing, answers(rec(9, "", 65535) + rec(8, "abcd"), 8, 1)) << "swallowed by a hostile length";
}

TEST(RawAccess, RefusesEveryCutOfAValidRecord) {
  const std::string whole = rec(9, "before") + rec(8, "abcd");
  const char* const addresses[] = {"0.0.0.0", "97.0.0.0", "97.98.0.0", "97.98.99.0"};
  for (size_t size = 1; size < whole.size(); ++size) {
    const std::string cut = whole.substr(0, size);
    const std::string addr = size < 14 ? "" : addresses[size - 14];
    const std::string found =
        "int 0 ####, int64 0 ........, str 0 ########, bin 0 ######## 8, ptr 0 -1 77, addr 1 " + addr +
        ", v4 0 " + addr;
    EXPECT_EQ(size < 14 ? kMissing : found, answers(cut, 8, 1)) << size;
    Block block(cut);
    EXPECT_EQ(0u, zotmifUpdInt(block.bytes.get(), block.len, 8, 0, 1)) << size;
    EXPECT_EQ(cut, block.text());
  }
}

TEST(RawAccess, TakesNullForOutputsThatNobodyWants) {
  const Block block(rec(8, "abcde"));
  const unsigned char* buf = block.bytes.get();
  EXPECT_EQ(1u, zotmifGetInt(buf, block.len, 8, nullptr, 1));
  EXPECT_EQ(1u, zotmifGetInt64(buf, block.len, 8, nullptr, 1));
  EXPECT_EQ(0u, zotmifGetStr(buf, block.len, 8, nullptr, 5, 1));
  EXPECT_EQ(1u, zotmifGetStr(buf, block.len, 8, nullptr, 6, 1));
  uint32_t room = 5;
  EXPECT_EQ(1u, zotmifGetBinData(buf, block.len, 8, nullptr, &room, 1));
  EXPECT_EQ(5u, room);
  EXPECT_EQ(0u, zotmifGetBinData(buf, block.len, 8, nullptr, nullptr, 1));
  EXPECT_EQ(1u, zotmifGetBinDataPtr(buf, block.len, 8, nullptr, nullptr, 1));
  ZotIpAddr addr("9.9.9.9");
  EXPECT_EQ(0u, zotmifGetIpAddr(nullptr, 8, 8, &addr, 1));
  EXPECT_EQ(0u, zotmifGetIpAddrV4(nullptr, 8, 8, &addr, 1));
  EXPECT_STREQ("9.9.9.9", addr.GetStr());
  EXPECT_EQ(0u, zotmifUpdInt(nullptr, 8, 8, 1, 1));
}

TEST(RawAccess, UpdatesFourBytesInPlace) {
  const std::string bytes = rec(8, "ab") + rec(8, "abcd") + kEndKz + rec(9, "abcd");
  Block block(bytes);
  EXPECT_EQ(0u, zotmifUpdInt(block.bytes.get(), block.len, 8, 0x01020304, 0));
  EXPECT_EQ(0u, zotmifUpdInt(block.bytes.get(), block.len, 8, 0x01020304, 1)) << "two bytes";
  EXPECT_EQ(0u, zotmifUpdInt(block.bytes.get(), block.len, 9, 0x01020304, 1)) << "behind the end marker";
  EXPECT_EQ(bytes, block.text());
  EXPECT_EQ(1u, zotmifUpdInt(block.bytes.get(), block.len, 8, 0x01020304, 2));
  EXPECT_EQ(rec(8, "ab") + rec(8, host(0x01020304, 4)) + kEndKz + rec(9, "abcd"), block.text());
}

TEST(RangeText, ListsEveryRecordOfTheOid) {
  const auto words = [](uint64_t from, uint64_t to, size_t width) {
    return host(from, width) + host(to, width);
  };
  const std::string mixed = rec(8, "\x05\x05") + rec(9, "no") + rec(8, words(10, 20, 2)) + rec(8, "odd");
  const std::string one("\x01\0\0\x0A\x01\0\0\x0A", 8);
  const std::string many("\x01\x02\x03\x0A\xFE\x05\x04\x0A", 8);
  const struct {
    std::string bytes;
    int ipFormat;
    uint32_t result;
    std::string text;
  } cases[] = {
      {mixed, 0, 1, "5, 10-20, "},
      {mixed + kEndKz + rec(8, "\x07\x07"), 1, 1, "5, 10-20, "},
      {rec(8, one), 1, 1, "10.0.0.1"},
      {rec(8, many) + rec(8, one), 1, 1, "10.3.2.1-10.4.5.254, 10.0.0.1"},
      {rec(8, words(70000, 0xFFFFFFFE, 4)) + rec(8, words(9, 9, 4)), 0, 1, "70000--2, 9"},
      {rec(8, "\xC8\xFF") + rec(8, words(0xFFFF, 0, 2)), 0, 1, "200-255, 65535-0"},
      {rec(8, "") + rec(8, "abc"), 0, 0, ", "},
      {rec(8, "") + rec(8, "\x01\x02"), 0, 1, ", 1-2"},
      {rec(8, "\x09", 2), 0, 1, "9-0"},
      {rec(8, words(3, 4, 4), 65535), 0, 0, ""},
      {rec(9, "ab"), 0, 0, ""},
      {"", 0, 0, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const Block block(c.bytes);
    for (uint32_t size = 0; size < c.text.size() + 3; ++size) {
      // A text of its own size: a shorter one is cut and nothing is written behind it.
      const auto out = std::make_unique<char[]>(size);
      std::fill_n(out.get(), size, '#');
      EXPECT_EQ(c.result,
                zotmifGetRangeValuesAsString(block.bytes.get(), block.len, 8, out.get(), size, c.ipFormat));
      EXPECT_EQ(c.text.substr(0, std::max(size, 1u) - 1), size == 0 ? "" : out.get());
    }
  }
  char out[] = "old";
  EXPECT_EQ(0u, zotmifGetRangeValuesAsString(nullptr, 9, 8, out, sizeof out, 0));
  EXPECT_STREQ("", out);
  EXPECT_EQ(0u, zotmifGetRangeValuesAsString(bytesOf(mixed), 9, 8, nullptr, 9, 0));
}

TEST(Mif32Addresses, AreWrittenByFamilyOrAsTheirIpV4View) {
  const struct {
    const char* text;
    std::string bytes, v4;
  } cases[] = {
      {"10.1.2.3", "\x0A\x01\x02\x03", "\x0A\x01\x02\x03"},
      {"::ffff:10.1.2.3", std::string("\0\0\0\0\0\0\0\0\0\0\xFF\xFF\x0A\x01\x02\x03", 16),
       "\x0A\x01\x02\x03"},
      {"6162:6364::1", std::string("abcd\0\0\0\0\0\0\0\0\0\0\0\x01", 16), std::string(4, '\0')},
      {"", "", std::string(4, '\0')},
  };
  for (const auto& c : cases) {
    ZotIpAddr addr(c.text);
    Mif32 mif;
    EXPECT_EQ(1u, mif.AddIpAddr(3, &addr));
    EXPECT_EQ(1u, mif.AddIpAddrV4(4, &addr));
    EXPECT_EQ(rec(3, c.bytes) + rec(4, c.v4), contents(mif)) << c.text;
    EXPECT_EQ(0u, mif.AddIpAddr(3, nullptr));
    EXPECT_EQ(0u, mif.AddIpAddrV4(3, nullptr));
  }
}

}  // namespace
