// Log objects and their place in the shared block.
#include <atomic>
#include <cstdlib>

#include "log/LogLineInternal.h"
#include "log/LogObjectInternal.h"
#include "log/ZotLog.h"
#include "os/ReservedPages.h"
#include "os/SharedBlockLock.h"
#include "os/SharedControlBlock.h"
#include "os/ZotOsMmf.h"
#include "os/ZotOsMmfInternal.h"
#include "os/ZotOsSystem.h"

namespace {

SharedControlBlock& block(const ZotOsMmfHandle& handle) {
  return *static_cast<SharedControlBlock*>(handle.address);
}

// Another thread may be reading through either of the words.
void pointAtLocal(uint32_t*& levelPtr, uint32_t& localWord, uint32_t value) {
  std::atomic_ref(localWord).store(value, std::memory_order_relaxed);
  std::atomic_ref(levelPtr).store(&localWord, std::memory_order_release);
}

// Counts this user in the block that was just attached.  Returns false when there is none.
bool countAttached(const ZotOsMmfHandle& handle, uint32_t*& levelPtr) {
  if (handle.address == nullptr) {
    return false;
  }
  SharedControlBlock& shared = block(handle);
  if (handle.lastError != 0) {
    shared.ProcCnt.increment();
  } else {
    shared.GlobSemCnt.store(0);
    shared.ProcCnt.store(1);
  }
  std::atomic_ref(levelPtr).store(&shared.Log.value, std::memory_order_release);
  return true;
}

bool attachAnywhere(ZotOsMmfHandle& handle, uint32_t& localWord, uint32_t*& levelPtr) {
  pointAtLocal(levelPtr, localWord, ZOT_LOG_SILENT);
  ZotOsMmfCreate(&handle, kSharedBlockSize, nullptr, kSharedBlockKey, 1);
  return countAttached(handle, levelPtr);
}

void detach(ZotOsMmfHandle& handle) {
  void* const address = handle.address;
  if (address == nullptr || handle.shmId == -1) {
    return;
  }
  block(handle).ProcCnt.decrement();
  ZotOsMmfClose(&handle);
  // Closing leaves a block attached that it removed, or failed to remove.  It would
  // stay with the process, and the system has room for only so many.
  if (handle.shmId == -1 || handle.address != nullptr) {
    detachBlock(address);
    handle.address = nullptr;
  }
}

// The lines of the detaching itself are still wanted, but the shared word goes away
// under them: from here on the object reads a copy of its own.
void detach(ZotOsLog& log) {
  pointAtLocal(log.level, log.localLevel, logLevel(&log));
  detach(log.handle);
}

// The memory of every pstLog there ever was.
ZotOsLog* processObject = nullptr;

}  // namespace

std::atomic<ZotOsLog*> pstLog{nullptr};

bool beginProcessLog() {
  ZotOsInit();
  if (processObject == nullptr) {
    processObject = static_cast<ZotOsLog*>(std::calloc(1, sizeof(ZotOsLog)));
  }
  if (processObject == nullptr) {
    return false;
  }
  ZotOsLog& log = *processObject;
  log.LocSemCnt = 0;
  pointAtLocal(log.level, log.localLevel, ZOT_LOG_SILENT);
  fMmfCreateReserved(&log.handle, kSharedBlockSize, kSharedBlockKey);
  if (!countAttached(log.handle, log.level)) {
    return false;
  }
  pstShm = &block(log.handle);
  pstLog.store(&log, std::memory_order_release);
  return true;
}

void endProcessLog() {
  detach(*pstLog);
  pstLog.store(nullptr, std::memory_order_release);
  pstShm = nullptr;
}

ZotOsLog* ZotOspLogNew(void) {
  ZotOsInit();
  auto* const log = static_cast<ZotOsLog*>(std::calloc(1, sizeof(ZotOsLog)));
  const SharedBlockLock lock;
  if (log != nullptr && !attachAnywhere(log->handle, log->localLevel, log->level)) {
    std::free(log);
    return nullptr;
  }
  return log;
}

void ZotOsvLogDelete(ZotOsLog** log) {
  if (log == nullptr || *log == nullptr) {
    return;
  }
  const SharedBlockLock lock;
  detach(**log);
  std::free(*log);
  *log = nullptr;
}

uint32_t fnfOpenShm(ZotOsMmfHandle* handle, uint32_t* localWord, uint32_t** levelPtr) {
  if (handle == nullptr || localWord == nullptr || levelPtr == nullptr) {
    return 0;
  }
  const SharedBlockLock lock;
  return attachAnywhere(*handle, *localWord, *levelPtr) ? 1 : 0;
}

void fnvCloseShm(ZotOsMmfHandle* handle) {
  if (handle != nullptr) {
    const SharedBlockLock lock;
    detach(*handle);
  }
}
