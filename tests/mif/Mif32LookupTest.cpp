#include <gtest/gtest.h>

#include <signal.h>
#include <unistd.h>

#include <string>

#include "mif/Mif32.h"
#include "support/LogFixture.h"
#include "support/Child.h"
#include "tests/mif/MifBytes.h"

namespace {

TEST(Mif32Seek, CountsOccurrencesFromOneUpToTheEndMarker) {
  Mif32 mif;
  load(mif, rec(7, "aaaa") + rec(8, "") + rec(7, "bb") + kEndKz + rec(9, "hidden"));
  const struct {
    unsigned short oid;
    unsigned int occurrence, found, offset, length;
  } cases[] = {{7, 1, 1, 4, 4},  {7, 2, 1, 16, 2},  {7, 3, 0, 99, 99},     {7, 0, 0, 99, 99},
               {8, 1, 1, 12, 0}, {9, 1, 0, 99, 99}, {0xFFFF, 1, 0, 99, 99}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.oid << "/" << c.occurrence);
    unsigned int offset = 99;
    unsigned int length = 99;
    EXPECT_EQ(c.found, mif.Seek(c.oid, &offset, &length, c.occurrence));
    EXPECT_EQ(c.offset, offset);
    EXPECT_EQ(c.length, length);
    EXPECT_EQ(c.found, mif.SearchValue(c.oid, nullptr, c.occurrence));
  }
}

TEST(Mif32Get, StringsNeedRoomForTheTerminatorAndStopAtAZero) {
  Mif32 mif;
  load(mif, rec(1, "hello") + rec(2, std::string_view("a\0b", 3)));
  char dst[8] = "#######";
  EXPECT_EQ(0u, mif.GetStr(1, dst, 5, 1));
  EXPECT_STREQ("#######", dst);
  EXPECT_EQ(1u, mif.GetStr(1, dst, 6, 1));
  EXPECT_EQ(std::string("hello\0#\0", 8), std::string(dst, 8)) << "all six bytes are set, no seventh";
  EXPECT_EQ(1u, mif.GetStr(2, dst, 8, 1));
  EXPECT_EQ(std::string("a\0\0\0\0\0\0\0", 8), std::string(dst, 8));
  EXPECT_EQ(0u, mif.GetStr(1, nullptr, 8, 1));
  EXPECT_EQ(0u, mif.GetStr(1, dst, 0, 1));
  EXPECT_EQ(0u, mif.GetStr(1, dst, 8, 0));
}

TEST(Mif32Get, BinaryValuesReportTheirLengthOnlyOnSuccess) {
  Mif32 mif;
  load(mif, rec(1, "hello") + rec(2, ""));
  unsigned int length = 0;
  EXPECT_EQ(1u, mif.GetBin(1, nullptr, &length, 1)) << "any room will do for a size query";
  EXPECT_EQ(5u, length);
  unsigned char dst[5] = {};
  length = 4;
  EXPECT_EQ(0u, mif.GetBin(1, dst, &length, 1));
  EXPECT_EQ(4u, length);
  length = 100;
  EXPECT_EQ(1u, mif.GetBin(1, dst, &length, 1));
  EXPECT_EQ(5u, length);
  EXPECT_EQ("hello", std::string(dst, dst + 5));
  EXPECT_EQ(1u, mif.GetBin(2, nullptr, &length, 1)) << "an empty value exists";
  EXPECT_EQ(0u, length);
  EXPECT_EQ(0u, mif.GetBin(1, dst, nullptr, 1));
  EXPECT_EQ(0u, mif.GetBin(1, dst, &length, 0));

  unsigned char* value = nullptr;
  EXPECT_EQ(1u, mif.GetBinPtr(1, &value, &length, 1));
  EXPECT_EQ(mif.GetData() + 4, value);
  EXPECT_EQ(1u, mif.GetBinPtr(1, nullptr, &length, 1));
  EXPECT_EQ(0u, mif.GetBinPtr(1, &value, nullptr, 1));
  EXPECT_EQ(0u, mif.GetBinPtr(3, &value, &length, 1));
}

TEST(Mif32Get, IntegersIgnoreTheLengthAndFillTheFirstBytes) {
  Mif32 mif;
  load(mif,
       rec(1, "\x11\x22") + rec(2, std::string_view("\1\2\3\4\5\6\7\x8", 8)) + rec(3, "\1\2\3\4") + kEndKz);
  unsigned int number = 0;
  EXPECT_EQ(1u, mif.GetInt(1, &number, 1));
  EXPECT_EQ("\x11\x22" + host(2, 2), host(number, 4)) << "the bytes that follow a short value";
  EXPECT_EQ(0u, mif.GetInt(1, nullptr, 1));
  EXPECT_EQ(0u, mif.GetInt(1, &number, 0));
  unsigned long long wide = 1;
  EXPECT_EQ(1u, mif.GetInt64(2, &wide, 1));
  EXPECT_EQ("\1\2\3\4\5\6\7\x8", host(wide, 8));
  EXPECT_EQ(1u, mif.GetInt64(3, &wide, 1));
  EXPECT_EQ(std::string("\1\2\3\4\0\0\0\0", 8), host(wide, 8));
  EXPECT_EQ(0u, mif.GetInt64(4, &wide, 1));
  EXPECT_EQ(0u, wide) << "a missing record leaves 0 behind";
  wide = 5;
  EXPECT_EQ(0u, mif.GetInt64(3, &wide, 0));
  EXPECT_EQ(5u, wide);
}

TEST(Mif32Print, DumpsEveryUsedByte) {
  const unsigned char bytes[] = {0x00, 0x07, 0x00, 0x04, 0x01, 0x02, 0x03, 0xAB, 0xFF, 0xFF};
  Mif32 mif;
  mif.SetData(bytes, sizeof bytes);
  const auto dump = zot_test::captured([&] { EXPECT_EQ('\n', mif.Print()); });
  EXPECT_EQ("Len  : 10\nData : 00 07 00 04 01 02 03 ab ff ff \n", dump.out);
}

TEST(Mif32Print, NeverEndsAt64KiB) {
  Mif32 mif;
  ASSERT_EQ(1u, mif.RawAddStr(std::string(65536, 'z').c_str()));
  int ends[2];
  ASSERT_EQ(0, pipe(ends));
  zot_test::Child child([&] {
    std::signal(SIGPIPE, SIG_DFL);  // newer Foundations ignore it in the whole process
    dup2(ends[1], STDOUT_FILENO);
    close(ends[0]);
    return mif.Print();
  });
  close(ends[1]);
  char block[4096];
  size_t seen = 0;
  for (ssize_t got = 1; seen < 2 * 3 * 65536 && got > 0; seen += static_cast<size_t>(got)) {
    got = read(ends[0], block, sizeof block);
  }
  close(ends[0]);
  EXPECT_EQ(128 + SIGPIPE, child.wait()) << "it goes on until its reader goes away";
}

}  // namespace
