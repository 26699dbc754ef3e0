#include "multilang/ProgramTexts.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
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

TEST_F(ProgramTextsTest, StaysUsableWithoutMemory) {
  const std::string longText(1000, 'x');
  const struct {
    unsigned int granted;  // room for five entries, for short texts, for ten, for a long text
    const char* added;
  } cases[] = {{0, "0000000"}, {1, "0000000"}, {2, "1111100"}, {3, "1111110"}, {4, "1111111"}};
  for (const auto& c : cases) {
    table.ClearAllTexts();
    std::string added;
    {
      const FailingHeap heap(c.granted);
      for (unsigned int i = 0; i < 7; ++i) {
        added += std::to_string(table.AddText(i, 0, i < 6 ? "early" : longText.c_str()));
      }
    }
    EXPECT_EQ(c.added, added) << c.granted;
    EXPECT_EQ(1u, table.AddText(7, 0, "late"));
    for (unsigned int i = 0; i < 6; ++i) {
      EXPECT_EQ(added[i] == '1' ? "early" : std::to_string(i) + " 0 (Text missing)", found(i, 0));
    }
    EXPECT_EQ("late", found(7, 0));
  }
}

TEST_F(ProgramTextsTest, FindsTheFirstWithAndWithoutMemoryForAnIndex) {
  // Numbers that repeat; numbers apart; pairs that all meet in one place of an index.
  const auto pairOf = [](int kind, uint64_t i) -> uint64_t {
    return kind == 0 ? i % 7 << 32 | i % 5 : kind == 1 ? i << 32 | i * i % 11 : i * 0xF1DE83E19937733Du;
  };
  for (const int kind : {0, 1, 2}) {
    std::map<uint64_t, std::string> byPair;
    std::map<uint32_t, std::string> bySub;
    table.ClearAllTexts();
    for (uint64_t i = 1; i <= 301; ++i) {
      const std::string text = std::to_string(i);
      const auto sub = static_cast<uint32_t>(pairOf(kind, i));
      byPair.emplace(pairOf(kind, i), text);
      bySub.emplace(sub, text);
      table.AddText(static_cast<uint32_t>(pairOf(kind, i) >> 32), sub, text.c_str());
      if (i % 50 > 1) {
        continue;  // looks up after every 50th text, and after one more
      }
      const FailingHeap heap(i % 100 == 0 ? 0 : 100);
      for (const auto& [pair, first] : byPair) {
        ASSERT_EQ(first, found(static_cast<uint32_t>(pair >> 32), static_cast<uint32_t>(pair)));
      }
      for (const auto& [anySub, first] : bySub) {
        ASSERT_EQ(first, found(0x77777777, anySub, 0));
      }
      ASSERT_EQ("1000 1 (Text missing)", found(1000, 1));
    }
  }
}

}  // namespace
