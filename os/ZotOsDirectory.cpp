#include "os/ZotOsFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <new>

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

// What is in work while one directory of a tree is emptied.
struct TreeLevel {
  ZotOsFindData find;
  char name[ZOT_OS_FIND_TEXT];
  char entry[kTreeText];
};

void deleteEntry(TreeLevel& level, const char* path, uint32_t type) {
  const int length = sprintf_zot(level.entry, sizeof level.entry, "%s/%s", path, level.name);
  // A cut path is the name of something else.
  if (length < 0 || static_cast<size_t>(length) >= sizeof level.entry) {
    return;
  }
  if (type == ZOT_OS_FIND_FILE) {
    unlink(level.entry);
  } else {
    ZotOsDeleteDirTree(level.entry);
  }
}

void deleteEntries(const char* path) {
  // On the heap, because a worker thread's stack is smaller than the levels
  // that a path can name.
  const std::unique_ptr<TreeLevel> level(new (std::nothrow) TreeLevel);
  if (level == nullptr) {
    return;
  }
  // A path that cuts more off the pattern than its end is too long for any entry.
  sprintf_zot(level->entry, sizeof level->entry, "%s/*.*", path);
  uint32_t type = 0;
  uint32_t found = ZotOsFindFirst(&level->find, level->entry, level->name, &type, nullptr, nullptr);
  while (found != 0) {
    deleteEntry(*level, path, type);
    found = ZotOsFindNext(&level->find, level->name, &type, nullptr, nullptr);
  }
  ZotOsFindClose(&level->find);
}

}  // namespace

uint32_t ZotOsChkAndCreateDir(const char* path) {
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
  deleteEntries(path);
  return ZotOsDeleteDir(path);
}
