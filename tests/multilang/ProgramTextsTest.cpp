#include "multilang/ProgramTexts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "support/FailingHeap.h"

namespace {

std::string found(ProgramTexts& table, unsigned int element, unsigned int sub, signed char useElement = 1) {
  return table.getPrgTextDefA(element, sub, useElement, nullptr, nullptr, 0);
}

std::string narrowed(const unsigned short* wide) {
  std::string text;
  for (; *wide != 0; ++wide) {
    text += static_cast<char>(*wide);
  }
  return text;
}

const std::string kWideMessage = "zotmllib: WCHAR not implemented for this OS";

TEST(ProgramTexts, ResolvesEscapesAndDropsUnknownOnes) {
  ProgramTexts table(nullptr, 1, 0, 0);
  const char* cases[][2] = {{"plain", "plain"},
                            {"", ""},
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
    EXPECT_EQ(stored, found(table, 3, 4));
  }
  EXPECT_EQ(0u, table.AddText(3, 5, nullptr));
  EXPECT_EQ("3 5 (Text missing)", found(table, 3, 5));
}

TEST(ProgramTexts, FirstEntryWinsWithAndWithoutTheElement) {
  ProgramTexts table(nullptr, 1, 0, 0);
  table.AddText(1, 7, "one");
  table.AddText(3, 7, "three");
  table.AddText(3, 7, "again");
  EXPECT_EQ("one", found(table, 1, 7));
  EXPECT_EQ("three", found(table, 3, 7));
  EXPECT_EQ("one", found(table, 3, 7, 0)) << "any element will do";
  EXPECT_EQ("2 7 (Text missing)", found(table, 2, 7));
  EXPECT_EQ("9 (Text missing)", found(table, 3, 9, 0));
  EXPECT_EQ("-1 -2 (Text missing)", found(table, 0xFFFFFFFF, 0xFFFFFFFE));
  const char def[] = "default";
  EXPECT_EQ(def, table.getPrgTextDefA(2, 7, 1, def, nullptr, 0));
}

TEST(ProgramTexts, CopyIsCutAndTerminatedWithinSize) {
  const struct {
    int size;
    const char* left;  // 8 bytes
  } cases[] = {{-1, "########"}, {0, "########"},  {1, "\0#######"},
               {5, "butt\0###"}, {7, "button\0#"}, {8, "button\0\0"}};
  ProgramTexts table(nullptr, 1, 0, 0);
  DummyProgramTexts dummy;
  table.AddText(1, 0, "button");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.size);
    std::string buffer(8, '#');
    EXPECT_STREQ("button", table.getPrgTextDefA(1, 0, 1, nullptr, buffer.data(), c.size));
    EXPECT_EQ(std::string(c.left, 8), buffer);
    buffer.assign(8, '#');
    EXPECT_STREQ("button", dummy.getPrgTextDefA(1, 0, 1, "button", buffer.data(), c.size));
    EXPECT_EQ(std::string(c.left, 8), buffer);
  }
  char own[16] = "own default";
  EXPECT_EQ(own, table.getPrgTextDefA(2, 0, 1, own, own, 4)) << "the default is the destination";
  EXPECT_STREQ("own", own);
}

TEST(ProgramTexts, TwoResultsStayValidTogether) {
  ProgramTexts table(nullptr, 1, 0, 0);
  DummyProgramTexts dummy;
  for (ProgramTexts* each : {&table, static_cast<ProgramTexts*>(&dummy)}) {
    const char* first = each->getPrgTextDefA(1, 2, 1, nullptr, nullptr, 0);
    const char* second = each->getPrgTextDefA(3, 4, 0, nullptr, nullptr, 0);
    EXPECT_STREQ("1 2 (Text missing)", first);
    EXPECT_STREQ("4 (Text missing)", second);
    EXPECT_EQ(first, each->getPrgTextDefA(5, 6, 1, nullptr, nullptr, 0)) << "the third reuses the first";
    EXPECT_STREQ("5 6 (Text missing)", first);
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

TEST(ProgramTexts, WideFormsOnlyEverGiveTheMessage) {
  ProgramTexts table(nullptr, 1, 0, 0);
  table.AddText(1, 0, "stored");
  DummyProgramTexts dummy;
  const unsigned short def[] = {'d', 0};
  EXPECT_EQ(kWideMessage, narrowed(table.getPrgTextDefW(1, 0, 1, nullptr, nullptr, 0)));
  EXPECT_EQ(kWideMessage, narrowed(table.getPrgTextDefW(1, 0, 1, def, nullptr, 0)));
  EXPECT_EQ(kWideMessage, narrowed(dummy.getPrgTextDefW(1, 0, 1, nullptr, nullptr, 0)));
  EXPECT_EQ(def, dummy.getPrgTextDefW(1, 0, 1, def, nullptr, 0));

  for (ProgramTexts* each : {&table, static_cast<ProgramTexts*>(&dummy)}) {
    unsigned short dst[60];
    std::fill_n(dst, 60, static_cast<unsigned short>('#'));
    each->getPrgTextDefW(1, 0, 1, def, dst, 0);
    EXPECT_EQ('#', dst[0]);
    each->getPrgTextDefW(1, 0, 1, def, dst, 9);
    EXPECT_EQ("zotmllib", narrowed(dst)) << "also with a default";
    EXPECT_EQ('#', dst[9]);
    each->getPrgTextDefW(1, 0, 1, def, dst, 60);
    EXPECT_EQ(kWideMessage, narrowed(dst));
    EXPECT_EQ('#', dst[44]) << "behind the message nothing is written";
    EXPECT_EQ('#', dst[58]);
    EXPECT_EQ(0, dst[59]);
  }
}

TEST(ProgramTexts, GrowsByFiveAndStaysUsableWithoutMemory) {
  ProgramTexts table(nullptr, 1, 0, 0);
  {
    FailingHeap heap(12);  // the array twice and ten texts
    for (unsigned int i = 0; i < 10; ++i) {
      EXPECT_EQ(1u, table.AddText(i, 0, std::to_string(i).c_str()));
    }
    EXPECT_EQ(0u, table.AddText(10, 0, "eleventh"));
  }
  {
    FailingHeap heap(1);
    EXPECT_EQ(0u, table.AddText(10, 0, "no memory for the text")) << "the array has grown";
  }
  EXPECT_EQ(1u, table.AddText(10, 0, "eleventh"));
  EXPECT_EQ("9", found(table, 9, 0));
  EXPECT_EQ("eleventh", found(table, 10, 0));
}

}  // namespace
