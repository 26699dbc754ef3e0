#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <set>
#include <string>

#include "os/ZotOsFile.h"
#include "os/ZotOsFileInternal.h"
#include "support/LogFixture.h"
#include "support/TemporaryDirectory.h"

namespace {

using zot_test::logLines;
using zot_test::writeFile;
using Names = std::multiset<std::string>;

// Has files and a directory "sub" in "logs".
class Find : public zot_test::TemporaryDirectory {
 protected:
  Find() {
    mkdir("logs", 0700);
    mkdir("logs/sub", 0700);
    for (const char* file :
         {".txt", "A", "a", "a.txt", "a.txt.bak", "aXa", "abc", "b*c", "txt", "sub/inner"}) {
      writeFile(std::string("logs/") + file, "12345");
    }
  }

  Names found(const std::string& pattern) {
    Names names;
    uint32_t more = ZotOsFindFirst(&find, pattern.c_str(), name, nullptr, nullptr, nullptr);
    EXPECT_EQ(more, find.dir != nullptr ? 1u : 0u);
    for (; more != 0; more = ZotOsFindNext(&find, name, nullptr, nullptr, nullptr)) {
      names.insert(name);
    }
    EXPECT_TRUE(find.dir == nullptr || name[0] == '\0') << "the end leaves an empty name";
    EXPECT_EQ(1u, ZotOsFindClose(&find));
    return names;
  }

  ZotOsFindData find;
  char name[ZOT_OS_FIND_TEXT];
};

TEST_F(Find, MatchesOneStarLiterally) {
  const Names all = {".txt", "A", "a", "a.txt", "a.txt.bak", "aXa", "abc", "b*c", "sub", "txt"};
  const struct {
    const char* pattern;
    Names expected;
  } cases[] = {
      {"logs/*.txt", {".txt", "a.txt"}},
      {"logs/a*", {"a", "a.txt", "a.txt.bak", "aXa", "abc"}},
      {"logs/a*a", {"aXa"}},
      {"logs/", all},
      {"logs", all},
      {"logs/*.*", all},
      {"logs/*.", all},
      {"logs/.*", {".", "..", ".txt"}},
      {"logs/**", {}},
      {"logs/b**c", {"b*c"}},
      {"logs/?*", {}},
      {"logs/a", {"a"}},
      {"logs/sub", {"inner"}},
      {"logs/missing", {}},
      {"missing/*", {}},
      {"l*", {"logs"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.pattern);
    EXPECT_EQ(c.expected, found(c.pattern));
  }
}

TEST_F(Find, ReportsTypeTimeAndSizeOfWhatALinkLeadsTo) {
  ASSERT_EQ(0, truncate("logs/a", 0x100000005));
  ZotOsSetFileTime("logs/a", 1234567890);
  ASSERT_EQ(0, symlink("a", "logs/link"));
  ASSERT_EQ(0, symlink("sub", "logs/way"));
  uint32_t type = 0;
  uint32_t mtime = 0;
  uint32_t size = 0;
  for (const char* pattern : {"logs/su*", "logs/wa*", "logs/link", "logs/a"}) {
    SCOPED_TRACE(pattern);
    EXPECT_EQ(1u, ZotOsFindFirst(&find, pattern, name, &type, &mtime, &size));
    EXPECT_EQ(name[1] == 'u' || name[0] == 'w' ? 2u : 1u, type);
    EXPECT_EQ(type == 1, mtime == 1234567890 && size == 5);
    ZotOsFindClose(&find);
  }
  ASSERT_EQ(0, symlink("nothing", "logs/dangling"));
  EXPECT_EQ(0u, ZotOsFindFirst(&find, "logs/dang*", name, &type, &mtime, &size));
  EXPECT_EQ(ENOENT, errno);
  EXPECT_STREQ("dangling", name);
  EXPECT_EQ(1234567890u, mtime);
}

TEST_F(Find, RefusesNullsAndClosesWhatIsNotOpen) {
  find.dir = reinterpret_cast<DIR*>(&find);
  EXPECT_EQ(0u, ZotOsFindFirst(&find, nullptr, name, nullptr, nullptr, nullptr));
  EXPECT_EQ(nullptr, find.dir);
  EXPECT_EQ(0u, ZotOsFindFirst(&find, "logs/*", nullptr, nullptr, nullptr, nullptr));
  EXPECT_EQ(0u, ZotOsFindNext(&find, name, nullptr, nullptr, nullptr));
  EXPECT_EQ(1u, ZotOsFindClose(&find));
}

TEST_F(Find, TellsEachStepToTheLog) {
  auto lines = logLines([&] { found("logs/sub"); });
  std::sort(lines.begin(), lines.end());
  EXPECT_EQ((std::vector<std::string>{"TRACE FindFirst: splitted input - path=logs/sub/, file=*",
                                      "TRACE FindNext: file = . ; search file = *",
                                      "TRACE FindNext: file = .. ; search file = *",
                                      "TRACE FindNext: file = inner ; search file = *"}),
            lines);
  EXPECT_EQ((std::vector<std::string>{"ERROR FindFirst: opendir failed: 2=No such file or directory"}),
            logLines([&] { found("none/*"); }, ZOT_LOG_ERROR | ZOT_LOG_STDOUT));
  EXPECT_TRUE(logLines([&] { found("none"); }).empty()) << "nothing is opened when nothing stands there";
}

TEST_F(Find, SplitsAtTheLastSlashWithin1024Bytes) {
  const std::string many(2000, 'x');
  const std::string cases[][3] = {
      {"name", "./", "name"},
      {"/tmp/", "/tmp", "*"},
      {"/tmp", "", "tmp"},
      {"", "./", "*"},
      {many + "/" + many, many.substr(0, 1023), many.substr(0, 1023)},
  };
  for (const auto& [path, dir, file] : cases) {
    SCOPED_TRACE(path);
    vSplitFileName(path.c_str(), find.path, find.pattern);
    EXPECT_EQ(dir, find.path);
    EXPECT_EQ(file, find.pattern);
  }
}

}  // namespace
