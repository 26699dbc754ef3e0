#include "os/NamedSemaphoreInternal.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "log/LogLineInternal.h"
#include "log/LogObjectInternal.h"
#include "os/SharedBlockLock.h"
#include "os/SharedControlBlock.h"
#include "os/ZotOsSync.h"
#include "os/ZotOsSystem.h"
#include "os/ZotOsSystemInternal.h"

namespace {

constexpr uint32_t kRetryDelayMs = 50;

bool setValue(int32_t semId, uint32_t value) {
  ZotSemun argument{};
  argument.val = static_cast<int>(value);
  return semctl(semId, 0, SETVAL, argument) != -1;
}

bool removeSet(int32_t semId) {
  return semctl(semId, 0, IPC_RMID) != -1;
}

// Does all of the operations or none.  Returns 0 or the error number.
//
// None has SEM_UNDO: a process that dies with a mutex leaves it taken, so that nobody
// walks into the data it was changing.
template <size_t count>
int operate(int32_t semId, sembuf (&&operations)[count]) {
  return semop(semId, operations, count) == 0 ? 0 : errno;
}

// Takes one unit.  Returns 0 or the error number, EINTR when the process is
// shutting down.
int takeUnit(int32_t semId, uint32_t flags) {
  for (;;) {
    const int error = operate(semId, {{0, -1, static_cast<short>(flags)}});
    if (error == EINTR) {
      ZOT_LINE(ZOT_LOG_ERROR, "!!!!!! semop interrupted: %d=%s shutd=%lu", error, std::strerror(error),
               static_cast<unsigned long>(fShutdown));
      ZotOsSleep(kRetryDelayMs);
    }
    if (error != EINTR || fShutdown != 0) {
      return error;
    }
  }
}

// Gives one unit, to a mutex only while it is taken: otherwise EAGAIN, also when another
// process frees it at the same moment.  Returns 0 or the error number.
int giveUnit(int32_t semId, bool mutex) {
  constexpr sembuf give{0, 1, 0}, ifTaken{0, 0, IPC_NOWAIT};
  return mutex ? operate(semId, {ifTaken, give}) : operate(semId, {give});
}

void refuseFiniteTimeout(uint32_t timeoutMs) {
  if (timeoutMs != 0 && timeoutMs != ZOT_OS_INFINITE) {
    std::printf("Timeout in Events not supported for MacOSX (you're timeout=%d)\n",
                static_cast<int>(timeoutMs));
    std::exit(0);
  }
}

void storeResult(uint32_t* result, uint32_t value) {
  if (result != nullptr) {
    *result = value;
  }
}

// Makes the process's log object if there is none; errno as the failed step left it.
bool attachLog() {
  return pstLog.load() != nullptr || beginProcessLog();
}

void clearTable(SharedControlBlock& shm) {
  shm.NamedSemCnt.store(0);
  shm.MaxNamedIdx.store(0);
  for (auto& slot : shm.cnt) {
    slot.semId.store(kFreeSlot);
    slot.count.store(0);
  }
}

// The slot of this semaphore, or kNamedSlots.  MaxNamedIdx comes from memory that
// others write, so it is not trusted with the length of the table.
uint32_t findSlot(SharedControlBlock& shm, int32_t semId) {
  const uint32_t used = std::min(shm.MaxNamedIdx.load(), kNamedSlots);
  for (uint32_t i = 0; i < used; ++i) {
    if (shm.cnt[i].semId.load() == semId) {
      return i;
    }
  }
  return kNamedSlots;
}

// Gives the semaphore the first free slot.  Returns it, or kNamedSlots.
uint32_t claimSlot(SharedControlBlock& shm, int32_t semId) {
  for (uint32_t i = 0; i < kNamedSlots; ++i) {
    if (shm.cnt[i].semId.replace(kFreeSlot, semId)) {
      shm.cnt[i].count.store(1);
      shm.MaxNamedIdx.raise(i + 1);
      return i;
    }
  }
  return kNamedSlots;
}

// Counts a semaphore that was just created or opened: for this process, for all
// of them and, with a key, in the table.
void countOpened(const char* function, int letter, int32_t semId, bool keyed) {
  SharedControlBlock& shm = *pstShm;
  const uint32_t local = ++pstLog.load()->LocSemCnt;
  shm.GlobSemCnt.increment();
  if (keyed && fIncNamedSemCnt(static_cast<uint32_t>(semId)) == 0) {
    ZOT_LINE(ZOT_LOG_ERROR, "ERROR %s%c(%d): shared mem not installed or runs over", function, letter, semId);
  }
  ZOT_LINE_IDS(ZOT_LOG_TRACE,
               "TRACE %s%c(%d): semval=%d LocSemCnt=%u Shm=%p GlobSemCnt=%u NamedSemCnt=%u MaxNamedIdx=%u "
               "Log=%08X (pid=%u tid=%ld)",
               function, letter, semId, ZotOsSemaphoreVal(semId), local, static_cast<void*>(&shm),
               shm.GlobSemCnt.load(), shm.NamedSemCnt.load(), shm.MaxNamedIdx.load(), shm.Log.load());
}

// Drops one reference.  Returns whether other references keep the semaphore; one
// that the table doesn't know has none.
bool stillReferenced(SharedControlBlock& shm, int32_t semId) {
  const uint32_t i = findSlot(shm, semId);
  if (i == kNamedSlots) {
    return false;
  }
  const uint32_t total = shm.NamedSemCnt.decrement();
  const uint32_t count = shm.cnt[i].count.decrement();
  if (count == 0) {
    shm.cnt[i].semId.store(kFreeSlot);
  }
  ZOT_LINE_IDS(ZOT_LOG_TRACE, "TRACE dDecNamedSemCnt(%d): cnt[%d]=%u SemCnt=%u MaxIdx=%u (pid=%u tid=%ld)",
               semId, static_cast<int>(i), count, total, shm.MaxNamedIdx.load());
  return count != 0;
}

// This process's count of open semaphores.
uint32_t localSemCount() {
  const ZotOsLog* const log = pstLog;
  return log != nullptr ? log->LocSemCnt : 0;
}

void logClosing(int letter, int32_t semId) {
  SharedControlBlock* const shm = pstShm;
  ZOT_LINE_IDS(ZOT_LOG_TRACE, "TRACE ZotOsClose%c(%d): LocSemCnt=%d Shm=%p (pid=%u tid=%ld)", letter, semId,
               static_cast<int>(localSemCount()), static_cast<void*>(shm));
  if (shm != nullptr) {
    ZOT_LINE(ZOT_LOG_TRACE, "TRACE ZotOsClose shm: GlobSemCnt=%u NamedSemCnt=%u MaxNamedIdx=%u Log=%08X",
             shm->GlobSemCnt.load(), shm->NamedSemCnt.load(), shm->MaxNamedIdx.load(), shm->Log.load());
  }
}

// Undoes countOpened's first two counts; the last one ends the log.
void countClosed() {
  if (SharedControlBlock* const shm = pstShm; shm != nullptr) {
    const uint32_t open = shm->GlobSemCnt.decrement();
    ZOT_LINE(ZOT_LOG_TRACE, "TRACE ZotOsClose shm: GlobSemCnt=%u", open);
  }
  ZotOsLog* const log = pstLog;
  if (log == nullptr) {
    return;
  }
  if (const uint32_t local = --log->LocSemCnt; local == 0) {
    ZOT_LINE(ZOT_LOG_TRACE, "TRACE ZotOsClose: DeleteLog=%u", local);
    endProcessLog();
  }
}

// Makes a new set that holds this value.  Returns 0 or the error number.
int makeSet(int32_t* semId, uint32_t key, uint32_t value, int letter) {
  *semId = semget(static_cast<key_t>(key), 1, key != 0 ? IPC_CREAT | IPC_EXCL | 0666 : 0666);
  if (*semId == -1) {
    const int error = errno;
    if (error != EEXIST) {
      ZOT_LINE_ERR_IDS(ZOT_LOG_FATAL, error,
                       "FATAL ZotOsCreate%c: semget (key=0x%X) failed (%d=%s pid=%u tid=%ld)", letter, key);
    }
    return error;
  }
  if (!setValue(*semId, value)) {
    const int error = errno;
    ZOT_LINE_ERR_IDS(ZOT_LOG_FATAL, error, "FATAL ZotOsCreate%c: semctl failed (%d=%s pid=%u tid=%ld)",
                     letter);
    removeSet(*semId);
    return error;
  }
  return 0;
}

uint32_t openSet(int32_t* semId, int32_t key, int letter) {
  *semId = semget(key, 0, 0);
  if (*semId == -1) {
    const int error = errno;
    ZOT_LINE_ERR_IDS(ZOT_LOG_ERROR, error, "FATAL ZotOsOpen%c(%d): semctl failed (%d=%s pid=%d tid=%ld)",
                     letter, *semId);
    errno = error;
    return 0;
  }
  if (!attachLog()) {
    const int error = errno;
    // There is no log to write to, so this one goes to standard error; callers
    // get it without a newline.
    std::fprintf(stderr, "FATAL ZotOsOpen%c(%d): pstLog is not created (pid=%d tid=%ld)", letter, *semId,
                 logPid(), logTid());
    errno = error;
    return 0;
  }
  countOpened("ZotOsOpen", letter, *semId, true);
  return 1;
}

}  // namespace

