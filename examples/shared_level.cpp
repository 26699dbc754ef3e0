// One log level for every process.
//
// Two processes write a line every fifth of a second, and neither knows whether
// anybody wants to read it.  A third one, this program's first, raises and lowers
// the level that all of them share: the lines appear and vanish in both at once.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

#include "zotmacguiutils.h"

namespace {

constexpr uint32_t kPause = 200;   // milliseconds between two lines of a process
constexpr uint32_t kPhase = 1000;  // milliseconds for which a level holds
constexpr int kMostLines = 100;    // a worker whose first process is gone ends by itself
constexpr uint32_t kLevel = ZOT_LOG_TRACE | ZOT_LOG_STDOUT;

volatile sig_atomic_t stopped = 0;

void stop(int) {
  stopped = 1;
}

// An interrupted process still has to detach from the shared block, or the block
// would stay behind in the system.
void stopOnSignals() {
  struct sigaction action {};
  action.sa_handler = stop;
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

int work(const char* name) {
  ZotOsLog* log = ZotOspLogNew();
  if (log == nullptr) {
    return 1;
  }
  for (int line = 1; stopped == 0 && line <= kMostLines; ++line) {
    ZotOsvLog(log, ZOT_LOG_TRACE, "TRACE %s(%d): line %d", name, static_cast<int>(getpid()), line);
    ZotOsSleep(kPause);
  }
  ZotOsvLogDelete(&log);
  return 0;
}

pid_t start(const char* name) {
  const pid_t worker = fork();
  if (worker == 0) {
    _exit(work(name));
  }
  return worker;
}

bool finish(pid_t worker) {
  int status = 1;
  return worker > 0 && kill(worker, SIGTERM) == 0 && waitpid(worker, &status, 0) == worker && status == 0;
}

void say(const char* text) {
  std::printf("-- %s\n", text);
  std::fflush(stdout);
}

void phase(const char* text, ZotOsLog* log, void (*change)(ZotOsLog*, uint32_t)) {
  if (stopped == 0) {
    say(text);
    change(log, kLevel);
    ZotOsSleep(kPhase);
  }
}

// Raises and lowers the level, and leaves it as it was: a client may be running.
void conduct(ZotOsLog* log) {
  const uint32_t before = ZotOsdGetLogLevel(log);
  phase("the level is low: two processes work and nobody sees it", log, ZotOsvResLogLevel);
  phase("a third process raises the level", log, ZotOsvSetLogLevel);
  phase("it lowers the level; the work goes on", log, ZotOsvResLogLevel);
  phase("it raises the level again: the line numbers have moved on", log, ZotOsvSetLogLevel);
  ZotOsvResLogLevel(log, kLevel);
  ZotOsvSetLogLevel(log, before & kLevel);
}

}  // namespace

int main() {
  stopOnSignals();
  const pid_t first = start("first");
  const pid_t second = start("second");
  ZotOsLog* log = ZotOspLogNew();
  if (log != nullptr) {
    conduct(log);
  } else {
    std::fprintf(stderr, "the shared block cannot be attached\n");
  }
  const bool firstFine = finish(first);
  const bool secondFine = finish(second);
  // The last one to detach removes the block.
  const bool attached = log != nullptr;
  ZotOsvLogDelete(&log);
  if (!attached || !firstFine || !secondFine) {
    return 1;
  }
  say("all three have detached; the last of all processes removes the shared block");
  return 0;
}
