#include "multilang/ZOT_MultiLanguage.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "multilang/LanguageFileBytes.h"
#include "support/FailingHeap.h"
#include "support/TemporaryDirectory.h"

namespace {

using namespace std::string_literals;
using zot_test::writeFile;
using Table = std::unique_ptr<ProgramTexts>;

std::string text(const Table& table, unsigned int element, unsigned int sub = 0) {
  return table ? table->getPrgTextDefA(element, sub, 1, "none", nullptr, 0) : "no table";
}

class Loader : public zot_test::TemporaryDirectory {
 protected:
  Loader() { loader.SetLanguageFilePath(whole().c_str()); }

  static void write(const std::string& name, const std::string& word) {
    writeFile(name, oneForm(3, {textRecord(1, 0, word), textRecord(2, 0, word + "2"),
                                textRecord(2, 1, word + "3")}));
  }
  Table load(unsigned int element = 0, signed char onlyElement = 0, unsigned int form = 3) {
    return Table(loader.loadProgramTexts(form, element, onlyElement, nullptr));
  }
  Table load(const std::string& english, unsigned int form = 3) {
    writeFile("english.dat", english);
    return load(0, 0, form);
  }
  static Table empty(ZOT_MultiLanguage* parent) { return std::make_unique<ProgramTexts>(parent, 3, 0, 0); }

