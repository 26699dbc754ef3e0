// A test that works in a new directory of its own, removed at its end, and that
// fails when it leaves more descriptors open than it found.
#ifndef ZOT_TESTS_TEMPORARY_DIRECTORY_H
#define ZOT_TESTS_TEMPORARY_DIRECTORY_H

#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace zot_test {

inline long openDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

inline void writeFile(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string readFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// While a test runs, its directory is the current one, so that paths can be
// short and relative; whole() is its path from the root.
class TemporaryDirectory : public testing::Test {
 protected:
  TemporaryDirectory() {
    std::string name = testing::TempDir() + "/zot.XXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
      std::abort();
    }
    whole_ = std::filesystem::canonical(name);
    std::filesystem::current_path(whole_);
  }

  ~TemporaryDirectory() override {
    std::filesystem::current_path(before_);
    std::filesystem::remove_all(whole_);
    EXPECT_EQ(descriptors_, openDescriptors()) << "descriptors left open";
  }

  std::string whole() const { return whole_.string(); }

 private:
  std::filesystem::path before_ = std::filesystem::current_path();
  std::filesystem::path whole_;
  long descriptors_ = openDescriptors();
};

}  // namespace zot_test

#endif
