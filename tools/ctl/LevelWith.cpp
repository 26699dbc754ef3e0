// zot-ctl level with NAMES -- COMMAND.
#include <fmt/format.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "tools/common/Command.h"
#include "tools/ctl/Commands.h"
#include "tools/ctl/Level.h"
#include "tools/ctl/SharedBlock.h"

namespace ctl {

namespace {

constexpr useconds_t kPause = 20000;  // microseconds between two looks at the block

constexpr int kSignals[] = {SIGINT, SIGQUIT, SIGTERM, SIGHUP};

// What is to be passed on to the command.  The terminal sends its signals to the command
// by itself; this program only outlives it, to put the level back.
volatile sig_atomic_t received = 0;

void remember(int signal, siginfo_t* info, void*) {
  if (info->si_code <= 0) {  // sent by a process, to this one alone
    received = signal;
  }
}

void catchSignals() {
  struct sigaction action {};
  action.sa_sigaction = remember;
  action.sa_flags = SA_SIGINFO | SA_RESTART;
  for (const int signal : kSignals) {
    sigaction(signal, &action, nullptr);
  }
}

// Bits that were raised in one block, and go down again in the same.
class RaisedLevel {
 public:
  explicit RaisedLevel(uint32_t bits) : bits_(bits) {}
  ~RaisedLevel() {
    try {
      putBack();
    } catch (const tool::Failure& failure) {
      fmt::print(stderr, "zot-ctl: the level stays raised: {}\n", failure.what());
    }
  }
  RaisedLevel(const RaisedLevel&) = delete;
  RaisedLevel& operator=(const RaisedLevel&) = delete;

  // A client that ended and began again has another block, with a level of its own.
  bool raise() {
    const auto block = readBlock();
    if (!block || block->segment.id == segment_) {
      return block.has_value();
    }
    segment_ = block->segment.id;
    changeBlock([this](SharedControlBlock& shared) {
      added_ = bits_ & ~std::atomic_ref(shared.Log.value).fetch_or(bits_, std::memory_order_relaxed);
    });
    return true;
  }

 private:
  void putBack() {
    const auto block = readBlock();
    if (block && block->segment.id == segment_) {
      changeBlock([this](SharedControlBlock& shared) {
        std::atomic_ref(shared.Log.value).fetch_and(~added_, std::memory_order_relaxed);
      });
    }
  }

  uint32_t bits_;
  uint32_t added_ = 0;
  int segment_ = -1;
};

[[noreturn]] void execute(const std::vector<std::string>& command) {
  const std::vector<char*> arguments = tool::argumentsOf(command);
  execvp(arguments[0], arguments.data());
  fmt::print(stderr, "zot-ctl: {}: {}\n", command[0], std::strerror(errno));
  _exit(tool::kNoCommand);
}

int waitFor(pid_t child, RaisedLevel& level) {
  int status = 0;
  while (waitpid(child, &status, WNOHANG) == 0) {
    if (received != 0) {
      kill(child, received);
      received = 0;
    }
    level.raise();
    usleep(kPause);
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

int runWithLevel(const std::vector<std::string>& names, const std::vector<std::string>& command,
                 Streams streams) {
  RaisedLevel level(bitsOf(names));
  catchSignals();
  if (!level.raise()) {
    streams.errors.print("{}: the level rises when the command has made one\n", kNobody);
  }
  const pid_t child = fork();
  if (child < 0) {
    throw tool::Failure(fmt::format("fork: {}", std::strerror(errno)));
  }
  if (child == 0) {
    execute(command);
  }
  return waitFor(child, level);
}

}  // namespace ctl