  ZOT_MultiLanguage loader;
};

TEST_F(Loader, NamesTheFileOfEachLanguageAndFallsBackToEnglish) {
  const auto path = [](unsigned int language, const std::string& baseName) {
    ZOT_MultiLanguage fresh;
    fresh.SetLanguageFileBaseName(baseName.c_str());
    return std::string(fresh.buildFilePathName(language));
  };
  for (const unsigned int language : {0u, 1u, 11u, 12u, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ("english.dat", path(language, "")) << "no file is there yet";
    EXPECT_EQ("texts.en", path(language, "texts"));
  }
  const char* languages[][2] = {{".de", "deutsch.dat"}, {".en", "english.dat"}, {".es", "spain.dat"},
                                {".fr", "french.dat"},  {".it", "italian.dat"}, {".se", "swedish.dat"},
                                {".dk", "danish.dat"},  {".no", "norweg.dat"},  {".fi", "finnish.dat"},
                                {".nl", "dutch.dat"},   {".pl", "polnisch.dat"}};
  unsigned int language = 0;
  for (const auto& [extension, name] : languages) {
    writeFile(name, "");
    writeFile(std::string("texts") + extension, "");
    EXPECT_EQ(name, path(++language, ""));
    EXPECT_EQ(std::string("texts") + extension, path(language, "texts"));
  }
  EXPECT_EQ(2u, loader.GetOsLanguage());
}

TEST_F(Loader, JoinsTheDirectoryWithOneSeparator) {
  const char* cases[][2] = {{"/opt/l", "/opt/l/e"}, {"/opt/l/", "/opt/l/e"}, {"l\\", "l\\e"}, {"", "e"}};
  loader.SetLanguageFileBaseName("not looked at beside a file name");
  loader.SetLanguageFileName("e");
  for (const auto& [directory, path] : cases) {
    loader.SetLanguageFilePath(directory);
    EXPECT_STREQ(path, loader.buildFilePathName(1));
  }
}

TEST_F(Loader, KeepsThePathUntilASetterIsCalled) {
  const char* first = loader.buildFilePathName(2);
  write("deutsch.dat", "eins");
  loader.SetLanguageFileName(nullptr);
  loader.SetLanguageFileBaseName(nullptr);
  loader.SetLanguageFilePath(nullptr);
  loader.SetLanguageId(0);
  EXPECT_EQ(first, loader.buildFilePathName(1)) << "null and the same language change nothing";
  EXPECT_EQ(whole() + "/english.dat", first) << "and the number is not looked at";
  loader.SetLanguageId(1);
  EXPECT_EQ(whole() + "/deutsch.dat", loader.buildFilePathName(1));
}

TEST_F(Loader, AChangeOfLanguageReloadsEveryTableInPlace) {
  write("english.dat", "one");
  write("deutsch.dat", "eins");
  const Table all = load(2, 0), second = load(2, 1), nobody = load(7, 1), last = load();
  EXPECT_EQ("one", text(all, 1)) << "the element counts only when it is alone";
  EXPECT_EQ("none", text(nobody, 2)) << "no text of the element is no failure";
  loader.SetLanguageId(1);
  EXPECT_EQ("eins", text(all, 1));
  EXPECT_EQ("none", text(second, 1));
  EXPECT_EQ("eins2", text(second, 2));
  EXPECT_EQ("eins3", text(last, 2, 1));

  write("deutsch.dat", "zwei");
  loader.SetLanguageId(1);
  EXPECT_EQ("eins", text(last, 1)) << "the same number again does nothing";
  writeFile("deutsch.dat", oneForm(3, {textRecord(1, 0, "drei"), number(269)}));
  EXPECT_EQ(0u, loader.RefreshAllRegisteredChildren());
  EXPECT_EQ("drei", text(all, 1)) << "what came before the damage";
  EXPECT_EQ("none", text(all, 2));
  EXPECT_EQ("drei", text(last, 1)) << "one failure doesn't stop the others";
  loader.SetLanguageId(4);
  EXPECT_EQ("one", text(all, 1)) << "no French file";
}

TEST_F(Loader, RegistryGrowsByTwoReusesPlacesAndSurvivesLosingItsMemory) {
  write("english.dat", "one");
  const Table forgotten = load(), dummy(loader.GetDummyProgramTexts());
  const Table a = empty(&loader), b = empty(&loader), c = empty(&loader);
  Table adopted = empty(nullptr);
  loader.ptListClear();
  loader.unregisterChild(nullptr);
  EXPECT_EQ(0u, loader.ptListAdd(nullptr));
  {
    FailingHeap heap(1);
    EXPECT_EQ(1u, loader.ptListAdd(a.get()));
    EXPECT_EQ(1u, loader.ptListAdd(a.get()));
    loader.unregisterChild(a.get());
    EXPECT_EQ(1u, loader.ptListAdd(adopted.get())) << "both places are free again";
    EXPECT_EQ(1u, loader.ptListAdd(b.get()));
    adopted.reset();
    EXPECT_EQ(1u, loader.ptListAdd(c.get())) << "in the place of one that came without a parent and went";
    EXPECT_EQ(0u, loader.ptListAdd(a.get()));
    EXPECT_EQ(1u, loader.RefreshAllRegisteredChildren()) << "the registry is lost, so there is nothing to do";
  }
  write("english.dat", "new");
  EXPECT_EQ(1u, loader.ptListAdd(c.get()));
  EXPECT_EQ(1u, loader.RefreshAllRegisteredChildren());
  EXPECT_EQ("new", text(c, 1));
  EXPECT_EQ("none", text(b, 1));
  EXPECT_EQ("none", text(dummy, 1));
  EXPECT_EQ("one", text(forgotten, 1));
}

TEST_F(Loader, RefusesWhatItCannotGuardAndIsForgottenByWhatAClientTakesOut) {
  const auto other = [](const FailingHeap&) { return std::make_unique<ZOT_MultiLanguage>(); };
  auto lockless = other(FailingHeap(0)), gone = other(FailingHeap(1));
  Table stranger = empty(nullptr), table = empty(gone.get());
  empty(lockless.get()).reset();
  EXPECT_EQ(0u, lockless->ptListAdd(stranger.get()));
  gone->ptListAdd(table.get());
  loader.unregisterChild(table.get());
  gone->unregisterChild(table.get());
  gone.reset();
  loader.ptListAdd(table.get());
  table.reset();
  EXPECT_EQ(1u, loader.RefreshAllRegisteredChildren()) << "its new loader has seen it go";
}

TEST_F(Loader, ACancelledThreadFinishesItsLoad) {
  writeFile("english.dat", oneForm(3, std::vector<std::string>(200, textRecord(1, 0, "one"))));
  std::atomic<int> loads{0};
  const auto work = [](void* count) -> void* {
    for (ZOT_MultiLanguage own;; pthread_testcancel()) {
      Table(own.loadProgramTexts(3, 0, 0, nullptr));
      ++*static_cast<std::atomic<int>*>(count);
    }
  };
  for (int round = 1; round <= 50; ++round) {
    pthread_t thread;
    ASSERT_EQ(0, pthread_create(&thread, nullptr, work, &loads));
    while (loads < 3 * round) {
    }
    EXPECT_EQ(0, pthread_cancel(thread));
    EXPECT_EQ(0, pthread_join(thread, nullptr));
  }
}

TEST_F(Loader, WithoutMemoryTheresAWholeTableOrNone) {
  write("english.dat", "one");
  for (unsigned int granted = 0; granted < 6; ++granted) {
    Table table;
    {
      ZOT_MultiLanguage other;
      const FailingHeap heap(granted);
      table.reset(other.loadProgramTexts(3, 0, 0, nullptr));
    }
    // Path, mutex, entries, texts.  The table outlives its loader, registered or not.
    EXPECT_EQ(granted < 4 ? "no table" : "one3", text(table, 2, 1)) << granted;
  }
  {
    const FailingHeap heap;
    EXPECT_EQ(nullptr, loader.buildFilePathName(2));
    loader.SetLanguageFilePath("/nowhere");
  }
  EXPECT_EQ(whole() + "/english.dat", loader.buildFilePathName(2)) << "built later, the directory as it was";
}

TEST_F(Loader, ReloadsWhileOtherThreadsLookUpAndTablesComeAndGo) {
  write("english.dat", "one");
  write("deutsch.dat", "eins");
  const Table table = load();
  std::atomic<int> lookups{0}, wrong{0}, passed{0};
  std::atomic<bool> done{false};
  const auto lookUp = [&] {
    for (; !done; ++lookups) {
      char copy[64];
      table->getPrgTextDefA(2, 1, 1, nullptr, copy, sizeof copy);
      wrong += std::string("one3") != copy && std::string("eins3") != copy;
    }
  };
  const auto comeAndGo = [&] {
    for (; !done; ++passed) {
      loader.ptListAdd(empty(&loader).get());
    }
  };
  std::thread threads[] = {std::thread(lookUp), std::thread(lookUp), std::thread(comeAndGo),
                           std::thread(comeAndGo)};
  for (unsigned int i = 0; i < 200 || lookups < 200 || passed < 200; ++i) {
    loader.SetLanguageId(1 + i % 2);
  }
  done = true;
  for (auto& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(0, wrong);
}

TEST_F(Loader, ReadsFilesInTheByteOrderOfItsHost) {
  // The file that docs/language-files.md shows, as a little-endian host writes it.
  const std::string little = "\0031.0\0\0\0\0\0\0\0\0\1\0\0\0"s + std::string(48, '\0') +
                             "\2\0\0\0\7\0\0\0\xA0\0\0\0"s + std::string(84, '\0') +
                             "\x13\0\0\0\0\0\0\0\5\0\0\0\0\0\0\0\6&Apply"s +
                             "\x12\0\0\0\0\0\0\0\5\0\0\0\1\0\0\0\5one\\n"s;
  std::string big = little;
  for (const size_t at : {12u, 64u, 68u, 72u, 160u, 168u, 172u, 183u, 191u, 195u}) {
    std::reverse(&big[at], &big[at] + 4);
  }
  const bool isLittle = std::endian::native == std::endian::little;
  const Table ours = load(isLittle ? little : big, 7);
  EXPECT_EQ("&Apply", text(ours, 5, 0));
  EXPECT_EQ("one\n", text(ours, 5, 1));
  EXPECT_EQ(nullptr, load(isLittle ? big : little, 7));
  EXPECT_EQ(nullptr, load(isLittle ? big : little, 0x07000000)) << "form found, texts far outside";
}

TEST_F(Loader, EveryCutOfAFileEndsTheLoadAndKeepsWhatWasRead) {
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

TEST_F(Loader, TheVersionIsExactlyThreeCharacters) {
  const std::string rest = formRecord(0, 3, 160);
  EXPECT_NE(nullptr, load(fileHeader(1, "\0031.0garbage") + rest));
  for (const auto& wrong :
       {""s, "1.0"s, "\0021.0"s, "\0031.1"s, "\0031,0"s, "\0041.0"s, "\0041.0\0"s, "\3771.0"s}) {
    EXPECT_EQ(nullptr, load(fileHeader(1, wrong) + rest)) << testing::PrintToString(wrong);
  }
}

TEST_F(Loader, TextRecordsMayHoldUpTo268BytesAndNoMore) {
  const std::string before(255, 'f'), longest(255, 'x');
  const auto read = [&](uint32_t size, const std::string& textField) {
    std::string body = number(0) + number(4) + number(5) + textField;
    body.resize(std::min(size, 300u), '!');
    const auto table =
        load(oneForm(3, {textRecord(9, 9, before), number(size) + body, textRecord(6, 6, "z")}));
    return text(table, 4, 5) + ", " + text(table, 6, 6);
  };
  EXPECT_EQ(longest + ", z", read(268, "\377" + longest));
  EXPECT_EQ("no table, no table", read(269, "\377" + longest));
  EXPECT_EQ("no table, no table", read(0xFFFFFFFF, "\1a"));
  EXPECT_EQ("ab, z", read(40, "\2abcdef"));
  EXPECT_EQ("ab, z", read(15, "\377ab")) << "nothing of the record before";
  EXPECT_EQ("a, z", read(40, "\6a\\\0bcd"s)) << "a zero byte ends the text, also as an escape's letter";
  EXPECT_EQ(", z", read(13, "\5"));
  EXPECT_EQ(", z", read(12, ""));
  EXPECT_EQ("", text(load(oneForm(3, {number(0)})), 0, 0)) << "a record of no bytes is complete";
}

TEST_F(Loader, FormsMayBeLargeAndFarApart) {
  std::vector<std::string> records;
  const auto textOf = [](uint32_t i) { return std::to_string(i) + std::string(i % 250, 'x'); };
  for (uint32_t i = 0; i < 300; ++i) {
    records.push_back(textRecord(i, 0, textOf(i)));
  }
  const Table table = load(oneForm(3, records));
  for (uint32_t i = 0; i < 300; ++i) {
    EXPECT_EQ(textOf(i), text(table, i));
  }
  const std::string far = fileHeader(2) + formRecord(0, 1, 0) + formRecord(1, 3, 50000);
  EXPECT_EQ("far", text(load(far + std::string(50000 - far.size(), '!') + textRecord(1, 0, "far")), 1));
}

TEST_F(Loader, CountsAndOffsetsBeyondTheFileEndTheLoad) {
  const auto oneText = [&](uint32_t forms, uint32_t texts, uint32_t offset, unsigned int wanted = 3) {
    const std::string form = formRecord(texts, 3, offset) + textRecord(1, 0, "one");
    return text(load(fileHeader(forms) + form, wanted), 1, 0);
  };
  EXPECT_EQ("one", oneText(1, 1, 160));
  EXPECT_EQ("none", oneText(1, 0, 160)) << "no texts are wanted, so none is missing";
  EXPECT_EQ("one", oneText(0xFFFFFFFF, 1, 160)) << "the search stops at its form";
  EXPECT_EQ("no table", oneText(0xFFFFFFFF, 1, 160, 4));
  EXPECT_EQ("no table", oneText(0, 1, 160)) << "the form lies behind the header's count";
  EXPECT_EQ("no table", oneText(1, 2, 160));
  EXPECT_EQ("no table", oneText(1, 0xFFFFFFFF, 160));
  for (const uint32_t offset : {161u, 164u, 177u, 180u, 4096u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ("no table", oneText(1, 1, offset)) << offset;
  }
  const std::string twice = formRecord(1, 3, 256) + formRecord(9, 3, 0) + textRecord(1, 0, "first");
  EXPECT_EQ("first", text(load(fileHeader(2) + twice), 1, 0));
}

TEST_F(Loader, FilesCanBeReadRecordByRecord) {
  writeFile("english.dat", oneForm(3, {textRecord(1, 2, "raw\\n"), number(269)}));
  tMlForms form;
  tMlTexte record = {};
  EXPECT_EQ(nullptr, loader.openFormId(3, nullptr));
  EXPECT_EQ(nullptr, loader.openFormId(4, &form));
  const std::unique_ptr<FILE, int (*)(FILE*)> file(loader.openFormId(3, &form), std::fclose);
  ASSERT_TRUE(file);
  EXPECT_EQ(2u, form.textCount);
  EXPECT_EQ(1, loader.readElementText(file.get(), &record));
  EXPECT_EQ(0, loader.readElementText(file.get(), &record));
  EXPECT_EQ(1u, record.element);
  EXPECT_EQ(2u, record.subElement);
  EXPECT_STREQ("raw\\n", record.text) << "with its escapes, and unchanged by a failure";
}

TEST_F(Loader, ConvertsALengthPrefixedTextInPlace) {
  const struct {
    std::string before;
    unsigned int size;
    std::string after;
  } cases[] = {{"\5hello##", 8, "hello\0##"s},   {"\5hello##", 6, "hello\0##"s},
               {"\5hello##", 5, "hell\0o##"s},   {"\0hello##"s, 1, "\0hello##"s},
               {"\377hello##", 8, "hello##\0"s}, {"\5hello##", 0, "\5hello##"}};
  for (auto c : cases) {
    loader.convertDelphiString(c.before.data(), c.size);
    EXPECT_EQ(c.after, c.before) << c.size;
  }
}

}  // namespace
