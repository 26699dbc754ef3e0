#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "log/LogInternal.h"
#include "support/LogFixture.h"

namespace {

using namespace zot_test;

const std::string kNine(9, ' ');

std::string dump(const void* data, long length, int mode, unsigned int size = 1280) {
  // A block of exactly this size, so that a write past its end is caught.
  const auto text = std::make_unique<char[]>(size);
  vPrepLogData(text.get(), size, data, length, mode);
  return text.get();
}

TEST(HexDump, ShowsFullAndPaddedLines) {
  const unsigned char bytes[] = {0x00, 0x1F, 0x20, 0x41, 0x7E, 0x7F, 0x80, 0xFF, '%', 's',
                                 'J',  'K',  'L',  'M',  'N',  'O',  'P',  'Q',  'R', 0x0A};
  EXPECT_EQ(" len=   20\n" + kNine +
                " 00 1F 20 41 7E 7F 80 FF 25 73 4A 4B 4C 4D 4E 4F   .. A~\x7F..%sJKLMNO\n" + kNine +
                " 50 51 52 0A" + std::string(36, ' ') + "   PQR.\n\n",
            dump(bytes, 20, 1));
  EXPECT_EQ(
      " len=   16\n" + kNine + " 00 1F 20 41 7E 7F 80 FF 25 73 4A 4B 4C 4D 4E 4F   .. A~\x7F..%sJKLMNO\n\n",
      dump(bytes, 16, 1))
      << "a multiple of 16 has no empty last line";
  EXPECT_EQ(" len=    0\n\n", dump(bytes, 0, 1));
  EXPECT_EQ(" len=   -5\n\n", dump(bytes, -5, 1));
}

TEST(HexDump, ReportsTheLengthAndShowsSixtyFourBytes) {
  const std::string bytes(100000, 'A');
  std::string line = kNine;
  for (int i = 0; i < 16; ++i) {
    line += " 41";
  }
  line += "   AAAAAAAAAAAAAAAA\n";
  EXPECT_EQ(" len=  100\n" + line + line + line + line + "\n", dump(bytes.data(), 100, 1));
  EXPECT_EQ(" len=100000\n" + line + line + line + line + "\n", dump(bytes.data(), 100000, 1));
}

TEST(HexDump, EndsWhereItsRoomEnds) {
  const char bytes[] = "ABCDEFGHIJKLMNOPQRST";
  const std::string head = " len=   20\n";
  const std::string full = kNine + " 41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F 50   ABCDEFGHIJKLMNOP\n";
  // By the characters that the line may have behind the length, the last two
  // bytes of the room being kept for newline and terminator.
  const struct {
    unsigned int limit;
    std::string expected;
  } cases[] = {
      {8, ""},
      {9, kNine},
      {11, kNine},
      {12, kNine + " 41"},
      {56, kNine + " 41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F"},
      {57, full.substr(0, 57)},
      {59, full.substr(0, 57)},
      {60, full.substr(0, 60) + "\n"},
      {61, full.substr(0, 61) + "\n"},
      {75, full.substr(0, 75) + "\n"},
      {76, full},
      {85, full},
      {86, full + kNine},
      {97, full + kNine + " 51 52 53"},
      {133, full + kNine + " 51 52 53 54"},  // the blanks for the missing bytes do not fit
      {136, full + kNine + " 51 52 53 54" + std::string(36, ' ')},
      {137, full + kNine + " 51 52 53 54" + std::string(39, ' ') + "\n"},
      {138, full + kNine + " 51 52 53 54" + std::string(39, ' ') + "Q\n"},
      {142, full + kNine + " 51 52 53 54" + std::string(39, ' ') + "QRST\n"},
  };
  for (const auto& c : cases) {
    const auto size = static_cast<unsigned int>(head.size()) + c.limit + 2;
    // A line that was cut at its characters has taken the last newline's place.
    const bool taken = c.expected.size() > c.limit;
    EXPECT_EQ(head + c.expected + (taken ? "" : "\n"), dump(bytes, 20, 1, size)) << c.limit;
  }
}

TEST(HexDump, SurvivesEverySize) {
  const std::string bytes(64, 'x');
  const std::string whole = dump(bytes.data(), 64, 1);
  EXPECT_EQ("", dump(bytes.data(), 64, 1, 1));
  EXPECT_EQ(" len=   64", dump(bytes.data(), 64, 1, 11));
  for (unsigned int size = 1; size < whole.size() + 5; ++size) {
    for (const int mode : {0, 1, 2}) {
      EXPECT_LT(dump(bytes.data(), 64, mode, size).size(), size);
    }
  }
}

TEST(NumberDump, ListsUpToSixteenNumbers) {
  const int32_t numbers[] = {1, 3, 6, -2147483647 - 1, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17};
  EXPECT_EQ(" len=    3\n   1.3.6\n", dump(numbers, 3, 2));
  EXPECT_EQ(" len=   17\n   1.3.6.-2147483648.5.6.7.8.9.10.11.12.13.14.15.16\n", dump(numbers, 17, 2));
  EXPECT_EQ(" len=    0\n  \n", dump(numbers, 0, 2)) << "the last blank goes where a dot would stand";
  EXPECT_EQ(" len=    1\n   3\n", dump(reinterpret_cast<const char*>(numbers) + 4, 1, 2));
  EXPECT_EQ(" len=    3\n\n", dump(numbers, 3, 0));
  EXPECT_EQ(" len=    3\n\n", dump(numbers, 3, 3));
}

TEST(DataLine, PutsTheTextInThePrefix) {
  const TestLog log;
  const auto line = [](const std::string& text, const void* data) {
    return captured([&] { ZotOsvLogData(pstLog, 4, text.c_str(), data, 2, 1); }).out.substr(21);
  };
  const std::string ab = " len=    2\n" + kNine + " 41 42" + std::string(45, ' ') + "AB\n\n";
  EXPECT_EQ(" - ERROR f" + ab, line("ERROR f", "AB"));
  EXPECT_EQ(" - ERROR f\npvData = NULL !!!", line("ERROR f", nullptr));
  for (const size_t length : {232u, 233u, 242u, 243u, 1000u}) {
    EXPECT_EQ(" - " + std::string(232, 't') + ab, line(std::string(length, 't'), "AB")) << length;
  }
}

TEST(DataLine, FollowsAFormattedMessage) {
  const TestLog log;
  const auto line = [](const std::string& text, const void* data) {
    return captured([&] { ZotOsvvLogData(pstLog, 4, data, 2, 1, "%s", text.c_str()); }).out.substr(24);
  };
  EXPECT_EQ("TRACE f:\npvData = NULL !!!", line("TRACE f:", nullptr));
  EXPECT_EQ("TRACE f: len=    2\n" + kNine + " 41 42" + std::string(45, ' ') + "AB\n\n",
            line("TRACE f:", "AB"));
  EXPECT_EQ(std::string(1270, 'x') + "\npvData =", line(std::string(1270, 'x'), nullptr));
  EXPECT_EQ(std::string(1279, 'x'), line(std::string(5000, 'x'), "AB"));
  EXPECT_EQ(std::string(1260, 'x') + " len=    2\n\n", line(std::string(1260, 'x'), "AB"))
      << "8 columns left";
  const char* const none = nullptr;
  EXPECT_EQ(" len=    0\n\n", captured([&] { ZotOsvvLogData(pstLog, 4, "", 0, 1, none); }).out.substr(24));
}

}  // namespace
