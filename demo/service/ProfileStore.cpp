#include "ProfileStore.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

namespace {

bool writeAll(int file, Bytes bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(file, bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) {
      return false;
    }
    bytes = bytes.subspan(written > 0 ? static_cast<size_t>(written) : 0);
  }
  return true;
}

// Closes in any case.
bool closeSynced(int file, bool good) {
  good = good && fsync(file) == 0;
  const int error = errno;
  const bool closed = close(file) == 0;
  if (!good) {
    errno = error;
  }
  return good && closed;
}

}  // namespace

Message ProfileStore::load() const {
  Message profile(kLargestMessage + 1);
  const int file = open(path_.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) {
    return {};
  }
  const ssize_t size = read(file, profile.data(), profile.size());
  close(file);
  profile.resize(size > 0 ? static_cast<size_t>(size) : 0);
  if (!isSound(profile) || faultyFieldOf(profile) != 0) {
    profile.clear();
  }
  return profile;
}

bool ProfileStore::save(Bytes profile) const {
  // What an earlier process left here half written is written anew.
  const std::string fresh = path_ + ".new";
  const int file = open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (file < 0 || !closeSynced(file, writeAll(file, profile)) || rename(fresh.c_str(), path_.c_str()) != 0) {
    return false;
  }
  // The new name lasts once the directory is written too.
  const std::string parent = std::filesystem::path(path_).parent_path();
  const int directory = open(parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  return directory >= 0 && closeSynced(directory, true);
}