uint32_t ZotOsCreate(int32_t* semId, uint32_t key, uint32_t initialValue, uint32_t typeLetter) {
  if (semId == nullptr) {
    return 0;
  }
  const SharedBlockLock lock;
  const int letter = static_cast<int>(typeLetter);
  const int refused = makeSet(semId, key, initialValue, letter);
  if (refused == EEXIST) {
    if (openSet(semId, static_cast<int32_t>(key), letter) != 0) {
      return 1;
    }
    const int error = errno;
    ZOT_LINE_ERR_IDS(
        ZOT_LOG_FATAL, error,
        "FATAL ZotOsCreate%c: key=0x%X already created, but ZotOsOpen failed (%d=%s pid=%u tid=%ld)", letter,
        key);
  }
  if (refused != 0) {
    return 0;
  }
  if (!attachLog()) {
    removeSet(*semId);
    return 0;
  }
  if (SharedControlBlock& shm = *pstShm; shm.GlobSemCnt.load() == 0) {
    clearTable(shm);
  }
  countOpened("ZotOsCreate", letter, *semId, key != 0);
  return 1;
}

uint32_t ZotOsOpen(int32_t* semId, int32_t key, uint32_t typeLetter) {
  if (semId == nullptr || key == 0) {
    return 0;
  }
  const SharedBlockLock lock;
  return openSet(semId, key, static_cast<int>(typeLetter));
}

