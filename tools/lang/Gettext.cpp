#include "tools/lang/Gettext.h"

#include <fmt/format.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "tools/common/Command.h"
#include "tools/common/Failure.h"

namespace lang {

namespace {

constexpr rlim_t kMostOutput = 256 << 20, kMostMemory = 1 << 30, kMostSeconds = 60;

// Files instead of pipes: nobody waits for anybody, however much is written.
class Stream {
 public:
  Stream() : file_(std::tmpfile()) {
    if (file_ == nullptr) {
      throw tool::Failure(fmt::format("no temporary file: {}", std::strerror(errno)));
    }
  }

  int descriptor() const { return fileno(file_.get()); }

  void fill(std::string_view bytes) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size() ||
        std::fflush(file_.get()) != 0) {
      throw tool::Failure(fmt::format("a temporary file: {}", std::strerror(errno)));
    }
    std::rewind(file_.get());
  }

  std::string content() {
    std::rewind(file_.get());
    std::string bytes;
    char block[1 << 16];
    for (size_t count = 0; (count = std::fread(block, 1, sizeof block, file_.get())) != 0;) {
      bytes.append(block, count);
    }
    return bytes;
  }

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  std::unique_ptr<std::FILE, Close> file_;
};

void limit(int resource, rlim_t most) {
  const rlimit both{most, most};
  setrlimit(resource, &both);
}

[[noreturn]] void becomeChild(const std::vector<std::string>& command, const Stream& in, const Stream& out,
                              const Stream& errors) {
  const std::vector<char*> arguments = tool::argumentsOf(command);  // before memory is short
  dup2(in.descriptor(), STDIN_FILENO);
  dup2(out.descriptor(), STDOUT_FILENO);
  dup2(errors.descriptor(), STDERR_FILENO);
  limit(RLIMIT_FSIZE, kMostOutput);
  limit(RLIMIT_AS, kMostMemory);
  limit(RLIMIT_CPU, kMostSeconds);
  execvp(arguments[0], arguments.data());
  _exit(tool::kNoCommand);
}

}  // namespace

GettextRun runGettext(const std::vector<std::string>& command, std::string_view input) {
  Stream in, out, errors;
  in.fill(input);
  const pid_t child = fork();
  if (child < 0) {
    throw tool::Failure(fmt::format("{}: {}", command[0], std::strerror(errno)));
  }
  if (child == 0) {
    becomeChild(command, in, out, errors);
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (WIFEXITED(status) && WEXITSTATUS(status) == tool::kNoCommand) {
    throw tool::Failure(fmt::format("{} cannot be run; it comes with gettext", command[0]));
  }
  return {WIFEXITED(status) && WEXITSTATUS(status) == 0, out.content(), errors.content()};
}

}  // namespace lang
