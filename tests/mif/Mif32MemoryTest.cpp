#include <gtest/gtest.h>

#include <string>

#include "mif/Mif32.h"
#include "tests/mif/MifBytes.h"
#include "support/FailingHeap.h"

namespace {

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
