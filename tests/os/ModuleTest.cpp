#include "os/ZotOsFile.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

namespace {

std::string programPath() {
  return std::filesystem::read_symlink("/proc/self/exe").string();
}

TEST(Module, SplitsTheProgramPath) {
  const std::filesystem::path program = programPath();
  char dir[1024];
  char name[1024];
  uint32_t error = 77;
  errno = EBADF;
  ASSERT_EQ(1u, ZotOsGetModuleFileName(dir, sizeof dir, name, sizeof name, &error));
  EXPECT_EQ(program.parent_path(), dir);
  EXPECT_EQ(program.filename(), name);
  EXPECT_EQ(0u, error);

  std::memset(dir, '#', sizeof dir);
  EXPECT_EQ(1u, ZotOsGetModulePath(dir, sizeof dir, nullptr));
  EXPECT_EQ(program.parent_path(), dir);
  EXPECT_EQ(1u, ZotOsGetModuleFileName(dir, sizeof dir, name, 3, nullptr));
  EXPECT_EQ(program.filename().string().substr(0, 2), name) << "the name is cut to its size";
}

TEST(Module, CutsAtTheDirectorySizeAndNeverWritesPastIt) {
  const std::string program = programPath();
  const size_t slash = program.rfind('/');
  const struct {
    size_t size;
    std::string dir;
    std::string name;
  } cases[] = {
      {program.size() + 1, program.substr(0, slash), program.substr(slash + 1)},
      {program.size(), program.substr(0, slash), program.substr(slash + 1)},
      {slash + 2, program.substr(0, slash), program.substr(slash + 1, 1)},
      {slash + 1, program.substr(0, slash), ""},
      {1, "", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.size);
    std::vector<char> dir(c.size + 1, '#');
    char name[1024] = "#";
    EXPECT_EQ(1u,
              ZotOsGetModuleFileName(dir.data(), static_cast<uint32_t>(c.size), name, sizeof name, nullptr));
    EXPECT_EQ(c.dir, dir.data());
    EXPECT_EQ(c.name, name);
    EXPECT_EQ('#', dir.back());
  }
}

TEST(Module, HandsOutTheErrorOfAFailedRead) {
  char dir[] = "kept";
  uint32_t error = 0;
  EXPECT_EQ(0u, ZotOsGetModulePath(dir, 0, &error));
  EXPECT_EQ(static_cast<uint32_t>(EINVAL), error);
  EXPECT_EQ(EINVAL, errno);
  EXPECT_STREQ("kept", dir);
}

}  // namespace
