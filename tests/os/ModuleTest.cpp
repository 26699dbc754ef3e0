#include "os/ZotOsFile.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

namespace {

TEST(Module, SplitsTheProgramPathAndStaysInsideTheDirectorySize) {
  const std::string program = std::filesystem::read_symlink("/proc/self/exe").string();
  const size_t slash = program.rfind('/');
  const struct {
    size_t size;
    std::string dir;
    std::string name;
  } cases[] = {
      {1024, program.substr(0, slash), program.substr(slash + 1)},
      {program.size(), program.substr(0, slash), program.substr(slash + 1)},
      {slash + 2, program.substr(0, slash), program.substr(slash + 1, 1)},
      {1, "", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.size);
    std::vector<char> dir(c.size + 1, '#');
    char name[1024] = "#";
    uint32_t error = 77;
    errno = EBADF;
    EXPECT_EQ(1u,
              ZotOsGetModuleFileName(dir.data(), static_cast<uint32_t>(c.size), name, sizeof name, &error));
    EXPECT_EQ(c.dir, dir.data());
    EXPECT_EQ(c.name, name);
    EXPECT_EQ(0u, error);
    EXPECT_EQ('#', dir.back());
  }
  char dir[] = "kept";
  uint32_t error = 0;
  EXPECT_EQ(0u, ZotOsGetModulePath(dir, 0, &error));
  EXPECT_EQ(static_cast<uint32_t>(EINVAL), error);
  EXPECT_EQ(EINVAL, errno);
  EXPECT_STREQ("kept", dir);
}

}  // namespace
