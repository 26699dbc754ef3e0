// Threads and processes from begin to end, in time on the wall.
#include <cstdlib>
#include <semaphore>
#include <thread>

#include "Row.h"
#include "os/ZotOsProcess.h"
#include "os/ZotOsThread.h"

namespace {

// A detached thread that says with a semaphore that it ends; the starter waits for it.
std::binary_semaphore ended{0};

void* sayEnded(void* /*arg*/) {
  ended.release();
  return nullptr;
}

void thread(benchmark::State& state) {
  measure(state, [] {
    uint32_t handle = 0;
    require(ZotOsThreadBegin(&handle, sayEnded, 0, nullptr) == 1, "no thread");
    ended.acquire();
  });
}

void threadStd(benchmark::State& state) {
  measure(state, [] {
    std::thread(sayEnded, nullptr).detach();
    ended.acquire();
  });
}

BENCHMARK(thread)->Name("thread/ours")->UseRealTime();
BENCHMARK(threadStd)->Name("thread/std")->UseRealTime();

// /bin/true, found by its name, and waited for; the peer is told where it stands.
void process(benchmark::State& state) {
  measure(state, [] { require(ZotOsCreateProcess("true") == 1, "true"); });
}

void processSystem(benchmark::State& state) {
  measure(state, [] { require(std::system("/bin/true") == 0, "/bin/true"); });
}

BENCHMARK(process)->Name("process/ours")->UseRealTime();
BENCHMARK(processSystem)->Name("process/system")->UseRealTime();

}  // namespace
