#include "SharedLog.h"

#include <fcntl.h>
#include <unistd.h>

bool logToFile(const std::string& path) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600);
  return file >= 0 && dup2(file, STDOUT_FILENO) >= 0 && close(file) == 0;
}
