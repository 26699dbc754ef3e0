#include <memory>

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
  const std::string line = kNine + " 00 1F 20 41 7E 7F 80 FF 25 73 4A 4B 4C 4D 4E 4F   .. A~\x7F..%sJKLMNO\n";
  EXPECT_EQ(" len=   20\n" + line + kNine + " 50 51 52 0A" + std::string(36, ' ') + "   PQR.\n\n",
            dump(bytes, 20, 1));
  EXPECT_EQ(" len=   16\n" + line + "\n", dump(bytes, 16, 1)) << "no empty line behind full ones";
  EXPECT_EQ(" len=    0\n\n", dump(bytes, 0, 1));
  EXPECT_EQ(" len=   -5\n\n", dump(bytes, -5, 1));
  const std::string whole = dump(std::string(100, 'A').data(), 100, 1);
  EXPECT_EQ(" len=  100\n" + kNine + " 41", whole.substr(0, 23));
  EXPECT_EQ(11u + 4 * 77 + 1, whole.size()) << "64 bytes at most";
}

TEST(HexDump, EndsWhereItsRoomEnds) {
  const char bytes[] = "ABCDEFGHIJKLMNOPQRST";
  const std::string full = kNine + " 41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F 50   ABCDEFGHIJKLMNOP\n";
  const std::string tail = full + kNine + " 51 52 53 54", gap(39, ' ');
  // By the characters that may stand behind the length line.  Two more bytes are
  // kept; a line cut within its characters has its newline in one of them.
  const std::pair<unsigned int, std::string> cases[] = {
      {8, "\n"},
      {11, kNine + "\n"},
      {12, kNine + " 41\n"},
      {59, full.substr(0, 57) + "\n"},
      {60, full.substr(0, 60) + "\n\n"},
      {75, full.substr(0, 75) + "\n"},
      {76, full},
      {86, full + kNine + "\n"},
      {133, tail + "\n"},  // no room for the blanks of the missing bytes
      {138, tail + gap + "Q\n"},
      {142, tail + gap + "QRST\n\n"}};
  for (const auto& [limit, expected] : cases) {
    // What the kept bytes cannot take is cut from the end.
    EXPECT_EQ(" len=   20\n" + expected.substr(0, limit + 1), dump(bytes, 20, 1, 11 + limit + 2)) << limit;
  }
  for (unsigned int size = 1; size < 150; ++size) {
    EXPECT_LT(dump(bytes, 20, 1, size).size() + dump(bytes, 5, 2, size).size(), 2 * size);
  }
}

TEST(NumberDump, ListsUpToSixteenNumbers) {
  const int32_t numbers[] = {1, 3, 6, -2147483647 - 1, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17};
  EXPECT_EQ(" len=    3\n   1.3.6\n", dump(numbers, 3, 2));
  EXPECT_EQ(" len=   17\n   1.3.6.-2147483648.5.6.7.8.9.10.11.12.13.14.15.16\n", dump(numbers, 17, 2));
  EXPECT_EQ(" len=    0\n  \n", dump(numbers, 0, 2)) << "the last blank goes where a dot would stand";
  EXPECT_EQ(" len=    3\n\n", dump(numbers, 3, 3));
}

TEST(DataLine, HasItsTextInFrontAndIsCut) {
  const TestLog log;
  const std::string ab = " len=    2\n" + kNine + " 41 42" + std::string(45, ' ') + "AB\n\n";
  const auto withText = [](const std::string& text, const void* data) {
    return captured([&] { ZotOsvLogData(pstLog, 4, text.c_str(), data, 2, 1); }).out.substr(24);
  };
  EXPECT_EQ("ERROR f" + ab, withText("ERROR f", "AB"));
  EXPECT_EQ("ERROR f\npvData = NULL !!!", withText("ERROR f", nullptr));
  for (const size_t length : {232u, 242u, 243u, 1000u}) {
    EXPECT_EQ(std::string(232, 't') + ab, withText(std::string(length, 't'), "AB"));
  }
  const auto withFormat = [](const std::string& text, const void* data) {
    return captured([&] { ZotOsvvLogData(pstLog, 4, data, 2, 1, "%s", text.c_str()); }).out.substr(24);
  };
  EXPECT_EQ("TRACE f:" + ab, withFormat("TRACE f:", "AB"));
  EXPECT_EQ("TRACE f:\npvData = NULL !!!", withFormat("TRACE f:", nullptr));
  EXPECT_EQ(std::string(1270, 'x') + "\npvData =", withFormat(std::string(1270, 'x'), nullptr));
  EXPECT_EQ(std::string(1279, 'x'), withFormat(std::string(5000, 'x'), "AB"));
}

}  // namespace
