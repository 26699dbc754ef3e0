#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "os/ZotOsFile.h"
#include "support/Child.h"
#include "support/LogFixture.h"
#include "support/TemporaryDirectory.h"

namespace {

using zot_test::runInChild;
using zot_test::writeFile;

bool exists(const std::string& path) {
  struct stat status;
  return lstat(path.c_str(), &status) == 0;
}

std::string repeated(std::string text, const char* part, int count) {
  for (; count > 0; --count) {
    text += part;
  }
  return text;
}

class CreateDirectory : public zot_test::TemporaryDirectory {};
class DeleteTree : public zot_test::TemporaryDirectory {};

TEST_F(CreateDirectory, MakesEveryMissingComponentForItsOwnerOnly) {
  const struct {
    std::string path;
    std::vector<std::string> made;
  } cases[] = {
      {"a/b/c", {"a", "a/b", "a/b/c"}},
      {whole() + "/e//f/", {"e", "e/f"}},
      {"i\\j", {"i", "i\\j"}},
      {"\\k", {"\\k"}},
      {"l\\", {"l\\"}},
      {"m", {"m"}},
      {repeated("n", "/.", 249), {"n"}},  // 499 characters
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.path);
    EXPECT_EQ(1u, ZotOsChkAndCreateDir(c.path.c_str()));
    for (const std::string& made : c.made) {
      struct stat status = {};
      EXPECT_EQ(0, stat(made.c_str(), &status)) << made;
      EXPECT_EQ(mode_t{S_IFDIR | 0700}, status.st_mode) << made;
    }
  }
  EXPECT_EQ(0u, ZotOsChkAndCreateDir(repeated("nn", "/.", 249).c_str()));
  EXPECT_FALSE(exists("nn"));
  EXPECT_FALSE(exists("l"));
  EXPECT_EQ(1u, ZotOsChkAndCreateDir(repeated("n", "/.", 300).c_str())) << "it exists";
}

TEST_F(CreateDirectory, AnswersByWhatStandsInTheWay) {
  chmod(".", 0777);
  mkdir("readonly", 0555);
  writeFile("file", "");
  // In a child that gives up the rights to which everything is writable.
  EXPECT_EQ(0, runInChild([] {
              EXPECT_TRUE(geteuid() != 0 || setuid(65534) == 0);
              EXPECT_EQ(1u, ZotOsChkAndCreateDir("file"));
              EXPECT_EQ(1u, ZotOsChkAndCreateDir("readonly"));
              EXPECT_EQ(0u, ZotOsChkAndCreateDir("new/../readonly"));
              EXPECT_EQ(1u, ZotOsChkAndCreateDir("other/../readonly/../other"));
              EXPECT_EQ(0u, ZotOsChkAndCreateDir("file/below"));
              EXPECT_EQ(EEXIST, errno);
              return 0;
            }));
}

TEST_F(DeleteTree, RemovesFilesAndDirectoriesBelow) {
  ASSERT_EQ(1u, ZotOsChkAndCreateDir("tree/a*b/.hidden"));
  for (const char* file : {"tree/one", "tree/.two", "tree/a*b/three", "tree/a*b/.hidden/four", "beside"}) {
    writeFile(file, "x");
  }
  EXPECT_EQ(1u, ZotOsDeleteDirTree("tree"));
  EXPECT_FALSE(exists("tree"));
  EXPECT_EQ(0u, ZotOsDeleteDirTree("beside"));
  EXPECT_EQ(ENOTDIR, errno);
  EXPECT_TRUE(exists("beside"));
  EXPECT_EQ("TRACE FindFirst: splitted input - path=missing, file=*.*",
            zot_test::logLines([] { ZotOsDeleteDirTree("missing"); }).at(0));
}

TEST_F(DeleteTree, EntersALinkToADirectoryAndKeepsTheLink) {
  mkdir("outside", 0700);
  mkdir("tree", 0700);
  writeFile("outside/file", "x");
  ASSERT_EQ(0, symlink("../outside", "tree/link"));
  EXPECT_EQ(0u, ZotOsDeleteDirTree("tree"));
  EXPECT_EQ(ENOTEMPTY, errno);
  EXPECT_FALSE(exists("outside/file"));
  EXPECT_TRUE(exists("outside") && exists("tree/link"));
}

TEST_F(DeleteTree, LeavesWhatHasNoNameWithin255Characters) {
  for (const size_t length : {251u, 252u, 253u, 254u, 255u}) {
    SCOPED_TRACE(length);
    const std::string tree(length, 'd');
    mkdir(tree.c_str(), 0700);
    writeFile(tree + "/x", "");
    EXPECT_EQ(length <= 253 ? 1u : 0u, ZotOsDeleteDirTree(tree.c_str()));
    EXPECT_EQ(length > 253, exists(tree + "/x"));
  }
  // Cut at 255 characters, the pattern and each entry's path would be those of "abcd".
  const std::string above(250, 'e');
  ASSERT_EQ(1u, ZotOsChkAndCreateDir((above + "/abcdefgh").c_str()));
  writeFile(above + "/abcd", "kept");
  EXPECT_EQ(1u, ZotOsDeleteDirTree((above + "/abcdefgh").c_str())) << "it is empty";
  EXPECT_TRUE(exists(above + "/abcd"));
}

TEST_F(DeleteTree, NeverTakesAnEmptyPathForTheRoot) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "only the super-user can have a root directory that may be lost";
  }
  writeFile("file", "kept");
  EXPECT_EQ(0, runInChild([] { return chroot(".") != 0 || ZotOsDeleteDirTree("") != 0 ? 1 : 0; }));
  EXPECT_TRUE(exists("file"));
}

TEST_F(DeleteTree, FitsTheSmallStackOfAWorkerThread) {
  ASSERT_EQ(1u, ZotOsChkAndCreateDir(repeated("a", "/a", 125).c_str()));
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  ASSERT_EQ(0, pthread_attr_setstacksize(&attributes, 0x40000));
  pthread_t thread;
  const auto body = [](void*) -> void* { return ZotOsDeleteDirTree("a") == 1 ? nullptr : &errno; };
  ASSERT_EQ(0, pthread_create(&thread, &attributes, body, nullptr));
  void* failure = nullptr;
  pthread_join(thread, &failure);
  pthread_attr_destroy(&attributes);
  EXPECT_EQ(nullptr, failure);
}

}  // namespace
