#include "multilang/ZOT_MultiLanguage.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

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

  std::string file(const std::string& name) const { return whole() + "/" + name; }
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
  const struct {
    unsigned int number;
    const char* extension;
    const char* name;
  } languages[] = {{1, ".de", "deutsch.dat"}, {2, ".en", "english.dat"},  {3, ".es", "spain.dat"},
                   {4, ".fr", "french.dat"},  {5, ".it", "italian.dat"},  {6, ".se", "swedish.dat"},
                   {7, ".dk", "danish.dat"},  {8, ".no", "norweg.dat"},   {9, ".fi", "finnish.dat"},
                   {10, ".nl", "dutch.dat"},  {11, ".pl", "polnisch.dat"}};
  for (const auto& language : languages) {
    SCOPED_TRACE(language.name);
    const std::string extended = std::string("texts") + language.extension;
    ZOT_MultiLanguage fresh;
    fresh.SetLanguageFilePath(whole().c_str());
    EXPECT_EQ(file("english.dat"), fresh.buildFilePathName(language.number))
        << "no file of this language yet";
    writeFile(language.name, "");
    writeFile(extended, "");
    fresh.SetLanguageFilePath(whole().c_str());
    EXPECT_EQ(file(language.name), fresh.buildFilePathName(language.number));
    fresh.SetLanguageFileBaseName("texts");
    EXPECT_EQ(file(extended), fresh.buildFilePathName(language.number));
    std::filesystem::remove(file(extended));
    fresh.SetLanguageFileBaseName("texts");
    EXPECT_EQ(file("texts.en"), fresh.buildFilePathName(language.number));
    fresh.SetLanguageFileName("any.name");
    EXPECT_EQ(file("any.name"), fresh.buildFilePathName(language.number)) << "before base and default names";
  }
  EXPECT_EQ(2u, loader.GetOsLanguage());
}

TEST_F(Loader, AnyOtherNumberIsEnglish) {
  for (const unsigned int number : {0u, 12u, 0x80000000u, 0xFFFFFFFFu}) {
    ZOT_MultiLanguage fresh;
    EXPECT_STREQ("english.dat", fresh.buildFilePathName(number));
    fresh.SetLanguageFileBaseName("b");
    EXPECT_STREQ("b.en", fresh.buildFilePathName(number));
  }
}

TEST_F(Loader, JoinsTheDirectoryWithOneSeparator) {
  const char* cases[][2] = {
      {"/opt/l", "/opt/l/e"}, {"/opt/l/", "/opt/l/e"}, {"l\\", "l\\e"}, {"", "e"}, {"/", "/e"},
      {"l//", "l//e"}};
  for (const auto& [directory, path] : cases) {
    loader.SetLanguageFilePath(directory);
    loader.SetLanguageFileName("e");
    EXPECT_STREQ(path, loader.buildFilePathName(2));
  }
}

TEST_F(Loader, KeepsThePathUntilASetterIsCalled) {
  const char* first = loader.buildFilePathName(2);
  EXPECT_EQ(first, loader.buildFilePathName(1)) << "the number is not looked at";
  loader.SetLanguageFileName(nullptr);
  loader.SetLanguageFileBaseName(nullptr);
  loader.SetLanguageFilePath(nullptr);
  loader.SetLanguageId(0);
  EXPECT_EQ(first, loader.buildFilePathName(1)) << "null and the same language change nothing";
  write("deutsch.dat", "eins");
  EXPECT_EQ(file("english.dat"), loader.buildFilePathName(1));
  loader.SetLanguageId(1);
  EXPECT_EQ(file("deutsch.dat"), loader.buildFilePathName(1));
  loader.SetLanguageFilePath("");
  EXPECT_STREQ("english.dat", loader.buildFilePathName(4));
}

TEST_F(Loader, KeepsOneElementOnlyWhenAsked) {
  write("english.dat", "one");
  const Table all = load(2, 0), second = load(2, 1), nobody = load(7, 1);
  EXPECT_EQ("one", text(all, 1));
  EXPECT_EQ("none", text(second, 1));
  EXPECT_EQ("one2", text(second, 2));
  EXPECT_EQ("one3", text(second, 2, 1));
  EXPECT_EQ("none", text(nobody, 2));
  EXPECT_NE(nullptr, nobody) << "no text of the element is no failure";
  EXPECT_EQ(nullptr, loader.loadProgramTexts(4, 0, 0, nullptr));
}

