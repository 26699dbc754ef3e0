#include "os/ZotOsMmf.h"

#include <fcntl.h>
#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/shm.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "log/LogLineInternal.h"
#include "os/MallocedInternal.h"
#include "os/CancellationOff.h"
#include "os/ReservedPages.h"
#include "os/ZotOsMmfInternal.h"

namespace {

constexpr ZotOsMmfHandle kEmpty{-1, -1, 0, nullptr, 0, {}, 0};

// Keeps the number of the failure.  The file or segment no longer counts as made by
// this process.
void fail(ZotOsMmfHandle& handle, int error) {
  handle.created = 0;
  handle.lastError = error;
}

bool openFile(ZotOsMmfHandle& handle, const char* path) {
  const bool missing = access(path, F_OK) != 0;
  handle.created = missing ? 1 : 0;
  handle.fd = open(path, O_RDWR | O_APPEND | O_CLOEXEC | (missing ? O_CREAT : 0), 0600);
  if (handle.fd == -1) {
    const int error = errno;
    ZOT_LINE_ERR(ZOT_LOG_FATAL, error, "FATAL ZotOsMmfCreate: file %s could not be %s (%d=%s)", path,
                 missing ? "created" : "opened");
    fail(handle, error);
    return false;
  }
  return true;
}

bool readSize(ZotOsMmfHandle& handle, const char* path) {
  struct stat status {};
  if (fstat(handle.fd, &status) == 0) {
    handle.size = static_cast<uint32_t>(status.st_size);
    return true;
  }
  const int error = errno;
  close(handle.fd);
  handle.fd = -1;
  ZOT_LINE_ERR(ZOT_LOG_ERROR, error, "ERROR ZotOsMmfCreate: file status %s could not be read (%d=%s)", path);
  fail(handle, error);
  return false;
}

// The file is open for appending, so one write of zeros makes it grow at its end.
bool extendFile(ZotOsMmfHandle& handle, const char* path, uint32_t size) {
  const uint32_t missing = size - handle.size;
  // At least one byte, or calloc could answer null without a failure.
  const Malloced<void> zeros(std::calloc(std::max(missing, 1u), 1));
  if (zeros == nullptr) {
    const int error = errno;
    ZOT_LINE_ERR(ZOT_LOG_FATAL, error, "FATAL ZotOsMmfCreate: no write buffer availabel (%d=%s)");
    fail(handle, error);
    return false;
  }
  const ssize_t written = write(handle.fd, zeros.get(), missing);
  if (written < 0 || static_cast<size_t>(written) != missing) {
    // A short write sets no number; it is what a disk without room answers.
    const int error = written < 0 ? errno : ENOSPC;
    ZOT_LINE_ERR(ZOT_LOG_FATAL, error,
                 "FATAL ZotOsMmfCreate: write (%u bytes) to created file %s failed (%d=%s)",
                 static_cast<unsigned int>(std::max<ssize_t>(written, 0)), path);
    fail(handle, error);
    return false;
  }
  handle.size = size;
  return true;
}

uint32_t mapFile(ZotOsMmfHandle& handle) {
  void* const block = mmap(nullptr, handle.size, PROT_READ | PROT_WRITE, MAP_SHARED, handle.fd, 0);
  const int error = errno;
  handle.address = block == MAP_FAILED ? nullptr : block;
  // A failed mapping writes this line too; callers rely on it.
  ZOT_LINE(ZOT_LOG_TRACE, "TRACE ZotOsMmfCreate: mmap( %p, %d ) ok", handle.address,
           static_cast<int>(handle.size));
  if (handle.address == nullptr) {
    fail(handle, error);
    return 0;
  }
  return 1;
}

uint32_t createFile(ZotOsMmfHandle& handle, uint32_t size, const char* path) {
  if (!openFile(handle, path)) {
    return 0;
  }
  if (handle.created == 0 && !readSize(handle, path)) {
    return 0;
  }
  if ((handle.created != 0 || handle.size < size) && !extendFile(handle, path, size)) {
    return 0;
  }
  return mapFile(handle);
}

using Attach = void*(int shmId);  // as shmat

void* attachAnywhere(int shmId) {
  return shmat(shmId, nullptr, 0);
}

// A process that cannot attach removes the segment for everybody.
uint32_t fMmfAttach(ZotOsMmfHandle& handle, Attach* attach) {
  void* const block = attach(handle.shmId);
  // shmat answers (void*)-1 for a failure, which is also MAP_FAILED.
  if (block == MAP_FAILED) {
    const int error = errno;
    ZOT_LINE_ERR(ZOT_LOG_FATAL, error, "FATAL fMmfAttach: shmat failed (%d=%s)");
    shmctl(handle.shmId, IPC_RMID, nullptr);
    handle.shmId = -1;
    handle.address = nullptr;
    handle.lastError = error;
    return 0;
  }
  handle.address = block;
  shmid_ds status{};
  if (shmctl(handle.shmId, IPC_STAT, &status) == 0) {
    ZOT_LINE(ZOT_LOG_TRACE, "TRACE fMmfAttach(%d): shm (addr=%p) is attached now: %lu", handle.shmId, block,
             static_cast<unsigned long>(status.shm_nattch));
  }
  return 1;
}

uint32_t openSegment(ZotOsMmfHandle& handle, int32_t key, Attach* attach) {
  handle.shmId = shmget(key, 0, 0);
  if (handle.shmId != -1) {
    ZOT_LINE(ZOT_LOG_TRACE, "TRACE ZotOsMmfOpen(%d): shm (key=0x%X) is opened", handle.shmId,
             static_cast<unsigned int>(key));
    return fMmfAttach(handle, attach);
  }
  handle.lastError = errno;
  ZOT_LINE_ERR(ZOT_LOG_ERROR, handle.lastError, "ERROR ZotOsMmfOpen: open shm (key=0x%X) failed (%d=%s)",
               static_cast<unsigned int>(key));
  return 0;
}

uint32_t createSegment(ZotOsMmfHandle& handle, uint32_t size, int32_t key, Attach* attach) {
  handle.shmId = shmget(key, size, IPC_CREAT | IPC_EXCL | 0666);
  if (handle.shmId != -1) {
    ZOT_LINE(ZOT_LOG_TRACE, "TRACE ZotOsMmfCreate(%d): shm (key=0x%X) is created", handle.shmId,
             static_cast<unsigned int>(key));
    const uint32_t attached = fMmfAttach(handle, attach);
    handle.created = attached != 0 ? 1 : 0;
    return attached;
  }
  int error = errno;
  handle.lastError = error;
  if (error != EEXIST) {
    ZOT_LINE_ERR(ZOT_LOG_FATAL, error, "FATAL ZotOsMmfCreate: shm (key=0x%X) failed (%d=%s)",
                 static_cast<unsigned int>(key));
    return 0;
  }
  if (openSegment(handle, key, attach) != 0) {
    return 1;
  }
  error = handle.lastError;
  ZOT_LINE_ERR(ZOT_LOG_FATAL, error,
               "FATAL ZotOsMmfCreate: key=0x%X already created, but ZotOsMmfOpen failed (%d=%s)",
               static_cast<unsigned int>(key));
  return 0;
}

uint32_t closeFile(ZotOsMmfHandle& handle) {
  if (handle.fd != -1) {
    close(handle.fd);
  }
  if (handle.address == nullptr) {
    return 1;
  }
  ZOT_LINE(ZOT_LOG_TRACE, "TRACE ZotOsMmfClose: unmap(%p) now", handle.address);
  if (munmap(handle.address, handle.size) == 0) {
    return 1;
  }
  handle.lastError = errno;
  ZOT_LINE_ERR(ZOT_LOG_ERROR, handle.lastError, "ERROR ZotOsMmfClose: unmap(%p) failed (%d=%s)",
               handle.address);
  return 0;
}

uint32_t detachSegment(ZotOsMmfHandle& handle) {
  ZOT_LINE(ZOT_LOG_TRACE, "TRACE ZotOsMmfClose(%d): detach shm (%p)", handle.shmId, handle.address);
  if (detachBlock(handle.address) != 0) {
    const int error = errno;
    ZOT_LINE_ERR(ZOT_LOG_ERROR, error, "ERROR ZotOsMmfClose(%d): shm detaching failed (%d=%s)", handle.shmId);
  }
  handle.address = nullptr;
  return 1;
}

// Removed while still attached: the system keeps the block until this process
// lets go of it, so that what still reads it is not cut off.
uint32_t removeSegment(ZotOsMmfHandle& handle) {
  ZOT_LINE(ZOT_LOG_TRACE, "TRACE ZotOsMmfClose(%d): close shm", handle.shmId);
  if (shmctl(handle.shmId, IPC_RMID, nullptr) != 0) {
    const int error = errno;
    ZOT_LINE_ERR(ZOT_LOG_ERROR, error, "ERROR ZotOsMmfClose(%d): shmctl failed ( %d=%s )", handle.shmId);
    return 0;
  }
  handle.address = nullptr;
  handle.shmId = -1;
  return 1;
}

}  // namespace

