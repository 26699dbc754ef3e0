// What window and service have logged, read from their files as it comes.
#ifndef DEMO_LOG_LINES_H
#define DEMO_LOG_LINES_H

#include <ios>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct LogLine {
  std::string stamp;  // when it was written; also of the dump lines that follow
  const char* program;
  std::string text;
};

// One program's lines, from where they were read last.
class LogFile {
 public:
  LogFile(const char* program, std::string path) : program_(program), path_(std::move(path)) {}

  // Appends what has come since.
  void readTo(std::vector<LogLine>& lines);

 private:
  const char* program_;
  std::string path_;
  std::streamoff at_ = 0;
  std::string rest_ = {};   // of a line that is not whole yet
  std::string stamp_ = {};  // of the last line
};

// The last thousand lines of both.
class LogLines {
 public:
  // directory is where both programs write them.
  explicit LogLines(const std::string& directory)
      : files_{{"window", directory + "/window.log"}, {"service", directory + "/service.log"}} {}

  // Takes over what has come since, in the order in which it was written; false when
  // nothing has.
  bool update();

  // Whether a line of this program has this text in it.
  bool has(std::string_view text, std::string_view program) const;

  const std::vector<LogLine>& all() const { return lines_; }

 private:
  std::vector<LogFile> files_;
  std::vector<LogLine> lines_ = {};
};

#endif
