#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "mif/Mif32.h"
#include "mif/zotmif.h"
#include "support/FailingHeap.h"
#include "support/WatchedFrees.h"
#include "tests/mif/MifBytes.h"

namespace {

TEST(Mif32Format, IsTheseBytesInEitherByteOrder) {
  Mif32 mif;
  ASSERT_EQ(1u, mif.AddInt(7, 0x01020304));
  ASSERT_EQ(1u, mif.AddInt64(9, 5));
  ASSERT_EQ(1u, mif.AddInt64(9, 0x0102030405060708));
  ASSERT_EQ(1u, mif.AddTime(0x1234, -2));
  ASSERT_EQ(1u, mif.AddStr(5, "ab"));
  ASSERT_EQ(1u, mif.AddStr(5, ""));
  ASSERT_EQ(1u, mif.AddEndKz());
  const unsigned char big[] = {0,    7,    0,    4,    1, 2, 3, 4, 0,   9,   0, 4, 0,    0,    0,    0,
                               0,    9,    0,    8,    1, 2, 3, 4, 5,   6,   7, 8, 0x12, 0x34, 0,    4,
                               0xFF, 0xFF, 0xFF, 0xFE, 0, 5, 0, 2, 'a', 'b', 0, 5, 0,    0,    0xFF, 0xFF};
  const unsigned char little[] = {7,    0,    4,    0,    4, 3, 2, 1, 9,   0,   4, 0, 5,    0,    0,    0,
                                  9,    0,    8,    0,    8, 7, 6, 5, 4,   3,   2, 1, 0x34, 0x12, 4,    0,
                                  0xFE, 0xFF, 0xFF, 0xFF, 5, 0, 2, 0, 'a', 'b', 5, 0, 0,    0,    0xFF, 0xFF};
  static_assert(sizeof big == sizeof little);
  const bool isBig = std::endian::native == std::endian::big;
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(isBig ? big : little), sizeof big), contents(mif));

  // Nothing swaps bytes: a message of the other order has none of these fields.
  mif.SetData(isBig ? little : big, sizeof big);
  const unsigned short oids[] = {7, 9, 0x1234, 5};
  for (const unsigned short oid : oids) {
    EXPECT_EQ(0u, mif.SearchValue(oid, nullptr, 1));
    EXPECT_EQ(0u, zotmifGetInt(mif.GetData(), mif.GetLen(), oid, nullptr, 1));
  }
  EXPECT_EQ(1u, mif.SearchValue(0x0700, nullptr, 1)) << "it is one field of 1,024 bytes";
  EXPECT_EQ(0u, mif.DelOid(0x0700)) << "most of which are not there";
}

TEST(Mif32Format, RawAppendsHaveNoHeader) {
  Mif32 mif;
  EXPECT_EQ(1u, mif.RawAddByte(0xAB));
  EXPECT_EQ(1u, mif.RawAddWord(0x0102));
  EXPECT_EQ(1u, mif.RawAddDWord(0x01020304));
  EXPECT_EQ(1u, mif.RawAddLDWord(0x0102030405060708));
  EXPECT_EQ(1u, mif.RawAddStr("xyz"));
  EXPECT_EQ(1u, mif.RawAddStr(""));
  const std::string large(70000, 'L');
  EXPECT_EQ(1u, mif.RawAddBin(bytesOf(large), 70000));
  EXPECT_EQ(
      host(0xAB, 1) + host(0x0102, 2) + host(0x01020304, 4) + host(0x0102030405060708, 8) + "xyz" + large,
      contents(mif));
}

