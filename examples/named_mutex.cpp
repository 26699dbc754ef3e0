// Two processes count in one shared word; a mutex under a key keeps them apart.
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

#include "os/ZotOsMmf.h"
#include "os/ZotOsSync.h"

constexpr uint32_t kMutexKey = 0x5A4F5401;  // keys are the client's to choose
constexpr int32_t kCounterKey = 0x5A4F5402;
constexpr int kRounds = 1000;

static void count(ZotOsMutexHandle* mutex, const ZotOsMmfHandle& memory) {
  for (int i = 0; i < kRounds; ++i) {
    ZotOsMutexWait(mutex, -1, nullptr);
    ++*static_cast<int*>(memory.address);
    ZotOsMutexRelease(mutex);
  }
}

// What any other program does that knows the keys.
static bool countAsOther() {
  ZotOsMutexHandle* mutex = nullptr;
  ZotOsMmfHandle memory = {};
  if (ZotOsMutexOpen(&mutex, kMutexKey) == 0 || ZotOsMmfOpen(&memory, 0, kCounterKey) == 0) {
    return false;
  }
  count(mutex, memory);
  ZotOsMmfClose(&memory);
  return ZotOsMutexClose(mutex) == 1;
}

int main() {
  ZotOsMutexHandle* mutex = nullptr;
  ZotOsMmfHandle memory;
  if (ZotOsMutexCreate(&mutex, kMutexKey) == 0 ||
      ZotOsMmfCreate(&memory, sizeof(int), nullptr, kCounterKey, 1) == 0) {
    return 1;
  }
  const pid_t other = fork();
  if (other == 0) {
    _exit(countAsOther() ? 0 : 1);
  }
  count(mutex, memory);
  int status = 1;
  const bool counted = other > 0 && waitpid(other, &status, 0) == other && status == 0;
  std::printf("two processes have counted to %d\n", *static_cast<int*>(memory.address));
  // The last one to close removes segment and mutex from the system.
  ZotOsMmfClose(&memory);
  return ZotOsMutexClose(mutex) == 1 && counted ? 0 : 1;
}
