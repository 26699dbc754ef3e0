// The segments and semaphore sets that the system's tables list.
#ifndef TESTS_IPC_LEFTOVERS_H
#define TESTS_IPC_LEFTOVERS_H

#include <fstream>
#include <sstream>
#include <string>

namespace zot_test {

// One line for each.  A segment that is removed and goes with its last user does not
// count; the mode has a bit for that.
inline std::string ipcLeftovers() {
  std::string all;
  for (const char* path : {"/proc/sysvipc/shm", "/proc/sysvipc/sem"}) {
    std::ifstream table(path);
    std::string line;
    std::getline(table, line);  // the headings
    while (std::getline(table, line)) {
      long key = 0, id = 0, mode = 0;
      std::istringstream(line) >> key >> id >> std::oct >> mode;
      all += (mode & 01000) != 0 ? "" : std::string(path) + line + "\n";
    }
  }
  return all;
}

}  // namespace zot_test

#endif
