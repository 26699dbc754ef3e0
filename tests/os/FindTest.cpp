#include <sys/stat.h>

#include <set>

#include "os/ZotOsFile.h"
#include "os/ZotOsFileInternal.h"
#include "support/LogFixture.h"
#include "support/TemporaryDirectory.h"

namespace {

using namespace zot_test;

// Has files and a directory "sub" in "logs".
class Find : public TemporaryDirectory {
 protected:
  Find() {
    std::filesystem::create_directories("logs/sub");
    for (const char* file :
         {".txt", "A", "a", "a.txt", "a.txt.bak", "aXa", "abc", "b*c", "txt", "sub/inner"}) {
      writeFile(std::string("logs/") + file, "12345");
    }
  }

  // The names of all hits in alphabetical order, a blank behind each.
  std::string found(const std::string& pattern) {
    std::set<std::string> names;
    uint32_t more = ZotOsFindFirst(&find, pattern.c_str(), name, nullptr, nullptr, nullptr);
    EXPECT_EQ(more, find.dir != nullptr ? 1u : 0u);
    for (; more != 0; more = ZotOsFindNext(&find, name, nullptr, nullptr, nullptr)) {
      names.insert(name);
    }
    EXPECT_TRUE(find.dir == nullptr || name[0] == '\0') << "the end leaves an empty name";
    EXPECT_EQ(1u, ZotOsFindClose(&find));
    std::string all;
    for (const auto& each : names) {
      all += each + " ";
    }
    return all;
  }

  ZotOsFindData find;
  char name[ZOT_OS_FIND_TEXT];
};

TEST_F(Find, MatchesOneStarLiterally) {
  for (const char* pattern : {"logs/", "logs", "logs/*.*", "logs/*."}) {
    EXPECT_EQ(".txt A a a.txt a.txt.bak aXa abc b*c sub txt ", found(pattern)) << pattern;
  }
  for (const char* pattern : {"logs/**", "logs/?*", "logs/missing", "missing/*"}) {
    EXPECT_EQ("", found(pattern)) << pattern;
  }
  EXPECT_EQ(".txt a.txt ", found("logs/*.txt"));
  EXPECT_EQ("a a.txt a.txt.bak aXa abc ", found("logs/a*"));
  EXPECT_EQ("aXa ", found("logs/a*a")) << "the length keeps them from sharing a letter";
  EXPECT_EQ(". .. .txt ", found("logs/.*"));
  EXPECT_EQ("b*c ", found("logs/b**c"));
  EXPECT_EQ("a ", found("logs/a"));
  EXPECT_EQ("inner ", found("logs/sub"));
  EXPECT_EQ("logs ", found("l*"));
}

TEST_F(Find, ReportsTypeTimeAndSizeOfWhatALinkLeadsTo) {
  std::filesystem::resize_file("logs/a", 0x100000005);
  ZotOsSetFileTime("logs/a", 1234567890);
  std::filesystem::create_symlink("a", "logs/link");
  std::filesystem::create_symlink("sub", "logs/way");
  std::filesystem::create_symlink("nothing", "logs/dangling");
  uint32_t type = 0, mtime = 0, size = 0;
  for (const std::string& logs : {std::string("logs"), whole() + "/logs"}) {
    for (const char* pattern : {"/su*", "/wa*", "/link", "/a"}) {
      EXPECT_EQ(1u, ZotOsFindFirst(&find, (logs + pattern).c_str(), name, &type, &mtime, &size));
      EXPECT_EQ(std::string(pattern).ends_with("*") ? 2u : 1u, type) << pattern;
      EXPECT_EQ(type == 1, mtime == 1234567890 && size == 5) << pattern;
      ZotOsFindClose(&find);
    }
    EXPECT_EQ(0u, ZotOsFindFirst(&find, (logs + "/dang*").c_str(), name, &type, &mtime, &size));
    EXPECT_STREQ("dangling", name);
    EXPECT_EQ(1234567890u, mtime);
    // Only a relative path depends on where the process is.
    EXPECT_EQ(1u, ZotOsFindFirst(&find, (logs + "/a*").c_str(), name, &type, &mtime, &size));
    std::filesystem::current_path("/");
    EXPECT_EQ(logs == "logs" ? 0u : 1u, ZotOsFindNext(&find, name, &type, &mtime, &size));
    std::filesystem::current_path(whole());
    ZotOsFindClose(&find);
  }
}

TEST_F(Find, RefusesNullsAndClosesWhatIsNotOpen) {
  find.dir = reinterpret_cast<DIR*>(&find);
  EXPECT_EQ(0u, ZotOsFindFirst(&find, nullptr, name, nullptr, nullptr, nullptr));
  EXPECT_EQ(nullptr, find.dir);
  EXPECT_EQ((Results{0, 0, 0, 1}),
            (Results{ZotOsFindFirst(nullptr, "logs/*", name, nullptr, nullptr, nullptr),
                     ZotOsFindFirst(&find, "logs/*", nullptr, nullptr, nullptr, nullptr),
                     ZotOsFindNext(&find, name, nullptr, nullptr, nullptr), ZotOsFindClose(&find)}));
}

TEST_F(Find, TellsEachStepToTheLog) {
  EXPECT_EQ(
      "TRACE FindFirst: splitted input - path=logs/a, file=*\nERROR FindFirst: opendir failed: 20=Not a "
      "directory\n",
      told([&] { found("logs/a/*"); }));
  EXPECT_EQ("", told([&] { found("none"); })) << "nothing is opened when nothing stands there";
  const auto lines = told([&] { found("logs/sub"); });
  EXPECT_EQ(0u,
            lines.find("TRACE FindFirst: splitted input - path=logs/sub/, file=*\nTRACE FindNext: file = "));
  for (const char* entry : {".", "..", "inner"}) {
    EXPECT_NE(lines.npos,
              lines.find("\nTRACE FindNext: file = " + std::string(entry) + " ; search file = *\n"));
  }
}

TEST_F(Find, SplitsAtTheLastSlashWithin1024Bytes) {
  const std::string many(2000, 'x'), most(1023, 'x');
  const auto split = [this](const std::string& path) {
    vSplitFileName(path.c_str(), find.path, find.pattern);
    return std::string(find.path) + "|" + find.pattern;
  };
  EXPECT_EQ("./|name", split("name"));
  EXPECT_EQ("/tmp|*", split("/tmp/"));
  EXPECT_EQ("|tmp", split("/tmp"));
  EXPECT_EQ("./|*", split(""));
  EXPECT_EQ(most + "|" + most, split(many + "/" + many));
}

}  // namespace