uint32_t ZotOsSet(int32_t semId, uint32_t* result, uint32_t typeLetter, uint32_t flags, uint32_t timeoutMs) {
  const int letter = static_cast<int>(typeLetter);
  const auto id = static_cast<uint32_t>(semId);
  ZOT_LINE_IDS(ZOT_LOG_DEBUG, "DEBUG ZotOsSet%c(%u) entry: semval=%d (pid=%u tid=%ld)", letter, id,
               ZotOsSemaphoreVal(semId));
  refuseFiniteTimeout(timeoutMs);
  const int error = takeUnit(semId, flags);
  if (error == 0) {
    ZOT_LINE_IDS(ZOT_LOG_DEBUG, "DEBUG ZotOsSet%c(%u) exit: semval=%d (pid=%u tid=%ld)", letter, id,
                 ZotOsSemaphoreVal(semId));
    storeResult(result, kZotOsWaitSignalled);
    return 1;
  }
  const bool noWait = (flags & IPC_NOWAIT) != 0;
  if (!noWait && error != EAGAIN) {
    ZOT_LINE_ERR_IDS(ZOT_LOG_ERROR, error,
                     "ERROR ZotOsSet%c(%u): semop failed (semval=%d) (%d=%s pid=%u tid=%ld)", letter, id,
                     ZotOsSemaphoreVal(semId));
    storeResult(result, kZotOsWaitFailed);
    return 0;
  }
  ZOT_LINE_IDS(ZOT_LOG_DEBUG, "DEBUG ZotOsSet%c(%u) exit-%s: semval=%d (pid=%u tid=%ld)", letter, id,
               noWait ? "NO_WAIT" : "TIMEOUT", ZotOsSemaphoreVal(semId));
  storeResult(result, kZotOsWaitTimeout);
  return 1;
}

