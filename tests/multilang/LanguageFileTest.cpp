#include "multilang/LanguageFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <memory>
#include <string>

#include "multilang/LanguageFileBytes.h"
#include "multilang/ZOT_MultiLanguage.h"
#include "support/TemporaryDirectory.h"

namespace {

using Table = std::unique_ptr<ProgramTexts>;

class LanguageFile : public zot_test::TemporaryDirectory {
 protected:
  // A new table with the form's texts, or null.
  Table load(const std::string& bytes, unsigned int form = 3) {
    zot_test::writeFile("english.dat", bytes);
    return Table(loader.loadProgramTexts(form, 0, 0, nullptr));
  }

  ZOT_MultiLanguage loader;
};

std::string text(const Table& table, unsigned int element, unsigned int sub) {
  return table ? table->getPrgTextDefA(element, sub, 1, "none", nullptr, 0) : "no table";
}

std::string fromHex(const std::string& digits) {
  std::string bytes;
  for (size_t i = 0; i < digits.size(); i += 2) {
    bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
  }
  return bytes;
}

TEST_F(LanguageFile, BelongsToHostsOfOneByteOrder) {
  // The file that docs/language-files.md shows, as a little-endian host writes it.
  const std::string header = fromHex("03312e30000000000000000001000000") + std::string(48, '\0');
  const std::string form = fromHex("0200000007000000a0000000") + std::string(84, '\0');
  const std::string little = header + form + fromHex("13000000000000000500000000000000") + "\6&Apply" +
                             fromHex("12000000000000000500000001000000") + "\5one\\n";
  std::string big = little;
  for (const size_t at : {12u, 64u, 68u, 72u, 160u, 168u, 172u, 183u, 191u, 195u}) {
    std::reverse(&big[at], &big[at] + 4);
  }
  const bool isLittle = std::endian::native == std::endian::little;
  const Table ours = load(isLittle ? little : big, 7);
  EXPECT_EQ("&Apply", text(ours, 5, 0));
  EXPECT_EQ("one\n", text(ours, 5, 1));
  EXPECT_EQ(nullptr, load(isLittle ? big : little, 7));
  EXPECT_EQ(nullptr, load(isLittle ? big : little, 0x07000000))
      << "its form found, its texts lie far outside";
}

TEST_F(LanguageFile, EveryCutEndsTheLoadAndKeepsWhatWasRead) {
  const std::string first = textRecord(1, 0, "first"), second = textRecord(2, 9, "second");
  const std::string uncut = oneForm(3, {first, second});
  const Table kept = load(uncut + "more");
  EXPECT_EQ("second", text(kept, 2, 9));
  for (size_t size = 0; size < uncut.size(); ++size) {
    SCOPED_TRACE(size);
    kept->ClearAllTexts();
    kept->AddText(8, 8, "before");
    EXPECT_EQ(nullptr, load(uncut.substr(0, size)));
    EXPECT_EQ(nullptr, loader.loadProgramTexts(3, 0, 0, kept.get()));
    EXPECT_EQ(size < 160 ? "before" : "none", text(kept, 8, 8)) << "cleared once the form was found";
    EXPECT_EQ(size >= 160 + first.size() ? "first" : "none", text(kept, 1, 0));
    EXPECT_EQ("none", text(kept, 2, 9));
  }
}

TEST_F(LanguageFile, TheVersionIsExactlyThreeCharacters) {
  const std::string rest = formRecord(0, 3, 160);
  EXPECT_NE(nullptr, load(fileHeader(1, "\0031.0garbage") + rest));
  for (const char* wrong : {"", "1.0", "\0021.0", "\0031.1", "\0031,0", "\0041.0", "\0041.0a", "\3771.0"}) {
    EXPECT_EQ(nullptr, load(fileHeader(1, wrong) + rest)) << testing::PrintToString(wrong);
  }
  EXPECT_EQ(nullptr, load(fileHeader(1, std::string("\0041.0\0", 5)) + rest));
}

TEST_F(LanguageFile, RecordsMayHoldUpTo268BytesAndNoMore) {
  const std::string longest(255, 'x');
  // What lies behind a record's end is not the text of the record before it.
  const struct {
    uint32_t size;
    std::string textField, text;
  } cases[] = {{268, "\377" + longest, longest},
               {269, "\377" + longest, "no table"},
               {0xFFFFFFFF, "", "no table"},
               {40, "\2abcdef", "ab"},
               {15, "\377ab", "ab"},
               {13, "\5", ""},
               {12, "", ""}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.size);
    std::string body = unread(4) + number(4) + number(5) + c.textField;
    body.resize(c.size < 300 ? c.size : body.size(), '!');
    const Table table = load(oneForm(
        3, {textRecord(9, 9, std::string(255, 'f')), number(c.size) + body, textRecord(6, 6, "after")}));
    EXPECT_EQ(c.text, text(table, 4, 5));
    EXPECT_EQ(c.text == "no table" ? "no table" : "after", text(table, 6, 6));
  }
  EXPECT_EQ("", text(load(oneForm(3, {number(0)})), 0, 0)) << "a record of no bytes is complete";
}

