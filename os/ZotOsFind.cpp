#include "os/ZotOsFile.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <string_view>

#include "log/LogLineInternal.h"
#include "os/CancellationOff.h"
#include "os/ZotOsFileInternal.h"
#include "os/zot_string.h"

namespace {

bool matches(std::string_view name, std::string_view pattern) {
  if (pattern == "*" || pattern == "*.*" || pattern == "*.") {
    return name != "." && name != "..";
  }
  const size_t star = pattern.find('*');
  if (star == std::string_view::npos) {
    return name == pattern;
  }
  // The length keeps prefix and suffix from sharing characters.
  return name.size() >= pattern.size() - 1 && name.starts_with(pattern.substr(0, star)) &&
         name.ends_with(pattern.substr(star + 1));
}

// Looks at an entry by its path, a link followed.  An absolute path leads to the directory
// that is open, from where the way is shorter; a relative one depends on where the process
// is now, and a cut one names something else.
bool examine(const ZotOsFindData& find, const char* name, struct stat& status) {
  if (find.path[0] == '/' && std::strlen(find.path) + 1 + std::strlen(name) < ZOT_OS_FIND_TEXT) {
    return fstatat(dirfd(find.dir), name, &status, 0) == 0;
  }
  char path[ZOT_OS_FIND_TEXT];
  strcpy_zot(path, sizeof path, find.path);
  strcat_zot(path, sizeof path, "/");
  strcat_zot(path, sizeof path, name);
  return stat(path, &status) == 0;
}

// Fills path and pattern; false when the text has no star and names nothing.
bool splitSearch(const char* text, ZotOsFindData& find) {
  if (std::strchr(text, '*') == nullptr) {
    struct stat status;
    if (stat(text, &status) != 0) {
      return false;
    }
    if (S_ISDIR(status.st_mode)) {
      strcpy_zot(find.path, sizeof find.path, text);
      strcat_zot(find.path, sizeof find.path, "/");
      strcpy_zot(find.pattern, sizeof find.pattern, "*");
      return true;
    }
  }
  vSplitFileName(text, find.path, find.pattern);
  return true;
}

}  // namespace

void vSplitFileName(const char* path, char* dir, char* name) {
  const char* const slash = std::strrchr(path, '/');
  if (slash != nullptr) {
    strncpy_zot(dir, ZOT_OS_FIND_TEXT, path, static_cast<unsigned int>(slash - path));
    strcpy_zot(name, ZOT_OS_FIND_TEXT, slash + 1);
  } else {
    strcpy_zot(dir, ZOT_OS_FIND_TEXT, "./");
    strcpy_zot(name, ZOT_OS_FIND_TEXT, path);
  }
  if (name[0] == '\0') {
    strcpy_zot(name, ZOT_OS_FIND_TEXT, "*");
  }
}

bool openSearch(ZotOsFindData& find, const char* text) {
  find.dir = nullptr;
  if (!splitSearch(text, find)) {
    return false;
  }
  ZOT_LINE(ZOT_LOG_TRACE, "TRACE FindFirst: splitted input - path=%s, file=%s", find.path, find.pattern);
  find.dir = opendir(find.path);
  if (find.dir == nullptr) {
    const int error = errno;
    ZOT_LINE(ZOT_LOG_ERROR, "ERROR FindFirst: opendir failed: %d=%s", error, std::strerror(error));
  }
  return find.dir != nullptr;
}

const dirent* readMatch(const ZotOsFindData& find) {
  const dirent* entry;
  do {
    entry = readdir(find.dir);
    if (entry == nullptr) {
      break;
    }
    ZOT_LINE(ZOT_LOG_TRACE, "TRACE FindNext: file = %s ; search file = %s", entry->d_name, find.pattern);
  } while (!matches(entry->d_name, find.pattern));
  return entry;
}

uint32_t ZotOsFindFirst(ZotOsFindData* find, const char* pattern, char* name, uint32_t* type, uint32_t* mtime,
                        uint32_t* size) {
  if (find == nullptr) {
    return 0;
  }
  const CancellationOff uncancelled;
  find->dir = nullptr;
  if (pattern == nullptr || name == nullptr || !openSearch(*find, pattern)) {
    return 0;
  }
  if (ZotOsFindNext(find, name, type, mtime, size) != 0) {
    return 1;
  }
  const int error = errno;
  closedir(find->dir);
  find->dir = nullptr;
  errno = error;
  return 0;
}

uint32_t ZotOsFindNext(ZotOsFindData* find, char* name, uint32_t* type, uint32_t* mtime, uint32_t* size) {
  if (find == nullptr || name == nullptr || find->dir == nullptr) {
    return 0;
  }
  const CancellationOff uncancelled;
  name[0] = '\0';
  const dirent* const entry = readMatch(*find);
  if (entry == nullptr) {
    return 0;
  }
  strcpy_zot(name, ZOT_OS_FIND_TEXT, entry->d_name);
  struct stat status;
  if (!examine(*find, name, status)) {
    return 0;
  }
  if (type != nullptr) {
    *type = S_ISDIR(status.st_mode) ? ZOT_OS_FIND_DIRECTORY : ZOT_OS_FIND_FILE;
  }
  if (mtime != nullptr) {
    *mtime = static_cast<uint32_t>(status.st_mtime);
  }
  if (size != nullptr) {
    *size = static_cast<uint32_t>(status.st_size);
  }
  return 1;
}

uint32_t ZotOsFindClose(ZotOsFindData* find) {
  if (find == nullptr || find->dir == nullptr) {
    return 1;
  }
  const CancellationOff uncancelled;
  if (closedir(find->dir) != 0) {
    return 0;
  }
  find->dir = nullptr;
  return 1;
}
