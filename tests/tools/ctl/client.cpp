// A process of a client, for sessions: client NAME [+|-|?]KEY..., or client COUNT KEY,
// which makes the shared block and lets it go so many times, and ends when it stays.
//
// Creates a mutex under each key, takes those with a '+', opens those with a '-' and waits
// on those with a '?'.  Says "ready" and writes a TRACE line every 10 milliseconds until
// SIGTERM, on which it closes everything.
#include <signal.h>
#include <sys/shm.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "zotmacguiutils.h"

namespace {

volatile sig_atomic_t stopped = 0;

void stop(int) {
  stopped = 1;
}

ZotOsMutexHandle* mutexFor(const char* word) {
  const bool plain = *word != '+' && *word != '-' && *word != '?';
  const auto key = static_cast<int32_t>(std::strtol(plain ? word : word + 1, nullptr, 0));
  ZotOsMutexHandle* mutex = nullptr;
  const bool create = plain || *word == '+';
  if ((create ? ZotOsMutexCreate(&mutex, static_cast<uint32_t>(key)) : ZotOsMutexOpen(&mutex, key)) == 0) {
    std::exit(3);
  }
  if (*word == '+') {
    ZotOsMutexWait(mutex, -1, nullptr);
  }
  return mutex;
}

}  // namespace

int main(int argc, char** argv) {
  signal(SIGTERM, stop);
  for (long cycles = std::atol(argv[1]); cycles > 0; --cycles) {
    ZotOsMutexClose(mutexFor(argv[2]));
    stopped = 1;
    // Whoever looks at the block right now may keep it for a moment.
    for (int look = 0; shmget(0x8009, 0, 0) != -1; ++look) {
      if (look == 1000) {
        std::printf("the block stays, %ld cycles were left\n", cycles);
        return 4;
      }
      usleep(1000);
    }
  }
  if (stopped != 0) {
    return 0;
  }
  std::vector<ZotOsMutexHandle*> mutexes;
  ZotOsLog* log = ZotOspLogNew();
  for (int argument = 2; argument < argc; ++argument) {
    mutexes.push_back(mutexFor(argv[argument]));
  }
  std::printf("%s ready\n", argv[1]);
  std::fflush(stdout);
  for (int argument = 2; argument < argc; ++argument) {
    if (*argv[argument] == '?') {
      ZotOsMutexWait(mutexes[static_cast<size_t>(argument - 2)], -1, nullptr);
    }
  }
  while (stopped == 0) {
    ZotOsvLog(log, ZOT_LOG_TRACE, "TRACE %s: works", argv[1]);
    usleep(10000);
  }
  for (ZotOsMutexHandle* mutex : mutexes) {
    ZotOsMutexClose(mutex);
  }
  ZotOsvLogDelete(&log);
  return 0;
}
