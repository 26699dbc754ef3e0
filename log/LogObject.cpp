// The log object and its place in the shared block.
#include <atomic>
#include <cstdlib>

#include "log/LogLineInternal.h"
#include "log/ZotLog.h"
#include "os/SharedControlBlock.h"
#include "os/ZotOsMmf.h"
#include "os/ZotOsSystem.h"

namespace logobject {

// The object made last; apart from the pstLog that lines are written through.
std::atomic<ZotOsLog*> pstLog{nullptr};

}  // namespace logobject

namespace {

SharedControlBlock& block(const ZotOsMmfHandle& handle) {
  return *static_cast<SharedControlBlock*>(handle.address);
}

// Returns false, with *levelPtr at localWord, when the block cannot be had.
bool attach(ZotOsMmfHandle& handle, uint32_t& localWord, uint32_t*& levelPtr) {
  localWord = ZOT_LOG_SILENT;
  levelPtr = &localWord;
  ZotOsMmfCreate(&handle, kSharedBlockSize, nullptr, kSharedBlockKey, 1);
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
  levelPtr = &shared.Log.value;
  return true;
}

void detach(ZotOsMmfHandle& handle) {
  if (handle.address == nullptr || handle.shmId == -1) {
    return;
  }
  block(handle).ProcCnt.decrement();
  ZotOsMmfClose(&handle);
}

}  // namespace

ZotOsLog* ZotOspLogNew(void) {
  ZotOsInit();
  auto* log = static_cast<ZotOsLog*>(std::calloc(1, sizeof(ZotOsLog)));
  logobject::pstLog = log;
  if (log == nullptr) {
    return nullptr;
  }
  if (!attach(log->handle, log->localLevel, log->level)) {
    logobject::pstLog = nullptr;
    std::free(log);
    return nullptr;
  }
  return log;
}

void ZotOsvLogDelete(ZotOsLog** log) {
  if (log == nullptr || *log == nullptr) {
    return;
  }
  ZotOsLog* const object = *log;
  // The lines of the detaching itself are still wanted, but the shared word goes
  // away under them: from here on the object reads a copy of its own.
  object->localLevel = logLevel(object);
  object->level = &object->localLevel;
  detach(object->handle);
  std::atomic_ref(*log).store(nullptr, std::memory_order_release);
  std::free(object);
}

uint32_t fnfOpenShm(ZotOsMmfHandle* handle, uint32_t* localWord, uint32_t** levelPtr) {
  if (handle == nullptr || localWord == nullptr || levelPtr == nullptr) {
    return 0;
  }
  return attach(*handle, *localWord, *levelPtr) ? 1 : 0;
}

void fnvCloseShm(ZotOsMmfHandle* handle) {
  if (handle != nullptr) {
    detach(*handle);
  }
}
