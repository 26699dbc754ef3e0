// A new directory for a benchmark's files, below TMPDIR; it goes with its owner.
#ifndef ZOT_BENCH_DIRECTORY_H
#define ZOT_BENCH_DIRECTORY_H

#include <filesystem>
#include <string>

#include "Row.h"

class Directory {
 public:
  Directory() {
    std::string name = (std::filesystem::temp_directory_path() / "zot-bench-XXXXXX").string();
    require(mkdtemp(name.data()) != nullptr, "no directory");
    path_ = name;
  }
  ~Directory() { std::filesystem::remove_all(path_); }
  Directory(const Directory&) = delete;
  Directory& operator=(const Directory&) = delete;
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

#endif