TEST_F(Loader, AChangeOfLanguageReloadsEveryTableInPlace) {
  write("english.dat", "one");
  write("deutsch.dat", "eins");
  const Table all = load(), second = load(2, 1);
  Table third = load();
  const Table fourth = load(), fifth = load();
  third.reset();
  loader.SetLanguageId(1);
  EXPECT_EQ("eins", text(all, 1));
  EXPECT_EQ("none", text(second, 1)) << "a reload keeps to the table's element";
  EXPECT_EQ("eins2", text(second, 2));
  EXPECT_EQ("eins3", text(fifth, 2, 1));

  write("deutsch.dat", "zwei");
  loader.SetLanguageId(1);
  EXPECT_EQ("eins", text(fourth, 1)) << "the same number again does nothing";
  EXPECT_EQ(1u, loader.RefreshAllRegisteredChildren());
  EXPECT_EQ("zwei", text(fourth, 1));

  writeFile("deutsch.dat", oneForm(3, {textRecord(1, 0, "drei"), number(269)}));
  EXPECT_EQ(0u, loader.RefreshAllRegisteredChildren());
  EXPECT_EQ("drei", text(all, 1)) << "what came before the damage";
  EXPECT_EQ("drei", text(fifth, 1)) << "one failure doesn't stop the others";
  EXPECT_EQ("none", text(all, 2));
  loader.SetLanguageId(4);
  EXPECT_EQ("one", text(all, 1)) << "no French file";
}

TEST_F(Loader, LoaderAndTablesForgetEachOtherInEitherOrder) {
  write("english.dat", "one");
  auto other = std::make_unique<ZOT_MultiLanguage>();
  other->SetLanguageFilePath(whole().c_str());
  const Table orphan(other->loadProgramTexts(3, 0, 0, nullptr));
  Table gone(other->loadProgramTexts(3, 0, 0, nullptr));
  gone.reset();
  other->unregisterChild(nullptr);
  EXPECT_EQ(1u, other->RefreshAllRegisteredChildren());
  other.reset();
  EXPECT_EQ("one", text(orphan, 1));

  const Table forgotten = load(), twice = load();
  loader.ptListClear();
  EXPECT_EQ(0u, loader.ptListAdd(nullptr));
  EXPECT_EQ(1u, loader.ptListAdd(twice.get()));
  EXPECT_EQ(1u, loader.ptListAdd(twice.get()));
  write("english.dat", "new");
  EXPECT_EQ(1u, loader.RefreshAllRegisteredChildren());
  EXPECT_EQ("one", text(forgotten, 1));
  EXPECT_EQ("new", text(twice, 1));
  loader.unregisterChild(twice.get());
  write("english.dat", "newer");
  EXPECT_EQ(1u, loader.RefreshAllRegisteredChildren());
  EXPECT_EQ("new", text(twice, 1)) << "both of its places are free";

  const std::unique_ptr<DummyProgramTexts> dummy(loader.GetDummyProgramTexts());
  EXPECT_EQ(1u, loader.RefreshAllRegisteredChildren());
  EXPECT_STREQ("1 0 (Text missing)", dummy->getPrgTextDefA(1, 0, 1, nullptr, nullptr, 0));
}

TEST_F(Loader, RegistryGrowsByTwoReusesPlacesAndSurvivesLosingItsMemory) {
  write("english.dat", "one");
  ProgramTexts a(&loader, 3, 0, 0), b(&loader, 3, 0, 0), c(&loader, 3, 0, 0);
  {
    FailingHeap heap(1);
    EXPECT_EQ(1u, loader.ptListAdd(&a));
    EXPECT_EQ(1u, loader.ptListAdd(&b));
    loader.unregisterChild(&a);
    EXPECT_EQ(1u, loader.ptListAdd(&c)) << "in the place that became free";
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
  EXPECT_EQ(file("english.dat"), loader.buildFilePathName(2)) << "built later, the directory as it was";
  {
    FailingHeap heap(4);  // the mutex, the array and two of three texts
    EXPECT_EQ(nullptr, loader.loadProgramTexts(3, 0, 0, nullptr)) << "no table pretends to be whole";
  }
  EXPECT_EQ("one3", text(load(), 2, 1));

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
  std::vector<std::thread> threads;
  threads.emplace_back(lookUp);
  threads.emplace_back(lookUp);
  threads.emplace_back(comeAndGo);
  threads.emplace_back(comeAndGo);
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
