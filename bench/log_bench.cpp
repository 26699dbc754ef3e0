// A log call that the level switches off; the peer is a bare test of a word.  And a
// line that is written, to a standard output that goes nowhere; the peer formats
// and writes the same text.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>

#include "log/ZotLog.h"

namespace {

uint32_t levelWord = 0;
ZotOsLog logObject = {0, &levelWord, 0, {}};

// While one stands, standard output goes to /dev/null.
class Silence {
 public:
  Silence() : saved_(dup(STDOUT_FILENO)) {
    std::fflush(stdout);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
  }
  ~Silence() {
    std::fflush(stdout);
    dup2(saved_, STDOUT_FILENO);
    close(saved_);
  }
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;

 private:
  int saved_;
};

void BM_DisabledLine(benchmark::State& state) {
  levelWord = 0;
  for (auto _ : state) {
    ZotOsvLog(&logObject, ZOT_LOG_DEBUG, "DEBUG bench: %d %s", 7, "text");
  }
}

void BM_DisabledPeer(benchmark::State& state) {
  for (auto _ : state) {
    if ((std::atomic_ref(levelWord).load(std::memory_order_relaxed) & ZOT_LOG_DEBUG) > 1) {
      std::printf("DEBUG bench: %d %s\n", 7, "text");
    }
  }
}

void BM_WrittenLine(benchmark::State& state) {
  const Silence silence;
  levelWord = ZOT_LOG_DEBUG | ZOT_LOG_STDOUT;
  for (auto _ : state) {
    ZotOsvLog(&logObject, ZOT_LOG_DEBUG, "DEBUG bench: %d %s", 7, "text");
  }
}

void BM_WrittenPeer(benchmark::State& state) {
  const Silence silence;
  for (auto _ : state) {
    std::printf("26-10-22 21:00:00,000 - DEBUG bench: %d %s\n", 7, "text");
    std::fflush(stdout);
  }
}

BENCHMARK(BM_DisabledLine);
BENCHMARK(BM_DisabledPeer);
BENCHMARK(BM_WrittenLine);
BENCHMARK(BM_WrittenPeer);

}  // namespace
