// A worker thread that is asked to stop through its state word, and does.
#include <atomic>
#include <cstdio>

#include "os/ZotOsSystem.h"
#include "os/ZotOsThread.h"

struct Counter {
  uint32_t state = 0;  // 1 while the worker runs, 3 once it is asked to stop, 0 when it has ended
  int rounds = 0;
};

static void* countRounds(void* argument) {
  auto* counter = static_cast<Counter*>(argument);
  const std::atomic_ref state(counter->state);
  while (state.load() == 1) {
    ++counter->rounds;
    ZotOsSleep(10);
  }
  state.store(0);  // comes last: whoever waits for it may now free the record
  return nullptr;
}

int main() {
  Counter counter;
  uint32_t thread = 0;
  if (ZotOsThreadStart(&thread, &counter.state, countRounds, &counter) == 0) {
    return 1;
  }
  ZotOsSleep(100);
  // Without the handle the thread is asked, not cancelled: at most 20 looks, 100 ms apart.
  if (ZotOsThreadStop(nullptr, &counter.state, 20, nullptr, 0, "counter") == 0) {
    std::printf("the worker did not stop in time\n");
    return 1;
  }
  std::printf("the worker stopped after %s\n", counter.rounds > 0 ? "some rounds" : "no round");
  return 0;
}