TEST(Mif32Building, RefusesNullAndCutsLengthsTo16Bits) {
  Mif32 mif;
  EXPECT_EQ(0u, mif.AddStr(5, nullptr));
  EXPECT_EQ(0u, mif.AddBin(5, nullptr, 3));
  EXPECT_EQ(0u, mif.Add(5, nullptr, 3));
  EXPECT_EQ(0u, mif.RawAddBin(nullptr, 0));
  EXPECT_EQ(0u, mif.RawAddStr(nullptr));
  EXPECT_EQ(0u, mif.GetLen());
  EXPECT_EQ(nullptr, mif.GetData());

  const std::string large(70000, 'v');
  EXPECT_EQ(1u, mif.AddBin(6, bytesOf(large), 70000));
  EXPECT_EQ(1u, mif.AddStr(7, large.c_str()));
  const std::string cut = large.substr(0, 4464);
  EXPECT_EQ(rec(6, cut) + rec(7, cut), contents(mif));
}

TEST(Mif32Building, AValueBehindTheEndMarkerStandsAtTheFifthByte) {
  std::string memory(13, '#');
  Mif32 mif;
  ASSERT_EQ(1u, mif.SetExternalMem(reinterpret_cast<unsigned char*>(memory.data()), 12, 1));
  EXPECT_EQ(0u, mif.Add(0xFFFF, nullptr, 8));
  EXPECT_EQ(1u, mif.Add(0xFFFF, bytesOf("abcdefgh"), 8));
  EXPECT_EQ("#" + kEndKz + "##abcdefg#", memory) << "as far as the block reaches";
  EXPECT_EQ(11u, mif.GetLen());
  EXPECT_EQ(0u, mif.AddStr(0xFFFF, "a"));
  Mif32 owned;
  EXPECT_EQ(1u, owned.AddInt(0xFFFF, 7));
  EXPECT_EQ(kEndKz + std::string(2, '\0') + host(7, 4).substr(0, 2), contents(owned));
  EXPECT_EQ(6u + 1000, owned.GetAllocLen());
}

TEST(Mif32Building, GrowsByTheRequestAndThousand) {
  Mif32 mif;
  EXPECT_EQ(1u, mif.AddInt(1, 1));
  EXPECT_EQ(8u + 1000, mif.GetAllocLen());
  EXPECT_EQ(1u, mif.CheckSize(1000));
  EXPECT_EQ(1008u, mif.GetAllocLen()) << "it fits exactly";
  EXPECT_EQ(1u, mif.CheckSize(1001));
  EXPECT_EQ(8u + 1001 + 1000, mif.GetAllocLen());
  EXPECT_EQ(0u, mif.CheckSize(UINT32_MAX)) << "no 32-bit length can hold it";
  EXPECT_EQ(2009u, mif.GetAllocLen());
  EXPECT_EQ(rec(1, host(1, 4)), contents(mif));

  EXPECT_EQ(1u, mif.Alloc(65535));
  EXPECT_EQ(65535u, mif.GetAllocLen());
  EXPECT_EQ(0u, mif.GetLen());
  mif.SetLen(2000);
  EXPECT_EQ(std::string(2000, '\0'), contents(mif)) << "a length set by hand shows no foreign bytes";
}

TEST(Mif32Building, AppendsFromItsOwnBlockWhileItMoves) {
  Mif32 mif;
  std::string expected = rec(1, "payload");
  load(mif, expected);
  for (int i = 0; i < 12; ++i) {
    ASSERT_EQ(1u, mif.RawAddBin(mif.GetData() + 1, mif.GetLen() - 1));
    expected += expected.substr(1);
  }
  EXPECT_EQ(expected, contents(mif));
}

