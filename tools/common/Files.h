// Whole files in and out.  "-" is standard input or output.
#ifndef ZOT_TOOLS_FILES_H
#define ZOT_TOOLS_FILES_H

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace tool {

// What messages call a file: its name, "<stdin>" for "-".
std::string shownName(const std::string& path);

// An open input; closes itself.  Throws Failure when it can't be opened or is a directory.
class Input {
 public:
  explicit Input(const std::string& path);

  // Takes over a stream; messages call it name.
  Input(std::FILE* stream, std::string name) : name_(std::move(name)), stream_(stream) {}

  // The next line without its end; false at the end of the file.  Throws Failure on a
  // read error and on a line of more than `longest` bytes.
  bool line(std::string& text, size_t longest = 1 << 20);

  // All that is left.  Throws Failure on a read error and on more than `most` bytes.
  std::string rest(uint64_t most);

  std::FILE* stream() { return stream_.get(); }
  const std::string& name() const { return name_; }
  uint64_t lines() const { return lines_; }  // read so far

 private:
  struct Close {
    void operator()(std::FILE* stream) const;
  };
  [[noreturn]] void failed() const;

  std::string name_;
  uint64_t lines_ = 0;
  std::unique_ptr<std::FILE, Close> stream_;
};

// All bytes of a file, `most` at most.
std::string readWhole(const std::string& path, uint64_t most);

// Puts the bytes into a file, whole or not at all: they go to a temporary file in the
// same directory, which then takes the name.  A file that was there keeps its mode; a
// link stays and what it points to is replaced.  Devices and pipes are written as they are.
void writeWhole(const std::string& path, std::string_view bytes);

}  // namespace tool

#endif
