#include "support/IpcLeftovers.h"

#include <fstream>
#include <sstream>

namespace zot_test {

namespace {

constexpr unsigned int kRemoved = 01000;  // the mode bit of a segment that goes with its last user

std::string listed(const char* path, const char* kind) {
  std::ifstream table(path);
  std::string line;
  std::getline(table, line);  // the headings
  std::string found;
  while (std::getline(table, line)) {
    std::istringstream fields(line);
    long key = 0;
    long id = 0;
    unsigned int mode = 0;
    fields >> key >> id >> std::oct >> mode;
    if ((mode & kRemoved) == 0) {
      found += std::string(kind) + " " + std::to_string(id) + " under key " + std::to_string(key) + "\n";
    }
  }
  return found;
}

}  // namespace

std::string ipcLeftovers() {
  return listed("/proc/sysvipc/shm", "segment") + listed("/proc/sysvipc/sem", "semaphore set");
}

}  // namespace zot_test
