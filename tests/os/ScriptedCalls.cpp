#include "ScriptedCalls.h"

#include <fcntl.h>
#include <sys/types.h>
#include <utime.h>

#include <algorithm>
#include <cstddef>

namespace zot_test {

ScriptedCalls scripted;
int flagsAtLastWrite = -1;

namespace {

size_t allowed(int entry, size_t count) {
  return entry < 0 ? std::min(count, static_cast<size_t>(-entry)) : count;
}

}  // namespace
}  // namespace zot_test

using namespace zot_test;

extern "C" {

int __real_close(int descriptor);
int __real_fchmod(int descriptor, mode_t mode);
int __real_fchown(int descriptor, uid_t owner, gid_t group);
ssize_t __real_read(int descriptor, void* buffer, size_t count);
int __real_utime(const char* path, const utimbuf* times);
ssize_t __real_write(int descriptor, const void* buffer, size_t count);

int __wrap_close(int descriptor) {
  // A close that reports a failure has closed all the same.
  const int result = __real_close(descriptor);
  return fails(next(scripted.close)) ? -1 : result;
}

int __wrap_fchmod(int descriptor, mode_t mode) {
  return fails(next(scripted.fchmod)) ? -1 : __real_fchmod(descriptor, mode);
}

int __wrap_fchown(int descriptor, uid_t owner, gid_t group) {
  return fails(next(scripted.fchown)) ? -1 : __real_fchown(descriptor, owner, group);
}

ssize_t __wrap_read(int descriptor, void* buffer, size_t count) {
  const int entry = next(scripted.read);
  return fails(entry) ? -1 : __real_read(descriptor, buffer, allowed(entry, count));
}

int __wrap_utime(const char* path, const utimbuf* times) {
  return fails(next(scripted.utime)) ? -1 : __real_utime(path, times);
}

ssize_t __wrap_write(int descriptor, const void* buffer, size_t count) {
  flagsAtLastWrite = fcntl(descriptor, F_GETFD);
  const int entry = next(scripted.write);
  return fails(entry) ? -1 : __real_write(descriptor, buffer, allowed(entry, count));
}

}  // extern "C"
