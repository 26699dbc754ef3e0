#include "os/ReservedPages.h"

#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/shm.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>

namespace {

#ifdef SHM_REMAP

// Segments begin at multiples of this many bytes; at least a page.
size_t granule() {
  return static_cast<size_t>(SHMLBA);
}

void* zeros(size_t size) {
  return mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
}

// Moved there, because a thread sanitizer takes an mmap over the segment for a write
// that races with its readers.
bool putZerosAt(void* address) {
  void* const fresh = zeros(granule());
  if (fresh == MAP_FAILED) {
    return false;
  }
  if (mremap(fresh, granule(), granule(), MREMAP_MAYMOVE | MREMAP_FIXED, address) == address) {
    return true;
  }
  const int error = errno;
  munmap(fresh, granule());
  errno = error;
  return false;
}

// One granule of zeros, null when there is none to be had.
void* reserve() {
  void* const room = zeros(2 * granule());
  if (room == MAP_FAILED) {
    return nullptr;
  }
  const uintptr_t behind = reinterpret_cast<uintptr_t>(room) % granule();
  return static_cast<char*>(room) + (behind == 0 ? 0 : granule() - behind);
}

void* reservedPages() {
  static void* const pages = reserve();
  return pages;
}

bool fits(int shmId) {
  shmid_ds status{};
  return reservedPages() != nullptr && shmctl(shmId, IPC_STAT, &status) == 0 && status.shm_segsz <= granule();
}

#endif

}  // namespace

void* attachReserved(int shmId) {
#ifdef SHM_REMAP
  if (fits(shmId)) {
    void* const block = shmat(shmId, reservedPages(), SHM_REMAP);
    // What refuses this address, and not the segment, answers EINVAL.
    if (block != MAP_FAILED || errno != EINVAL) {
      return block;
    }
  }
#endif
  return shmat(shmId, nullptr, 0);
}

int detachBlock(void* address) {
#ifdef SHM_REMAP
  if (address != nullptr && address == reservedPages()) {
    return putZerosAt(address) ? 0 : -1;
  }
#endif
  return shmdt(address);
}
