// An open file descriptor that closes itself, leaving errno alone.  Closing is a
// cancellation point and a destructor must not unwind: functions that hold one of these
// put cancelling off.
#ifndef ZOT_OS_FILE_DESCRIPTOR_H
#define ZOT_OS_FILE_DESCRIPTOR_H

#include <unistd.h>

#include <cerrno>
#include <utility>

class FileDescriptor {
 public:
  // Takes what open() returned, a failure included.
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;

  ~FileDescriptor() {
    const int saved = errno;
    close();
    errno = saved;
  }

  int get() const { return descriptor_; }
  bool isOpen() const { return descriptor_ >= 0; }

  // For those who must know whether closing worked; the descriptor is gone either way.
  bool close() { return !isOpen() || ::close(std::exchange(descriptor_, -1)) == 0; }

 private:
  int descriptor_;
};

#endif
