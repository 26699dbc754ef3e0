#include "os/ZotOsFile.h"

#include <limits.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "os/zot_string.h"

#ifdef __APPLE__
#include <mach-o/dyld.h>
#endif

namespace {

// Reads the path of the running program like readlink(): unterminated, cut to
// size, -1 with errno on failure.
ssize_t readProgramPath(char* path, size_t size) {
#ifdef __APPLE__
  char whole[PATH_MAX];
  uint32_t capacity = sizeof whole;
  if (size == 0 || _NSGetExecutablePath(whole, &capacity) != 0) {
    errno = size == 0 ? EINVAL : ENAMETOOLONG;
    return -1;
  }
  const size_t length = strnlen(whole, size);
  std::memcpy(path, whole, length);
  return static_cast<ssize_t>(length);
#else
  char link[1024];
  sprintf_zot(link, sizeof link, "/proc/%u/exe", static_cast<unsigned int>(getpid()));
  return readlink(link, path, size);
#endif
}

}  // namespace

uint32_t ZotOsGetModuleFileName(char* dir, uint32_t dirSize, char* name, uint32_t nameSize, uint32_t* error) {
  errno = 0;
  // The path is split here and not in dir: one that fills dir to its last byte
  // has no room for a terminator there, while its directory part always has.
  char path[PATH_MAX + 1];
  const ssize_t length = readProgramPath(path, std::min<size_t>(dirSize, PATH_MAX));
  if (length >= 0) {
    path[length] = '\0';
    char* const slash = std::strrchr(path, '/');
    if (slash != nullptr) {
      *slash = '\0';
      if (name != nullptr) {
        strcpy_zot(name, nameSize, slash + 1);
      }
    } else {
      errno = EINVAL;  // GCOVR_EXCL_LINE: the system knows every program by a path with a slash
    }
    strcpy_zot(dir, dirSize, path);
  }
  const int result = errno;
  if (error != nullptr) {
    *error = static_cast<uint32_t>(result);
  }
  return result == 0 ? 1 : 0;
}

uint32_t ZotOsGetModulePath(char* dir, uint32_t dirSize, uint32_t* error) {
  return ZotOsGetModuleFileName(dir, dirSize, nullptr, 0, error);
}