uint32_t ZotOsRelease(int32_t semId, uint32_t typeLetter) {
  const int letter = static_cast<int>(typeLetter);
  const bool mutex = typeLetter == 'M';
  ZOT_LINE_IDS(ZOT_LOG_DEBUG, "DEBUG ZotOsRelease%c(%d) entry: semval=%d (pid=%u tid=%ld)", letter, semId,
               ZotOsSemaphoreVal(semId));
  const int error = giveUnit(semId, mutex);
  if (mutex && error == EAGAIN) {
    return 1;  // it was free already
  }
  if (error != 0) {
    ZOT_LINE_ERR_IDS(ZOT_LOG_ERROR, error,
                     "ERROR ZotOsRelease%c(%d): semop failed (semval=%d) (%d=%s pid=%u tid=%ld)", letter,
                     semId, ZotOsSemaphoreVal(semId));
    return 0;
  }
  ZOT_LINE_IDS(ZOT_LOG_DEBUG, "DEBUG ZotOsRelease%c(%d) exit: semval=%d (pid=%u tid=%ld)", letter, semId,
               ZotOsSemaphoreVal(semId));
  return 1;
}

uint32_t ZotOsClose(int32_t semId, uint32_t typeLetter) {
  if (semId == -1) {
    return 1;
  }
  const SharedBlockLock lock;
  const int letter = static_cast<int>(typeLetter);
  logClosing(letter, semId);
  SharedControlBlock* const shm = pstShm;
  if (shm == nullptr || !stillReferenced(*shm, semId)) {
    if (!removeSet(semId)) {
      const int error = errno;
      ZOT_LINE_ERR_IDS(ZOT_LOG_ERROR, error, "ERROR ZotOsClose%c: semctl failed (%d=%s pid=%u tid=%ld)",
                       letter);
      return 0;
    }
  }
  countClosed();
  return 1;
}

uint32_t fIncNamedSemCnt(uint32_t semId) {
  SharedControlBlock* const shm = pstShm;
  if (shm == nullptr) {
    return 0;
  }
  const auto id = static_cast<int32_t>(semId);
  const uint32_t total = shm->NamedSemCnt.increment();
  if (const uint32_t i = findSlot(*shm, id); i != kNamedSlots) {
    const uint32_t count = shm->cnt[i].count.increment();
    ZOT_LINE_IDS(ZOT_LOG_TRACE,
                 "TRACE fIncNamedSemCnt(%u) inc: cnt[%d]=%u SemCnt=%u MaxIdx=%u (pid=%u tid=%ld)", semId,
                 static_cast<int>(i), count, total, shm->MaxNamedIdx.load());
    return 1;
  }
  const uint32_t i = claimSlot(*shm, id);
  if (i == kNamedSlots) {
    return 0;
  }
  ZOT_LINE_IDS(ZOT_LOG_TRACE,
               "TRACE fIncNamedSemCnt(%d) new: cnt[%d]=%u SemCnt=%u MaxIdx=%u (pid=%u tid=%ld)", id,
               static_cast<int>(i), 1u, total, shm->MaxNamedIdx.load());
  return 1;
}

int32_t ZotOsSemaphoreVal(int32_t semId) {
  return semctl(semId, 0, GETVAL);
}
