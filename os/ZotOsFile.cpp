#include "os/ZotOsFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "os/CancellationOff.h"
#include "os/FileDescriptor.h"
#include "os/MallocedInternal.h"
#include "os/RepeatedOnSignalInternal.h"

namespace {

constexpr mode_t kPermissionBits = 07777;
constexpr mode_t kUserBits = 0777;  // all but the set-id bits and the sticky one
constexpr size_t kBlockSizeUnknown = 512;
constexpr off_t kKernelPiece = 0x40000000;  // bytes; a length that all hosts can express

uint32_t succeeded(int result) {
  return result == 0 ? 1 : 0;
}

// Lets the kernel move up to count bytes on from where both files stand.  What it leaves,
// be it because these file systems cannot, or because of a failure, is the caller's.
void moveInKernel([[maybe_unused]] int from, [[maybe_unused]] int to, [[maybe_unused]] off_t count) {
#ifdef __linux__
  while (count > 0) {
    const ssize_t moved = repeatedOnSignal([&] {
      return copy_file_range(from, nullptr, to, nullptr, static_cast<size_t>(std::min(count, kKernelPiece)),
                             0);
    });
    if (moved <= 0) {
      break;
    }
    count -= moved;
  }
#endif
}

// From where both files stand to the end of the source, which may be further away than
// its size says.
bool copyRest(int from, int to, char* buffer, size_t size) {
  for (;;) {
    const ssize_t count = repeatedOnSignal([&] { return read(from, buffer, size); });
    if (count <= 0) {
      return count == 0;
    }
    if (!writeAll(to, {buffer, static_cast<size_t>(count)}).empty()) {
      return false;
    }
  }
}

// Takes from a file that existed what the source does not grant, so that nobody opens it
// or runs it under another id while it fills, or when that fails.
bool narrow(int to, const struct stat& destination, const struct stat& source) {
  const mode_t has = destination.st_mode & kPermissionBits;
  const mode_t keeps = has & source.st_mode & kUserBits;
  return !S_ISREG(destination.st_mode) || has == keeps || fchmod(to, keeps) == 0;
}

bool fillCopy(int from, const struct stat& source, int to) {
  struct stat destination;
  if (fstat(to, &destination) != 0 || !narrow(to, destination, source)) {
    return false;
  }
  const size_t size =
      destination.st_blksize < 1 ? kBlockSizeUnknown : static_cast<size_t>(destination.st_blksize);
  const Malloced<char> buffer(static_cast<char*>(std::malloc(size)));
  if (buffer != nullptr) {
    moveInKernel(from, to, source.st_size);
    if (!copyRest(from, to, buffer.get(), size) || fchown(to, source.st_uid, source.st_gid) != 0) {
      return false;
    }
  }
  // Creation honoured the umask, or met an existing file with bits of its own; and
  // both writing and a new owner take the set-id bits away, so this comes last.
  return fchmod(to, source.st_mode & kPermissionBits) == 0;
}

bool copyTo(const char* path, int from, const struct stat& source) {
  FileDescriptor to(open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, source.st_mode & kUserBits));
  if (!to.isOpen() || !fillCopy(from, source, to.get()) || !to.close()) {
    return false;
  }
  const utimbuf times{source.st_atime, source.st_mtime};
  return utime(path, &times) == 0;
}

}  // namespace

uint32_t ZotOsFileExists(const char* path) {
  return succeeded(access(path, F_OK));
}

uint32_t ZotOsGetFileSize(const char* path, uint32_t* size) {
  struct stat status;
  const bool known = stat(path, &status) == 0;
  *size = known ? static_cast<uint32_t>(status.st_size) : 0;
  return known ? 1 : 0;
}

uint32_t ZotOsSetFileTime(const char* path, uint32_t seconds) {
  const auto time = static_cast<time_t>(seconds);
  const utimbuf times{time, time};
  return succeeded(utime(path, &times));
}

uint32_t ZotOsCopyFile(const char* source, const char* destination, uint32_t failIfExists) {
  const CancellationOff uncancelled;
  if (failIfExists != 0 && ZotOsFileExists(destination) != 0) {
    return 0;
  }
  FileDescriptor from(open(source, O_RDONLY | O_CLOEXEC));
  struct stat status;
  if (!from.isOpen() || fstat(from.get(), &status) != 0 || !copyTo(destination, from.get(), status)) {
    return 0;
  }
  return from.close() ? 1 : 0;
}

uint32_t ZotOsDeleteFile(const char* path) {
  return succeeded(unlink(path));
}

uint32_t ZotOsDeleteDir(const char* path) {
  return succeeded(rmdir(path));
}

uint32_t ZotOsRenameFile(const char* oldPath, const char* newPath) {
  return succeeded(std::rename(oldPath, newPath));
}
