// Foreign bytes and claimed lengths: blocks of exactly the given size, so that the
// address sanitizer sees any access outside them.
#include <gtest/gtest.h>

#include <bit>
#include <memory>
#include <string>

#include "mif/Mif32.h"
#include "mif/zotmif.h"
#include "tests/mif/MifBytes.h"

namespace {

// Every operation that walks, reads or writes in place; results do not matter.
void exercise(Mif32& mif) {
  unsigned int number = 0;
  unsigned long long wide = 0;
  char text[600];
  static unsigned char bin[65536];
  for (unsigned short oid = 1; oid <= 3; ++oid) {
    unsigned int length = sizeof bin;
    mif.GetInt(oid, &number, 1);
    mif.GetInt64(oid, &wide, 1);
    mif.GetStr(oid, text, sizeof text, 1);
    mif.GetBin(oid, bin, &length, 1);
    mif.UpdInt(oid, 0xFFFFFFFF, 1);
    mif.UpdInt64(oid, 1, 1);
    mif.UpdInt64(oid, UINT64_MAX, 1);
    mif.UpdStr(oid, "longer than it was", 1);
    mif.DelOid(oid);
  }
  mif.AddEndKz();
  mif.DelEndKz();
}

TEST(Mif32Bounds, HoldForEveryCutAndEveryClaimedLength) {
  const std::string whole = rec(1, "abcd") + rec(2, "12345678") + rec(3, "x") + kEndKz;
  const std::string hostile = rec(1, "abcd") + rec(2, "12345678", 65535) + rec(3, "x", 4) + kEndKz;
  for (const std::string& bytes : {whole, hostile}) {
    for (size_t size = 1; size <= bytes.size(); ++size) {
      for (const unsigned int extra : {0u, 1u, 5u, 60000u}) {
        SCOPED_TRACE(testing::Message() << size << "+" << extra);
        const auto cut = static_cast<unsigned int>(size);
        Mif32 owned;
        owned.SetData(bytesOf(bytes), cut);
        owned.SetLen(static_cast<unsigned short>(cut + extra));
        exercise(owned);
        const auto block = std::make_unique<unsigned char[]>(size);
        std::copy_n(bytes.begin(), size, block.get());
        Mif32 external;
        ASSERT_EQ(1u, external.SetExternalMem(block.get(), cut, cut + extra));
        exercise(external);
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
  unsigned char bin[6];
  unsigned int length = sizeof bin;
  EXPECT_EQ(1u, mif.GetBin(1, bin, &length, 1));
  EXPECT_EQ(std::string("ab\0\0\0\0", 6), std::string(bin, bin + length));
  EXPECT_EQ(1u, mif.UpdInt(1, 0x01010101, 1));
  EXPECT_EQ(rec(1, "\1\1", 6), contents(mif));
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

// Nothing swaps bytes, so a message belongs to hosts of one order.
TEST(Mif32Bounds, AMessageOfTheOtherByteOrderHasNoneOfItsFields) {
  const std::string big("\0\7\0\4\1\2\3\4\0\10\0\3abc\xFF\xFF", 17);
  const std::string little("\7\0\4\0\4\3\2\1\10\0\3\0abc\xFF\xFF", 17);
  const bool isLittle = std::endian::native == std::endian::little;
  const std::string& foreign = isLittle ? big : little;
  unsigned int number = 0;
  char text[8] = "";
  Mif32 ours, theirs;
  load(ours, isLittle ? little : big);
  EXPECT_EQ(1u, ours.GetInt(7, &number, 1));
  EXPECT_EQ(0x01020304u, number);
  EXPECT_EQ(1u, ours.GetStr(8, text, sizeof text, 1));
  EXPECT_STREQ("abc", text);

  load(theirs, foreign);
  EXPECT_EQ(0u, theirs.GetInt(7, &number, 1));
  EXPECT_EQ(0u, theirs.GetStr(8, text, sizeof text, 1));
  EXPECT_EQ(0u, zotmifGetInt(bytesOf(foreign), 17, 7, &number, 1));
  // What it does have is one field 0x0700 of 1,024 bytes, of which 13 are there.
  EXPECT_EQ(0u, theirs.DelOid(7));
  EXPECT_EQ(0u, zotmifGetStr(bytesOf(foreign), 17, 0x0700, nullptr, 2000, 1));
  exercise(theirs);
  EXPECT_EQ(foreign, contents(theirs).substr(0, 17));
  EXPECT_GT(2000u, theirs.GetAllocLen());
}

}  // namespace