uint32_t ZotOsMmfCreate(ZotOsMmfHandle* handle, uint32_t size, const char* filePath, int32_t key,
                        uint32_t /*reserved*/) {
  if (handle == nullptr) {
    return 0;
  }
  const CancellationOff uncancelled;
  *handle = kEmpty;
  const bool file = filePath != nullptr && *filePath != '\0';
  return file ? createFile(*handle, size, filePath) : createSegment(*handle, size, key, attachAnywhere);
}

uint32_t fMmfCreateReserved(ZotOsMmfHandle* handle, uint32_t size, int32_t key) {
  *handle = kEmpty;
  return createSegment(*handle, size, key, attachReserved);
}

uint32_t ZotOsMmfOpen(ZotOsMmfHandle* handle, uint32_t /*reserved*/, int32_t key) {
  return handle != nullptr ? openSegment(*handle, key, attachAnywhere) : 0;
}

uint32_t ZotOsMmfFlush(ZotOsMmfHandle* /*handle*/, void* address, uint32_t length) {
  const auto page = static_cast<uintptr_t>(getpagesize());
  const uintptr_t behind = reinterpret_cast<uintptr_t>(address) % page;
  // No mapping has more pages than this.  msync refuses it, but would take a 32-bit
  // length that wraps when it is rounded up for nothing to do.
  const uint64_t most = SIZE_MAX - page + 1;
  const auto whole = static_cast<size_t>(std::min(length + uint64_t{behind}, most));
  if (msync(static_cast<char*>(address) - behind, whole, MS_SYNC) == 0) {
    return 1;
  }
  const int error = errno;
  ZOT_LINE_ERR(ZOT_LOG_ERROR, error, "ERROR ZotOsMmfFlush: msync failed (%d=%s)");
  return 0;
}

uint32_t ZotOsMmfClose(ZotOsMmfHandle* handle) {
  if (handle == nullptr) {
    return 0;
  }
  const CancellationOff uncancelled;
  if (handle->shmId == -1) {
    return closeFile(*handle);
  }
  shmid_ds status{};
  if (shmctl(handle->shmId, IPC_STAT, &status) != 0) {
    return 1;
  }
  ZOT_LINE(ZOT_LOG_TRACE, "TRACE ZotOsMmfClose(%d): shm %d attached processes", handle->shmId,
           static_cast<int>(status.shm_nattch));
  return status.shm_nattch > 1 ? detachSegment(*handle) : removeSegment(*handle);
}
