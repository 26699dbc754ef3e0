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

// The file that docs/language-files.md shows, as a little-endian host writes it.
std::string documentedFile() {
  const std::string zeros48(48, '\0'), zeros84(84, '\0');
  return std::string(
             "\x03"
             "1.0\0\0\0\0\0\0\0\0"
             "\x01\0\0\0",
             16) +
         zeros48 +
         std::string(
             "\x02\0\0\0"
             "\x07\0\0\0"
             "\xA0\0\0\0",
             12) +
         zeros84 +
         std::string(
             "\x13\0\0\0"
             "\0\0\0\0"
             "\x05\0\0\0"
             "\0\0\0\0"
             "\x06&Apply",
             23) +
         std::string(
             "\x12\0\0\0"
             "\0\0\0\0"
             "\x05\0\0\0"
             "\x01\0\0\0"
             "\x05one\\n",
             22);
}

TEST_F(LanguageFile, BelongsToHostsOfOneByteOrder) {
  const std::string little = documentedFile();
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
  const std::string whole = oneForm(3, {first, second});
  const size_t firstEnd = 160 + first.size();
  const Table kept = load(whole);
  ASSERT_TRUE(kept);
  for (size_t size = 0; size < whole.size(); ++size) {
    SCOPED_TRACE(size);
    kept->ClearAllTexts();
    kept->AddText(8, 8, "before");
    EXPECT_EQ(nullptr, load(whole.substr(0, size)));
    EXPECT_EQ(nullptr, loader.loadProgramTexts(3, 0, 0, kept.get()));
    EXPECT_EQ(size < 160 ? "before" : "none", text(kept, 8, 8)) << "cleared once the form was found";
    EXPECT_EQ(size >= firstEnd ? "first" : "none", text(kept, 1, 0));
    EXPECT_EQ("none", text(kept, 2, 9));
  }
  EXPECT_EQ(kept.get(), (zot_test::writeFile("english.dat", whole + "more"),
                         loader.loadProgramTexts(3, 0, 0, kept.get())));
  EXPECT_EQ("second", text(kept, 2, 9));
}

TEST_F(LanguageFile, TheVersionIsExactlyThreeCharacters) {
  const std::string rest = oneForm(3, {textRecord(1, 0, "yes")}).substr(12);
  const auto withVersion = [&](const std::string& bytes) {
    std::string start = bytes;
    start.resize(12, '\0');
    return load(start + rest) != nullptr;
  };
  EXPECT_TRUE(
      withVersion("\3"
                  "1.0"));
  EXPECT_TRUE(
      withVersion("\3"
                  "1.0garbage"));
  for (const char* wrong : {"",
                            "\2"
                            "1.0",
                            "\3"
                            "1.1",
                            "\3"
                            "1,0",
                            "\4"
                            "1.0",
                            "\4"
                            "1.0a",
                            "\12"
                            "1.0",
                            "\xFF"
                            "1.0",
                            "1.0"}) {
    EXPECT_FALSE(withVersion(wrong)) << testing::PrintToString(wrong);
  }
}

TEST_F(LanguageFile, RecordsMayHoldUpTo268BytesAndNoMore) {
  const std::string longest(255, 'x');
  const auto sized = [](uint32_t size, const std::string& textField) {
    std::string body = unread(4) + number(4) + number(5) + textField;
    body.resize(size, '!');
    return number(size) + body;
  };
  const std::string filler = textRecord(9, 9, std::string(255, 'f'));
  const std::string after = textRecord(6, 6, "after");

  const Table full = load(oneForm(3, {filler, sized(268, shortString(longest)), after}));
  EXPECT_EQ(longest, text(full, 4, 5));
  EXPECT_EQ("after", text(full, 6, 6));
  EXPECT_EQ(nullptr, load(oneForm(3, {filler, sized(269, shortString(longest)), after})));
  EXPECT_EQ(nullptr, load(oneForm(3, {number(0xFFFFFFFF), after})));

  // A length beyond the record's end shows no byte of the record before it.
  EXPECT_EQ("ab", text(load(oneForm(3, {filler,
                                        sized(15,
                                              "\xFF"
                                              "ab"),
                                        after})),
                       4, 5));
  EXPECT_EQ("", text(load(oneForm(3, {filler, sized(13, "\5"), after})), 4, 5));
  EXPECT_EQ("", text(load(oneForm(3, {filler, sized(12, ""), after})), 4, 5));
  EXPECT_EQ("ab", text(load(oneForm(3, {filler,
                                        sized(40,
                                              "\2"
                                              "abcdef"),
                                        after})),
                       4, 5));
  const Table empty = load(oneForm(3, {filler, number(0), after}));
  EXPECT_EQ("", text(empty, 0, 0)) << "a record of no bytes is complete";
  EXPECT_EQ("after", text(empty, 6, 6));
}

