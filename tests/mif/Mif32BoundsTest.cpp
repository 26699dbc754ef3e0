// Foreign bytes and claimed lengths: blocks of exactly the given size, so that the
// address sanitizer sees any access outside them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "mif/Mif32.h"
#include "tests/mif/MifBytes.h"

namespace {

TEST(Mif32Bounds, HoldForEveryCutAndEveryClaimedLength) {
  const std::string values[] = {"abcd", "12345678", "x"};
  const std::string whole = rec(1, values[0]) + rec(2, values[1]) + rec(3, values[2]) + kEndKz;
  for (unsigned int size = 1; size <= whole.size(); ++size) {
    for (const unsigned int claimed : {size, size + 1, size + 5, size + 60000}) {
      const std::string shown = whole.substr(0, size) + std::string(30, '\0');
      unsigned int end = 0;
      for (unsigned short oid = 1; oid <= 3; ++oid) {
        SCOPED_TRACE(testing::Message() << size << " of " << claimed << ", OID " << oid);
        const unsigned int at = end + 4;
        const auto length = static_cast<unsigned int>(values[oid - 1].size());
        end = at + length;
        const bool seen = at <= size;
        std::string expected(8, '#');
        expected.replace(0, seen ? length : 0, shown, at, seen ? length : 0);
        Mif32 owned, external;
        load(owned, whole.substr(0, size));
        owned.SetLen(static_cast<unsigned short>(claimed));
        std::vector<unsigned char> lent(whole.begin(), whole.begin() + size);
        ASSERT_EQ(1u, external.SetExternalMem(lent.data(), size, claimed));
        for (Mif32* mif : {&owned, &external}) {
          std::string read(8, '#');
          unsigned int room = 8;
          EXPECT_EQ(seen, mif->GetBin(oid, reinterpret_cast<unsigned char*>(read.data()), &room, 1));
          EXPECT_EQ(expected, read);
          EXPECT_TRUE(!seen || mif->UpdInt(oid, 7, 1) == 1);
          EXPECT_EQ(seen && end <= claimed, mif->DelOid(oid));
        }
      }
    }
  }
}

TEST(Mif32Bounds, BytesOutsideTheBlockReadAsZeroAndAreNotWritten) {
  const std::string bytes = rec(1, "ab", 6);
  Mif32 mif;
  load(mif, bytes);
  unsigned int number = 1;
  EXPECT_EQ(1u, mif.GetInt(1, &number, 1));
  EXPECT_EQ(std::string("ab\0\0", 4), host(number, 4));
  unsigned long long wide = 1;
  EXPECT_EQ(1u, mif.GetInt64(1, &wide, 1));
  EXPECT_EQ(std::string("ab\0\0\0\0\0\0", 8), host(wide, 8));
  char text[7] = "######";
  EXPECT_EQ(1u, mif.GetStr(1, text, sizeof text, 1));
  EXPECT_STREQ("ab", text);
  EXPECT_EQ(1u, mif.UpdInt(1, 0x01010101, 1));
  EXPECT_EQ(rec(1, "\1\1", 6), contents(mif));

  load(mif, rec(1, "abcd") + "rest");
  mif.SetLen(17);
  EXPECT_EQ(1u, mif.DelOid(1));
  EXPECT_EQ(9u, mif.GetLen());
  EXPECT_EQ(std::string("rest\0\0\0\0\0", 9), contents(mif)) << "zeros move in from outside";
}

TEST(Mif32Bounds, AnUpdateOfARecordThatRunsPastTheBytesKeepsItsFigures) {
  Mif32 mif;
  load(mif, rec(9, std::string(100, 'p')) + rec(1, "ab", 20));
  EXPECT_EQ(1u, mif.UpdStr(1, "xyz", 1));
  EXPECT_EQ(110u - 20 + 3, mif.GetLen());
  EXPECT_EQ(93u + 10, mif.GetAllocLen());
  load(mif, rec(1, "ab", 60000));
  EXPECT_EQ(0u, mif.UpdStr(1, "xyz", 1)) << "no length below zero";
  EXPECT_EQ(rec(1, "ab", 60000), contents(mif));
}

TEST(Mif32Bounds, AGrowthBehindAClaimedLengthShowsZeros) {
  Mif32 mif;
  load(mif, "abc");
  mif.SetLen(6);
  EXPECT_EQ(1u, mif.RawAddByte('d'));
  EXPECT_EQ(std::string("abc\0\0\0d", 7), contents(mif));
  Mif32 empty;
  empty.SetLen(2);
  EXPECT_EQ(0u, empty.DelEndKz());
  EXPECT_EQ(1u, empty.RawAddByte('d'));
  EXPECT_EQ(std::string("\0\0d", 3), contents(empty));
  EXPECT_EQ(2u + 1 + 1000, empty.GetAllocLen());
}

}  // namespace