TEST(Mif32EndMarker, IsAddedOnceAndRemovedOnlyBehindTheLastRecord) {
  const std::string one = rec(1, "abc");
  const struct {
    std::string before;
    unsigned int added;
    std::string after;
    unsigned int removed;  // by DelEndKz on `before`
  } cases[] = {
      {"", 1, kEndKz, 0},
      {"x", 1, "x" + kEndKz, 0},
      {kEndKz, 1, kEndKz, 1},
      {one, 1, one + kEndKz, 0},
      {one + kEndKz, 1, one + kEndKz, 1},
      {one + "x" + kEndKz, 1, one + "x" + kEndKz + kEndKz, 0},
      {one + kEndKz + "x", 1, one + kEndKz + "x", 0},
      {one + kEndKz + "xy", 0, one + kEndKz + "xy", 0},
      {one + kEndKz + kEndKz, 0, one + kEndKz + kEndKz, 0},
      {one + kEndKz + rec(2, kEndKz), 0, one + kEndKz + rec(2, kEndKz), 0},
      {rec(2, kEndKz), 1, rec(2, kEndKz) + kEndKz, 0},
      {rec(2, kEndKz, 60000), 1, rec(2, kEndKz, 60000) + kEndKz, 0},
  };
  for (size_t i = 0; i < std::size(cases); ++i) {
    SCOPED_TRACE(i);
    const auto& c = cases[i];
    Mif32 adding;
    load(adding, c.before);
    EXPECT_EQ(c.added, adding.AddEndKz());
    EXPECT_EQ(c.after, contents(adding));
    Mif32 removing;
    load(removing, c.before);
    EXPECT_EQ(c.removed, removing.DelEndKz());
    EXPECT_EQ(c.before.substr(0, c.before.size() - 2 * c.removed), contents(removing));
  }
}

TEST(Mif32External, NeitherGrowsNorFreesTheCallersMemory) {
  std::vector<unsigned char> memory(10, 0x55);
  Mif32 mif;
  unsigned int freeBytes = 77;
  EXPECT_EQ(0u, mif.IsExternalMem(&freeBytes));
  EXPECT_EQ(77u, freeBytes);
  EXPECT_EQ(0u, mif.SetExternalMem(nullptr, 10, 0));
  EXPECT_EQ(0u, mif.SetExternalMem(memory.data(), 0, 0));
  ASSERT_EQ(1u, mif.AddInt(1, 2));
  EXPECT_EQ(0u, mif.SetExternalMem(mif.GetData() + 4, 4, 0)) << "its own block would be freed";
  ASSERT_EQ(1u, mif.SetExternalMem(memory.data(), 10, 4));
  EXPECT_EQ(1u, mif.IsExternalMem(&freeBytes));
  EXPECT_EQ(6u, freeBytes);
  EXPECT_EQ(1u, mif.IsExternalMem(nullptr));
  EXPECT_EQ(0u, mif.AddInt(7, 1));
  EXPECT_EQ(0u, mif.Alloc(100));
  EXPECT_EQ(4u, mif.GetLen());
  EXPECT_EQ(1u, mif.RawAddStr("sixsix"));
  EXPECT_EQ(0u, mif.RawAddByte(1));
  EXPECT_EQ(10u, mif.GetLen());
  mif.SetData("own", 3);
  EXPECT_EQ(0u, mif.IsExternalMem(nullptr));
  EXPECT_EQ(1u, mif.RawAddByte(1)) << "it grows again";
  ASSERT_EQ(1u, mif.SetExternalMem(memory.data(), 10, 10));
  mif.ClearBuffer();
  EXPECT_EQ(nullptr, mif.GetData());
  EXPECT_EQ(0u, mif.GetLen() + mif.GetAllocLen() + mif.IsExternalMem(nullptr));
  EXPECT_EQ("UUUUsixsix", std::string(memory.begin(), memory.end())) << "letting go wipes nothing";
}

TEST(Mif32Storage, SetDataCopiesAlsoFromItsOwnBlock) {
  Mif32 mif;
  const std::string bytes = rec(1, "abc") + rec(2, "defg");
  load(mif, bytes);
  EXPECT_EQ(bytes.size(), mif.GetAllocLen());
  mif.SetData(mif.GetData(), 3);
  EXPECT_EQ(bytes, contents(mif)) << "the block itself is left alone";
  mif.SetData(mif.GetData() + rec(1, "abc").size(), 8);
  EXPECT_EQ(rec(2, "defg"), contents(mif));
  mif.ClearBuffer();
  EXPECT_EQ(8u, mif.GetAllocLen());
  EXPECT_EQ(std::string(8, '\0'), std::string(reinterpret_cast<char*>(mif.GetData()), 8));
  mif.SetData("x", 0);
  EXPECT_EQ(nullptr, mif.GetData());
  EXPECT_EQ(0u, mif.GetAllocLen());
}