TEST_F(LanguageFile, CountsAndOffsetsBeyondTheFileEndTheLoad) {
  const std::string record = textRecord(1, 0, "one");
  const auto file = [&](uint32_t forms, uint32_t texts, uint32_t offset) {
    return fileHeader(forms) + formRecord(texts, 3, offset) + record;
  };
  EXPECT_EQ("one", text(load(file(1, 1, 160)), 1, 0));
  EXPECT_EQ("none", text(load(file(1, 0, 160)), 1, 0)) << "no texts are wanted, so none is missing";
  EXPECT_EQ("one", text(load(file(0xFFFFFFFF, 1, 160)), 1, 0)) << "the search stops at its form";
  EXPECT_EQ(nullptr, load(file(0xFFFFFFFF, 1, 160), 4));
  EXPECT_EQ(nullptr, load(file(0, 1, 160))) << "the form lies behind the header's count";
  EXPECT_EQ(nullptr, load(file(1, 2, 160)));
  EXPECT_EQ(nullptr, load(file(1, 0xFFFFFFFF, 160)));
  for (const uint32_t offset : {161u, 164u, 177u, 180u, 4096u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(nullptr, load(file(1, 1, offset))) << offset;
  }
}

TEST_F(LanguageFile, FormsLieInAnyOrderAndTheFirstOfANumberCounts) {
  const std::string a = textRecord(1, 0, "a"), b = textRecord(1, 0, "b"), c = textRecord(1, 0, "c");
  const uint32_t texts = 64 + 3 * 96, each = static_cast<uint32_t>(a.size());
  const std::string bytes = fileHeader(3) + formRecord(1, 12, texts + 2 * each) + formRecord(1, 0, texts) +
                            formRecord(1, 12, texts + each) + a + b + c;
  EXPECT_EQ("c", text(load(bytes, 12), 1, 0));
  EXPECT_EQ("a", text(load(bytes, 0), 1, 0));
  EXPECT_EQ(nullptr, load(bytes, 13));
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
  EXPECT_STREQ("raw\\n", record.text) << "escapes are the table's business";
  EXPECT_EQ(0, loader.readElementText(file.get(), &record));
  EXPECT_STREQ("raw\\n", record.text);
}

TEST_F(LanguageFile, ConvertsALengthPrefixedTextInPlace) {
  const struct {
    std::string before;
    unsigned int size;
    std::string after;
  } cases[] = {
      {"\5hello##", 8, std::string("hello\0##", 8)},
      {"\5hello##", 6, std::string("hello\0##", 8)},
      {"\5hello##", 5, std::string("hell\0o##", 8)},
      {std::string("\0hello##", 8), 1, std::string("\0hello##", 8)},
      {"\xFFhello##", 8, std::string("hello##\0", 8)},
      {"\5hello##", 0, "\5hello##"},
  };
  for (auto c : cases) {
    SCOPED_TRACE(c.size);
    loader.convertDelphiString(c.before.data(), c.size);
    EXPECT_EQ(c.after, c.before);
  }
  loader.convertDelphiString(nullptr, 8);
}

}  // namespace
