// A file with a path to open it by, on no disk and gone with the process.
#ifndef FUZZ_FILE_IN_MEMORY_H
#define FUZZ_FILE_IN_MEMORY_H

#include <sys/mman.h>
#include <unistd.h>

#include "Script.h"

class FileInMemory {
 public:
  const std::string& path() const { return path_; }

  void hold(std::string_view bytes) const {
    require(ftruncate(file_, 0) == 0 &&
                pwrite(file_, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()),
            "a file of our own");
  }

 private:
  int file_ = memfd_create("input", MFD_CLOEXEC);
  std::string path_ = "/proc/self/fd/" + std::to_string(file_);
};

#endif