TEST(Mif32Memory, AFailedGrowthLosesTheRecordsButCanGrowAgain) {
  Mif32 mif;
  load(mif, "abc");
  {
    const FailingHeap heap;
    EXPECT_EQ(0u, mif.AddInt(1, 1));
    EXPECT_EQ(nullptr, mif.GetData());
    EXPECT_EQ(3u, mif.GetLen());
    EXPECT_EQ(3u + 8 + 1000, mif.GetAllocLen());
    EXPECT_EQ(0u, mif.AddInt(1, 1)) << "the new figure is no room";
    EXPECT_EQ(0u, mif.AddEndKz());
    EXPECT_EQ(0u, mif.Alloc(10));
    EXPECT_EQ(10u, mif.GetAllocLen());
  }
  EXPECT_EQ(1u, mif.AddInt(1, 1));
  EXPECT_EQ(rec(1, host(1, 4)), contents(mif));
}

TEST(Mif32Memory, IsWipedBeforeTheHeapGetsItBack) {
  const std::string secret = "hush hush";
  unsigned char memory[16];
  const std::function<void(Mif32&)> calls[] = {
      [](Mif32&) {},
      [](Mif32& mif) { mif.UpdStr(1, "x", 1); },
      [](Mif32& mif) { mif.SetData("other", 5); },
      [](Mif32& mif) { mif.SetData(mif.GetData() + 4, 9); },
      [](Mif32& mif) { mif.SetData("", 0); },
      [](Mif32& mif) { mif.Alloc(10); },
      [&](Mif32& mif) { mif.SetExternalMem(memory, sizeof memory, 0); },
      [](Mif32& mif) { mif.CheckSize(1000); },
      [](Mif32& mif) {
        const FailingHeap heap;
        mif.CheckSize(1000);
      },
      [&](Mif32& mif) {  // the new value goes behind the end that the old length leaves
        load(mif, rec(2, std::string(100, 'p')) + rec(1, "ab", 40));
        EXPECT_EQ(1u, mif.UpdStr(1, secret.c_str(), 1));
      },
      [&](Mif32& mif) {
        EXPECT_EQ(1u, mif.SetExternalMem(memory, sizeof memory, 0));
        EXPECT_EQ(1u, mif.AddStr(1, secret.c_str()));
        EXPECT_EQ(1u, mif.UpdStr(1, secret.c_str(), 1));
      },
  };
  for (size_t i = 0; i < std::size(calls); ++i) {
    WatchedFrees frees(secret);
    {
      Mif32 mif;
      ASSERT_EQ(1u, mif.AddStr(1, secret.c_str()));
      calls[i](mif);
    }
    EXPECT_NE(0u, frees.freed) << i;
    EXPECT_EQ(0u, frees.found) << i;
  }
}

TEST(Mif32Memory, AFailedCopyLeavesNoBlockAndAFailedUpdateChangesNothing) {
  const std::string bytes = rec(1, "abc");
  Mif32 mif;
  load(mif, bytes);
  {
    const FailingHeap heap;
    EXPECT_EQ(0u, mif.UpdStr(1, "xyz", 1));
    EXPECT_EQ(bytes, contents(mif));
    mif.SetData("other", 5);
  }
  EXPECT_EQ(nullptr, mif.GetData());
  EXPECT_EQ(bytes.size(), mif.GetLen());
  EXPECT_EQ(0u, mif.SearchValue(1, nullptr, 1));

  unsigned char memory[16];
  ASSERT_EQ(1u, mif.SetExternalMem(memory, sizeof memory, 0));
  {
    const FailingHeap heap;
    mif.SetData("other", 5);
  }
  EXPECT_EQ(0u, mif.RawAddByte(1)) << "neither the lent memory nor a block of its own";
  mif.ClearBuffer();
  EXPECT_EQ(1u, mif.RawAddByte(1));
}

}  // namespace
