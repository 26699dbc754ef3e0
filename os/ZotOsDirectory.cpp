#include "os/ZotOsFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <map>
#include <memory>
#include <new>
#include <utility>

#include "os/CancellationOff.h"
#include "os/ZotOsFileInternal.h"
#include "os/zot_string.h"

namespace {

constexpr size_t kCreateText = 500;
constexpr size_t kTreeText = 256;
constexpr mode_t kOwnerOnly = 0700;

bool isSeparator(char character) {
  return character == '/' || character == '\\';
}

// One component of a path that is being created.
enum class Component { Failed, ReadOnly, Writable };

Component makeComponent(const char* prefix) {
  // A second look before creating: another process may have made the directory since
  // the first one, and mkdir() would fail on it.
  if (access(prefix, X_OK) != 0 && access(prefix, W_OK | X_OK) != 0) {
    return mkdir(prefix, kOwnerOnly) == 0 ? Component::Writable : Component::Failed;
  }
  return access(prefix, W_OK) == 0 ? Component::Writable : Component::ReadOnly;
}

// The directories that one deletion has entered, each with the length of the path that
// led there.
using Entered = std::map<std::pair<dev_t, ino_t>, size_t>;

uint32_t deleteTree(const char* path, Entered& entered);

// Notes a directory and returns its place.  Returns the end for one that is not to be
// entered: links lead to a directory time and again, or in a circle, and only a shorter
// path than before reaches entries whose own path was too long.
Entered::iterator enter(int directory, size_t pathLength, Entered& entered) try {
  struct stat status;
  if (fstat(directory, &status) != 0) {
    return entered.end();
  }
  const auto [place, isNew] = entered.try_emplace({status.st_dev, status.st_ino}, pathLength);
  if (!isNew && place->second <= pathLength) {
    return entered.end();
  }
  place->second = pathLength;
  return place;
} catch (const std::bad_alloc&) {
  return entered.end();
}

// What is in work while one directory of a tree is emptied.
struct TreeLevel {
  ZotOsFindData find;
  char entry[kTreeText];
};

// Whether the directory itself tells that an entry is neither a directory nor a link.
bool isPlainFile(const dirent& entry) {
  return entry.d_type != DT_UNKNOWN && entry.d_type != DT_DIR && entry.d_type != DT_LNK;
}

// Returns false for an entry that cannot be examined.
bool deleteEntry(TreeLevel& level, const char* path, const dirent& entry, Entered& entered) {
  const int directory = dirfd(level.find.dir);
  struct stat status;
  const bool plain = isPlainFile(entry);
  if (!plain && fstatat(directory, entry.d_name, &status, 0) != 0) {
    return false;
  }
  if (std::strlen(path) + 1 + std::strlen(entry.d_name) >= sizeof level.entry) {
    return true;  // a cut path is the name of something else
  }
  if (!plain && S_ISDIR(status.st_mode)) {
    sprintf_zot(level.entry, sizeof level.entry, "%s/%s", path, entry.d_name);
    deleteTree(level.entry, entered);
    return true;
  }
  return unlinkat(directory, entry.d_name, 0) == 0 || !plain ||
         fstatat(directory, entry.d_name, &status, 0) == 0;
}

// Returns the directory's place, the end when it was not entered.
Entered::iterator deleteEntries(const char* path, Entered& entered) {
  // On the heap, because a worker thread's stack is smaller than the levels
  // that a path can name.
  const std::unique_ptr<TreeLevel> level(new (std::nothrow) TreeLevel);
  if (level == nullptr) {
    return entered.end();
  }
  // A path so long that it is cut here leads to another directory, but then no entry's
  // path fits either: that directory is read, and nothing in it is deleted.
  sprintf_zot(level->entry, sizeof level->entry, "%s/*.*", path);
  if (!openSearch(level->find, level->entry)) {
    return entered.end();
  }
  const auto place = enter(dirfd(level->find.dir), std::strlen(path), entered);
  if (place != entered.end()) {
    const dirent* entry;
    do {
      entry = readMatch(level->find);
    } while (entry != nullptr && deleteEntry(*level, path, *entry, entered));
  }
  ZotOsFindClose(&level->find);
  return place;
}

uint32_t deleteTree(const char* path, Entered& entered) {
  const auto place = deleteEntries(path, entered);
  const uint32_t gone = ZotOsDeleteDir(path);
  if (gone != 0 && place != entered.end()) {
    entered.erase(place);  // its number may soon be another directory's
  }
  return gone;
}

}  // namespace

uint32_t ZotOsChkAndCreateDir(const char* path) {
  const CancellationOff uncancelled;
  if (ZotOsFileExists(path) != 0) {
    return 1;
  }
  const size_t length = std::strlen(path);
  char prefix[kCreateText] = {};
  if (length >= sizeof prefix) {
    errno = ENAMETOOLONG;
    return 0;
  }
  Component component = Component::Failed;
  for (size_t count = 1; count <= length; ++count) {
    prefix[count - 1] = path[count - 1];
    // A separator at the very end belongs to the last component.
    const bool ends = count == length || (count + 1 < length && isSeparator(path[count]));
    if (ends) {
      component = makeComponent(prefix);
      if (component == Component::Failed) {
        return 0;
      }
    }
  }
  return component == Component::Writable ? 1 : 0;
}

uint32_t ZotOsDeleteDirTree(const char* path) {
  const CancellationOff uncancelled;
  Entered entered;
  return deleteTree(path, entered);
}
