#include <sys/stat.h>

#include <cerrno>

#include "os/ZotOsFile.h"
#include "support/Child.h"
#include "support/LogFixture.h"
#include "support/TemporaryDirectory.h"

namespace {

using namespace zot_test;
using namespace std::string_literals;

bool exists(const std::string& path) {
  return std::filesystem::exists(std::filesystem::symlink_status(path));
}

std::string repeated(std::string text, const char* part, int count) {
  for (; count > 0; --count) {
    text += part;
  }
  return text;
}

class CreateDirectory : public TemporaryDirectory {};
class DeleteTree : public TemporaryDirectory {};

TEST_F(CreateDirectory, MakesEveryMissingComponentForItsOwnerOnly) {
  const std::pair<std::string, std::vector<const char*>> cases[] = {
      {"a/b/c", {"a", "a/b", "a/b/c"}},
      {whole() + "/e//f/", {"e", "e/f"}},
      {"i\\j", {"i", "i\\j"}},
      {"\\k", {"\\k"}},
      {"l\\", {"l\\"}},
      {"m", {"m"}},
      {repeated("n", "/.", 249), {"n"}}};  // 499 characters
  for (const auto& [path, made] : cases) {
    EXPECT_EQ(1u, ZotOsChkAndCreateDir(path.c_str())) << path;
    for (const char* directory : made) {
      struct stat status = {};
      stat(directory, &status);
      EXPECT_EQ(mode_t{S_IFDIR | 0700}, status.st_mode) << directory;
    }
  }
  EXPECT_EQ(0u, ZotOsChkAndCreateDir(repeated("nn", "/.", 249).c_str()));
  EXPECT_FALSE(exists("nn") || exists("l"));
  EXPECT_EQ(1u, ZotOsChkAndCreateDir(repeated("n", "/.", 300).c_str())) << "it exists";
}

TEST_F(CreateDirectory, AnswersByWhatStandsInTheWay) {
  chmod(".", 0777);
  mkdir("readonly", 0555);
  writeFile("file", "");
  // In a child that gives up the rights to which everything is writable.
  EXPECT_EQ(EEXIST, runInChild([] {
              EXPECT_TRUE(geteuid() != 0 || setuid(65534) == 0);
              EXPECT_EQ((Results{1, 1, 0, 1, 0}),
                        (Results{ZotOsChkAndCreateDir("file"), ZotOsChkAndCreateDir("readonly"),
                                 ZotOsChkAndCreateDir("new/../readonly"),
                                 ZotOsChkAndCreateDir("other/../readonly/../other"),
                                 ZotOsChkAndCreateDir("file/below")}));
              return errno;
            }));
}

TEST_F(DeleteTree, RemovesFilesAndDirectoriesBelow) {
  std::filesystem::create_directories("tree/a*b/.hidden");
  for (const char* file : {"tree/one", "tree/.two", "tree/a*b/three", "tree/a*b/.hidden/four", "beside"}) {
    writeFile(file, "x");
  }
  EXPECT_EQ(1u, ZotOsDeleteDirTree("tree"));
  EXPECT_FALSE(exists("tree"));
  EXPECT_EQ(0u, ZotOsDeleteDirTree("beside"));
  EXPECT_TRUE(exists("beside"));
  EXPECT_EQ(
      "TRACE FindFirst: splitted input - path=, file=*.*\nERROR FindFirst: opendir failed: 2=No such file or "
      "directory\n",
      told([] { EXPECT_EQ(0u, ZotOsDeleteDirTree("")); }))
      << "an empty path is not the root";
}

TEST_F(DeleteTree, EntersALinkToADirectoryAndKeepsTheLink) {
  std::filesystem::create_directories("outside");
  std::filesystem::create_directories("tree");
  std::filesystem::create_symlink("../outside", "tree/link");
  writeFile("outside/file", "x");
  EXPECT_EQ(0u, ZotOsDeleteDirTree("tree"));
  EXPECT_EQ(ENOTEMPTY, errno);
  EXPECT_FALSE(exists("outside/file"));
  EXPECT_TRUE(exists("outside") && exists("tree/link"));
}

TEST_F(DeleteTree, EndsWhereLinksLeadInCircles) {
  std::filesystem::create_directories("tree");
  for (const std::string name : {"a", "b"}) {
    std::filesystem::create_symlink(".", "tree/to-itself-" + name);
  }
  for (char from = 'a'; from < 'n'; ++from) {
    const std::string room = "tree/"s + from;
    std::filesystem::create_directories(room);
    for (char to = 'a'; to < 'n'; ++to) {
      std::filesystem::create_symlink("../"s + to, room + "/" + to);
    }
    writeFile(room + "/file", "");
  }
  // In a child, which is killed when it goes on and on.
  EXPECT_EQ(0, runInChild([] { return static_cast<int>(ZotOsDeleteDirTree("tree")); })) << "the links remain";
  for (char room = 'a'; room < 'n'; ++room) {
    EXPECT_FALSE(exists("tree/"s + room + "/file"));
  }
}

TEST_F(DeleteTree, LeavesWhatHasNoNameWithin255Characters) {
  for (const size_t length : {251u, 252u, 253u, 254u, 255u}) {
    const std::string tree(length, 'd');
    mkdir(tree.c_str(), 0700);
    writeFile(tree + "/x", "");
    EXPECT_EQ(length <= 253 ? 1u : 0u, ZotOsDeleteDirTree(tree.c_str())) << length;
    EXPECT_EQ(length > 253, exists(tree + "/x")) << length;
  }
  // Cut at 255 characters, the pattern and each entry's path would be those of "abcd".
  const std::string above(250, 'e');
  std::filesystem::create_directories(above + "/abcdefgh");
  writeFile(above + "/abcd", "kept");
  EXPECT_EQ(1u, ZotOsDeleteDirTree((above + "/abcdefgh").c_str())) << "it is empty";
  EXPECT_TRUE(exists(above + "/abcd"));
}

}  // namespace
