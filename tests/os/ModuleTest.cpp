#include "os/ZotOsFile.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

namespace {

TEST(Module, SplitsTheProgramPathAndStaysInsideTheDirectorySize) {
  const std::string program = std::filesystem::read_symlink("/proc/self/exe").string();
  const size_t slash = program.rfind('/');
  for (const size_t size : {size_t{1024}, program.size(), slash + 2, size_t{1}}) {
    std::vector<char> dir(size + 1, '#');
    char name[1024] = "#";
    uint32_t error = 77;
    errno = EBADF;
    EXPECT_EQ(1u, ZotOsGetModuleFileName(dir.data(), static_cast<uint32_t>(size), name, sizeof name, &error));
    EXPECT_EQ(size > 1 ? program.substr(0, slash) : "", dir.data());
    EXPECT_EQ(size > 1 ? program.substr(slash + 1, size - slash - 1) : "", name);
    EXPECT_EQ(0u, error);
    EXPECT_EQ('#', dir.back());
  }
  char dir[] = "kept";
  uint32_t error = 0;
  EXPECT_EQ(0u, ZotOsGetModulePath(dir, 0, &error));
  EXPECT_EQ(static_cast<uint32_t>(EINVAL), error);
  EXPECT_STREQ("kept", dir);
}

}  // namespace