TEST_F(LanguageFile, CountsAndOffsetsBeyondTheFileEndTheLoad) {
  const std::string record = textRecord(1, 0, "one");
  const auto file = [&](uint32_t forms, uint32_t texts, uint32_t offset) {
    return fileHeader(forms) + formRecord(texts, 3, offset) + record;
  };
  EXPECT_EQ("one", text(load(file(1, 1, 160)), 1, 0));
  EXPECT_EQ("none", text(load(file(1, 0, 160)), 1, 0)) << "no texts are wanted, so none is missing";
  EXPECT_EQ("one", text(load(file(0xFFFFFFFF, 1, 160)), 1, 0)) << "the search stops at its form";
  EXPECT_EQ("one", text(load(fileHeader(2) + formRecord(1, 3, 256) + formRecord(9, 3, 0) + record), 1, 0));
  EXPECT_EQ(nullptr, load(file(0xFFFFFFFF, 1, 160), 4));
  EXPECT_EQ(nullptr, load(file(0, 1, 160))) << "the form lies behind the header's count";
  EXPECT_EQ(nullptr, load(file(1, 2, 160)));
  EXPECT_EQ(nullptr, load(file(1, 0xFFFFFFFF, 160)));
  for (const uint32_t offset : {161u, 164u, 177u, 180u, 4096u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(nullptr, load(file(1, 1, offset))) << offset;
  }
}

TEST_F(LanguageFile, CanBeReadRecordByRecord) {
  zot_test::writeFile("english.dat", oneForm(3, {textRecord(1, 2, "raw\\n"), number(269)}));
  tMlForms form;
  tMlTexte record = {};
  EXPECT_EQ(nullptr, loader.openFormId(3, nullptr));
  EXPECT_EQ(nullptr, loader.openFormId(4, &form));
  const OpenFile file(loader.openFormId(3, &form));
  ASSERT_TRUE(file);
  EXPECT_EQ(2u, form.textCount);
  EXPECT_EQ(0, loader.readElementText(file.get(), nullptr));
  EXPECT_EQ(0, loader.readElementText(nullptr, &record));
  EXPECT_EQ(1, loader.readElementText(file.get(), &record));
  EXPECT_EQ(1u, record.element);
  EXPECT_EQ(2u, record.subElement);
  EXPECT_EQ(0, loader.readElementText(file.get(), &record));
  EXPECT_STREQ("raw\\n", record.text) << "with its escapes, and unchanged by a failure";
}

TEST_F(LanguageFile, ConvertsALengthPrefixedTextInPlace) {
  const struct {
    const char* before;  // 8 bytes each
    unsigned int size;
    const char* after;
  } cases[] = {{"\5hello##", 8, "hello\0##"}, {"\5hello##", 6, "hello\0##"},   {"\5hello##", 5, "hell\0o##"},
               {"\0hello##", 1, "\0hello##"}, {"\377hello##", 8, "hello##\0"}, {"\5hello##", 0, "\5hello##"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.size);
    std::string buffer(c.before, 8);
    loader.convertDelphiString(buffer.data(), c.size);
    EXPECT_EQ(std::string(c.after, 8), buffer);
  }
  loader.convertDelphiString(nullptr, 8);
}

}  // namespace
