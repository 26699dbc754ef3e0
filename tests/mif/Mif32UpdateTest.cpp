#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "mif/Mif32.h"
#include "tests/mif/MifBytes.h"

namespace {

TEST(Mif32Update, ReplacesInPlaceAndReportsExactFigures) {
  Mif32 mif;
  load(mif, rec(1, "a") + rec(2, "bbbb") + rec(3, "c") + kEndKz);
  EXPECT_EQ(1u, mif.UpdBin(2, bytesOf("BBBBBBBB"), 8, 1));
  EXPECT_EQ(rec(1, "a") + rec(2, "BBBBBBBB") + rec(3, "c") + kEndKz, contents(mif));
  EXPECT_EQ(mif.GetLen() + 10, mif.GetAllocLen());
  EXPECT_EQ(1u, mif.UpdStr(2, "", 1));
  EXPECT_EQ(rec(1, "a") + rec(2, "") + rec(3, "c") + kEndKz, contents(mif));
  EXPECT_EQ(mif.GetLen() + 10, mif.GetAllocLen());
  EXPECT_EQ(1u, mif.UpdBin(3, mif.GetData(), 5, 1)) << "a value from its own block";
  EXPECT_EQ(rec(1, "a") + rec(2, "") + rec(3, rec(1, "a")) + kEndKz, contents(mif));
  EXPECT_EQ(0u, mif.UpdBin(3, nullptr, 5, 1));
  EXPECT_EQ(0u, mif.UpdBin(3, bytesOf("x"), 1, 0));
}

TEST(Mif32Update, AppendsBeforeTheEndMarkerAndStillReturnsZero) {
  const std::string one = rec(1, "a");
  for (const std::string& marker : {std::string(), kEndKz}) {
    Mif32 mif;
    load(mif, one + marker);
    EXPECT_EQ(0u, mif.UpdInt(2, 5, 1));
    EXPECT_EQ(0u, mif.UpdInt64(3, 6, 1));
    EXPECT_EQ(0u, mif.UpdStr(4, "text", 1));
    EXPECT_EQ(0u, mif.UpdBin(1, bytesOf("z"), 1, 2)) << "there is no second one";
    EXPECT_EQ(
        one + rec(2, host(5, 4)) + rec(3, host(6, 8).substr(0, 4)) + rec(4, "text") + rec(1, "z") + marker,
        contents(mif));
    EXPECT_EQ(1u, mif.UpdInt(2, 7, 1));
    EXPECT_EQ(0u, mif.UpdInt(5, 7, 0));
    EXPECT_EQ(0u, mif.UpdInt64(5, 7, 0));
    EXPECT_EQ(0u, mif.SearchValue(5, nullptr, 1)) << "occurrence 0 appends nothing";
  }
}

TEST(Mif32Update, IntOverwritesFourBytesWhateverTheLength) {
  Mif32 mif;
  load(mif, rec(1, "abcdef") + rec(2, "x") + rec(3, "yz"));
  EXPECT_EQ(1u, mif.UpdInt(1, 0x01020304, 1));
  EXPECT_EQ(rec(1, host(0x01020304, 4) + "ef") + rec(2, "x") + rec(3, "yz"), contents(mif));
  const std::string before = contents(mif);
  EXPECT_EQ(1u, mif.UpdInt(2, 0x01020304, 1));
  EXPECT_EQ(before.substr(0, 14) + host(0x01020304, 4) + before.substr(18), contents(mif))
      << "the next header is hit";
}

TEST(Mif32Update, ResizingA64BitValueAddressesTheFirstOccurrence) {
  const uint64_t wide = 0x1122334455667788;
  Mif32 mif;
  load(mif, rec(1, "\1\1\1\1") + rec(1, "\2\2\2\2"));
  EXPECT_EQ(1u, mif.UpdInt64(1, 7, 2)) << "same size: in place";
  EXPECT_EQ(rec(1, "\1\1\1\1") + rec(1, host(7, 8).substr(0, 4)), contents(mif));
  EXPECT_EQ(1u, mif.UpdInt64(1, wide, 2)) << "another size: the first one";
  EXPECT_EQ(rec(1, host(wide, 8)) + rec(1, host(7, 8).substr(0, 4)), contents(mif));
  EXPECT_EQ(1u, mif.UpdInt64(1, wide + 1, 1));
  EXPECT_EQ(rec(1, host(wide + 1, 8)) + rec(1, host(7, 8).substr(0, 4)), contents(mif));
}

TEST(Mif32Update, ExternalMemoryIsKeptAndItsSizeRespected) {
  std::string memory = rec(1, "aaaa") + rec(2, "bb") + kEndKz + "####";
  const auto used = static_cast<unsigned int>(memory.size() - 4);
  Mif32 mif;
  auto* bytes = reinterpret_cast<unsigned char*>(memory.data());
  ASSERT_EQ(1u, mif.SetExternalMem(bytes, used + 2, used));
  EXPECT_EQ(0u, mif.UpdStr(1, "aaaaaaa", 1)) << "one byte too many";
  EXPECT_EQ(1u, mif.UpdStr(1, "AAAAAA", 1));
  EXPECT_EQ(rec(1, "AAAAAA") + rec(2, "bb") + kEndKz + "##", memory);
  EXPECT_EQ(bytes, mif.GetData());
  EXPECT_EQ(0u, mif.UpdInt(3, 1, 1)) << "no room to append";
  EXPECT_EQ(used + 2, mif.GetLen()) << "the end marker is back";
  EXPECT_EQ(1u, mif.UpdStr(2, "", 1));
  EXPECT_EQ(rec(1, "AAAAAA") + rec(2, "") + kEndKz, contents(mif));
}

TEST(Mif32Delete, KeepsTheBlockAndRefusesALengthPastTheEnd) {
  Mif32 mif;
  load(mif, rec(1, "a") + rec(2, "first") + rec(2, "second") + kEndKz);
  const unsigned int allocated = mif.GetAllocLen();
  EXPECT_EQ(1u, mif.DelOid(2));
  EXPECT_EQ(rec(1, "a") + rec(2, "second") + kEndKz, contents(mif));
  EXPECT_EQ(allocated, mif.GetAllocLen());
  load(mif, rec(1, "abc", 4));
  EXPECT_EQ(0u, mif.DelOid(1));
  EXPECT_EQ(rec(1, "abc", 4), contents(mif));
}

}  // namespace
