#include "multilang/ProgramTexts.h"

#include <gtest/gtest.h>

#include <string>

#include "support/FailingHeap.h"

namespace {

// A table without texts of each kind, and what both must do alike.
class ProgramTextsTest : public testing::Test {
 protected:
  ProgramTexts table{nullptr, 1, 0, 0};
  DummyProgramTexts dummy;
  ProgramTexts* const both[2] = {&table, &dummy};

  std::string found(unsigned int element, unsigned int sub, signed char useElement = 1) {
    return table.getPrgTextDefA(element, sub, useElement, nullptr, nullptr, 0);
  }
};

TEST_F(ProgramTextsTest, ResolvesEscapesAndDropsUnknownOnes) {
  const char* cases[][2] = {{"plain", "plain"},
                            {"a\\tb\\q", "a\tb"},
                            {"\\b\\t\\n\\r", "\b\t\n\r"},
                            {"\\\\ \\\" \\'", "\\ \" '"},
                            {"ab\\0cd", "ab"},
                            {"a\\\\nb", "a\\nb"},
                            {"\\xa\\", "a"},
                            {"\\", ""},
                            {"\\\\\\", "\\"},
                            {"\xE4\\\xE4\xFC", "\xE4\xFC"}};
  for (const auto& [source, stored] : cases) {
    table.ClearAllTexts();
    EXPECT_EQ(1u, table.AddText(3, 4, source));
    EXPECT_EQ(stored, found(3, 4));
  }
  EXPECT_EQ(0u, table.AddText(3, 5, nullptr));
}

TEST_F(ProgramTextsTest, FirstEntryWinsWithAndWithoutTheElement) {
  table.AddText(1, 7, "one");
  table.AddText(3, 7, "three");
  table.AddText(3, 7, "again");
  EXPECT_EQ("one", found(1, 7));
  EXPECT_EQ("three", found(3, 7));
  EXPECT_EQ("one", found(3, 7, 0)) << "any element will do";
  EXPECT_EQ("2 7 (Text missing)", found(2, 7));
  EXPECT_EQ("9 (Text missing)", found(3, 9, 0));
  EXPECT_EQ("-1 -2 (Text missing)", found(0xFFFFFFFF, 0xFFFFFFFE));
  const char def[] = "default";
  EXPECT_EQ(def, table.getPrgTextDefA(2, 7, 1, def, nullptr, 0));
}

TEST_F(ProgramTextsTest, CopyIsCutAndTerminatedWithinSize) {
  const struct {
    int size;
    const char* left;  // 8 bytes
  } cases[] = {{-1, "########"}, {0, "########"},  {1, "\0#######"},
               {5, "butt\0###"}, {7, "button\0#"}, {8, "button\0\0"}};
  table.AddText(1, 0, "button");
  for (const auto& c : cases) {
    for (ProgramTexts* each : both) {
      std::string buffer(8, '#');
      EXPECT_STREQ("button", each->getPrgTextDefA(1, 0, 1, "button", buffer.data(), c.size));
      EXPECT_EQ(std::string(c.left, 8), buffer) << c.size;
    }
  }
  char own[16] = "own default";
  EXPECT_EQ(own, table.getPrgTextDefA(2, 0, 1, own, own, 4)) << "the default is the destination";
  EXPECT_STREQ("own", own);
}

TEST_F(ProgramTextsTest, TwoResultsStayValidTogether) {
  for (ProgramTexts* each : both) {
    const char* first = each->getPrgTextDefA(1, 2, 1, nullptr, nullptr, 0);
    const char* second = each->getPrgTextDefA(3, 4, 0, nullptr, nullptr, 0);
    EXPECT_STREQ("1 2 (Text missing)", first);
    EXPECT_STREQ("4 (Text missing)", second);
    EXPECT_EQ(first, each->getPrgTextDefA(5, 6, 1, nullptr, nullptr, 0)) << "the third reuses the first";
    each->getPrgTextDefA(1, 0, 1, "a lookup that needs no scratch buffer flips them too", nullptr, 0);
    EXPECT_EQ(first, each->getPrgTextDefA(7, 8, 1, nullptr, nullptr, 0));
    each->getPrgTextDefW(1, 0, 1, nullptr, nullptr, 0);
    EXPECT_STREQ("7 8 (Text missing)", first) << "the wide message took the second buffer";
    each->getPrgTextDefA(1, 0, 1, "the second buffer would be next", nullptr, 0);
    each->ClearAllTexts();
    EXPECT_STREQ("", first) << "clearing zeroes the buffers";
    EXPECT_EQ(first, each->getPrgTextDefA(1, 2, 1, nullptr, nullptr, 0)) << "and starts again with the first";
  }
}

TEST_F(ProgramTextsTest, WideFormsOnlyEverGiveTheMessage) {
  using Wide = std::basic_string<unsigned short>;
  const std::string message = "zotmllib: WCHAR not implemented for this OS";
  const Wide wide(message.begin(), message.end());
  const unsigned short def[] = {'d', 0};
  table.AddText(1, 0, "stored");
  EXPECT_EQ(wide, table.getPrgTextDefW(1, 0, 1, def, nullptr, 0));
  EXPECT_EQ(wide, dummy.getPrgTextDefW(1, 0, 1, nullptr, nullptr, 0));
  EXPECT_EQ(def, dummy.getPrgTextDefW(1, 0, 1, def, nullptr, 0));
  for (ProgramTexts* each : both) {
    Wide dst(60, '#');
    each->getPrgTextDefW(1, 0, 1, def, dst.data(), 0);
    EXPECT_EQ(Wide(60, '#'), dst);
    each->getPrgTextDefW(1, 0, 1, def, dst.data(), 9);
    EXPECT_EQ(wide.substr(0, 8), dst.c_str()) << "also with a default";
    EXPECT_EQ(Wide(51, '#'), dst.substr(9));
    each->getPrgTextDefW(1, 0, 1, def, dst.data(), 60);
    EXPECT_EQ(wide, dst.c_str());
    EXPECT_EQ(Wide(15, '#'), dst.substr(44, 15)) << "behind the message nothing is written";
    EXPECT_EQ(0, dst[59]);
  }
}

TEST_F(ProgramTextsTest, GrowsByFiveAndStaysUsableWithoutMemory) {
  for (const unsigned int granted : {12u, 1u}) {  // the array twice and ten texts; the array once more
    FailingHeap heap(granted);
    for (unsigned int i = 0; i < 10; ++i) {
      EXPECT_EQ(granted == 12 ? 1u : 0u, table.AddText(i, 0, "early"));
    }
    EXPECT_EQ(0u, table.AddText(10, 0, "no memory"));
  }
  EXPECT_EQ(1u, table.AddText(10, 0, "eleventh"));
  EXPECT_EQ("early", found(9, 0));
  EXPECT_EQ("eleventh", found(10, 0));
}

}  // namespace
