#include "multilang/ZOT_MultiLanguage.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>

#include "multilang/LanguageFileBytes.h"
#include "support/FailingHeap.h"
#include "support/TemporaryDirectory.h"

namespace {

using zot_test::writeFile;
using Table = std::unique_ptr<ProgramTexts>;

std::string text(ProgramTexts& table, unsigned int element, unsigned int sub = 0) {
  return table.getPrgTextDefA(element, sub, 1, "none", nullptr, 0);
}

std::string text(const Table& table, unsigned int element, unsigned int sub = 0) {
  return table ? text(*table, element, sub) : "no table";
}

class Loader : public zot_test::TemporaryDirectory {
 protected:
  Loader() { loader.SetLanguageFilePath(whole().c_str()); }

  static void write(const std::string& name, const std::string& word) {
    writeFile(name, oneForm(3, {textRecord(1, 0, word), textRecord(2, 0, word + "2"),
                                textRecord(2, 1, word + "3")}));
  }
  Table load(unsigned int element = 0, signed char onlyElement = 0) {
    return Table(loader.loadProgramTexts(3, element, onlyElement, nullptr));
  }

  ZOT_MultiLanguage loader;
};

TEST_F(Loader, NamesTheFileOfEachLanguageAndFallsBackToEnglish) {
  const char* languages[][2] = {{".de", "deutsch.dat"}, {".en", "english.dat"}, {".es", "spain.dat"},
                                {".fr", "french.dat"},  {".it", "italian.dat"}, {".se", "swedish.dat"},
                                {".dk", "danish.dat"},  {".no", "norweg.dat"},  {".fi", "finnish.dat"},
                                {".nl", "dutch.dat"},   {".pl", "polnisch.dat"}};
  unsigned int language = 0;
  for (const auto& [extension, name] : languages) {
    SCOPED_TRACE(name);
    ++language;
    ZOT_MultiLanguage fresh;
    EXPECT_STREQ("english.dat", fresh.buildFilePathName(language)) << "no file of this language yet";
    writeFile(name, "");
    fresh.SetLanguageFilePath("");
    EXPECT_STREQ(name, fresh.buildFilePathName(language));
    fresh.SetLanguageFileBaseName("texts");
    EXPECT_STREQ("texts.en", fresh.buildFilePathName(language));
    writeFile(std::string("texts") + extension, "");
    fresh.SetLanguageFileBaseName("texts");
    EXPECT_EQ(std::string("texts") + extension, fresh.buildFilePathName(language));
    fresh.SetLanguageFileName("any.name");
    EXPECT_STREQ("any.name", fresh.buildFilePathName(language)) << "before base and default names";
  }
  for (const unsigned int other : {0u, 12u, 0x80000000u, 0xFFFFFFFFu}) {
    ZOT_MultiLanguage fresh;
    EXPECT_STREQ("english.dat", fresh.buildFilePathName(other));
    fresh.SetLanguageFileBaseName("texts");
    EXPECT_STREQ("texts.en", fresh.buildFilePathName(other));
  }
  EXPECT_EQ(2u, loader.GetOsLanguage());
}

TEST_F(Loader, JoinsTheDirectoryWithOneSeparator) {
  const char* cases[][2] = {{"/opt/l", "/opt/l/e"}, {"/opt/l/", "/opt/l/e"}, {"l\\", "l\\e"}, {"", "e"}};
  for (const auto& [directory, path] : cases) {
    loader.SetLanguageFilePath(directory);
    loader.SetLanguageFileName("e");
    EXPECT_STREQ(path, loader.buildFilePathName(2));
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
  EXPECT_EQ(nullptr, loader.loadProgramTexts(4, 0, 0, nullptr));
  load().reset();
  loader.SetLanguageId(1);
  EXPECT_EQ("eins", text(all, 1));
  EXPECT_EQ("none", text(second, 1));
  EXPECT_EQ("eins2", text(second, 2));
  EXPECT_EQ("eins3", text(last, 2, 1));

  write("deutsch.dat", "zwei");
  loader.SetLanguageId(1);
  EXPECT_EQ("eins", text(last, 1)) << "the same number again does nothing";
  EXPECT_EQ(1u, loader.RefreshAllRegisteredChildren());
  EXPECT_EQ("zwei", text(last, 1));

  writeFile("deutsch.dat", oneForm(3, {textRecord(1, 0, "drei"), number(269)}));
  EXPECT_EQ(0u, loader.RefreshAllRegisteredChildren());
  EXPECT_EQ("drei", text(all, 1)) << "what came before the damage";
  EXPECT_EQ("none", text(all, 2));
  EXPECT_EQ("drei", text(last, 1)) << "one failure doesn't stop the others";
  loader.SetLanguageId(4);
  EXPECT_EQ("one", text(all, 1)) << "no French file";
}

TEST_F(Loader, LoaderAndTablesForgetEachOtherInEitherOrder) {
  write("english.dat", "one");
  auto other = std::make_unique<ZOT_MultiLanguage>();
  const Table orphan(other->loadProgramTexts(3, 0, 0, nullptr));
  delete other->loadProgramTexts(3, 0, 0, nullptr);
  EXPECT_EQ(1u, other->RefreshAllRegisteredChildren());
  other.reset();
  EXPECT_EQ("one", text(orphan, 1));

  const Table forgotten = load(), twice = load();
  loader.ptListClear();
  loader.unregisterChild(nullptr);
  EXPECT_EQ(0u, loader.ptListAdd(nullptr));
  EXPECT_EQ(1u, loader.ptListAdd(twice.get()));
  EXPECT_EQ(1u, loader.ptListAdd(twice.get()));
  const std::unique_ptr<DummyProgramTexts> dummy(loader.GetDummyProgramTexts());
  write("english.dat", "new");
  EXPECT_EQ(1u, loader.RefreshAllRegisteredChildren());
  EXPECT_EQ("one", text(forgotten, 1));
  EXPECT_EQ("new", text(twice, 1));
  EXPECT_EQ("none", text(*dummy, 1));
  loader.unregisterChild(twice.get());
  write("english.dat", "newer");
  EXPECT_EQ(1u, loader.RefreshAllRegisteredChildren());
  EXPECT_EQ("new", text(twice, 1)) << "both of its places are free";
}

TEST_F(Loader, RegistryGrowsByTwoReusesPlacesAndSurvivesLosingItsMemory) {
  write("english.dat", "one");
  ProgramTexts a(&loader, 3, 0, 0), b(&loader, 3, 0, 0), c(&loader, 3, 0, 0);
  auto adopted = std::make_unique<ProgramTexts>(nullptr, 3, 0, 0);
  {
    FailingHeap heap(1);
    EXPECT_EQ(1u, loader.ptListAdd(adopted.get()));
    EXPECT_EQ(1u, loader.ptListAdd(&b));
    adopted.reset();
    EXPECT_EQ(1u, loader.ptListAdd(&c)) << "in the place of one that came without a parent and went";
    EXPECT_EQ(0u, loader.ptListAdd(&a));
    EXPECT_EQ(1u, loader.RefreshAllRegisteredChildren()) << "the registry is lost, so there is nothing to do";
  }
  EXPECT_EQ("none", text(b, 1));
  EXPECT_EQ(1u, loader.ptListAdd(&c));
  EXPECT_EQ(1u, loader.RefreshAllRegisteredChildren());
  EXPECT_EQ("one", text(c, 1));
}

TEST_F(Loader, WithoutMemoryNothingIsLost) {
  write("english.dat", "one");
  {
    FailingHeap heap;
    EXPECT_EQ(nullptr, loader.buildFilePathName(2));
    EXPECT_EQ(nullptr, loader.loadProgramTexts(3, 0, 0, nullptr));
    loader.SetLanguageFilePath("/nowhere");
  }
  EXPECT_EQ(whole() + "/english.dat", loader.buildFilePathName(2)) << "built later, the directory as it was";
  {
    FailingHeap heap(4);  // the mutex, the array and two of three texts
    EXPECT_EQ(nullptr, loader.loadProgramTexts(3, 0, 0, nullptr)) << "no table pretends to be whole";
  }
  auto other = std::make_unique<ZOT_MultiLanguage>();
  other->buildFilePathName(2);
  std::unique_ptr<FailingHeap> heap(new FailingHeap(5));  // everything but the registry
  const Table unregistered(other->loadProgramTexts(3, 0, 0, nullptr));
  heap.reset();
  other.reset();
  EXPECT_EQ("one", text(unregistered, 1)) << "and it does not call its loader any more";
}

TEST_F(Loader, ReloadsWhileOtherThreadsLookUpAndTablesComeAndGo) {
  write("english.dat", "one");
  write("deutsch.dat", "eins");
  const Table table = load();
  std::atomic<int> lookups{0}, wrong{0}, passed{0};
  std::atomic<bool> done{false};
  const auto lookUp = [&] {
    while (!done) {
      char copy[64];
      table->getPrgTextDefA(2, 1, 1, nullptr, copy, sizeof copy);
      wrong += std::string("one3") != copy && std::string("eins3") != copy;
      ++lookups;
    }
  };
  const auto comeAndGo = [&] {
    while (!done) {
      ProgramTexts passing(&loader, 3, 0, 0);
      loader.ptListAdd(&passing);
      ++passed;
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

}  // namespace
