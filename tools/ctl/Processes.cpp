#include "tools/ctl/Processes.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tools/common/Text.h"

namespace ctl {

namespace {

namespace fs = std::filesystem;

fs::path procOf(pid_t pid) {
  return fs::path("/proc") / std::to_string(pid);
}

// Identifiers mean something within one namespace only.  Empty where we may not look.
std::string ipcNamespaceOf(const fs::path& process) {
  std::error_code error;
  return fs::read_symlink(process / "ns/ipc", error).string();
}

bool maps(const fs::path& process, int shmId) {
  std::ifstream file(process / "maps");
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line);
    std::string addresses, rights, offset, device, path;
    unsigned long inode = 0;  // of a segment: its identifier
    words >> addresses >> rights >> offset >> device >> inode >> path;
    if (inode == static_cast<unsigned long>(shmId) && path.rfind("/SYSV", 0) == 0) {
      return true;
    }
  }
  return false;
}

}  // namespace

bool alive(pid_t pid) {
  std::ifstream file(procOf(pid) / "stat");
  std::string line;
  std::getline(file, line);
  // The name in brackets may hold anything, brackets too.
  const size_t state = line.rfind(") ");
  return state != line.npos && line.find_first_of("ZX", state) != state + 2;
}

std::string commandOf(pid_t pid) {
  std::ifstream file(procOf(pid) / "comm");
  std::string name;
  std::getline(file, name);
  return name.empty() ? "?" : tool::visible(name);
}

std::string shownProcess(pid_t pid) {
  return pid == 0 ? "-" : fmt::format("{} ({})", pid, alive(pid) ? commandOf(pid) : "gone");
}

std::vector<pid_t> attachedTo(int shmId) {
  std::vector<pid_t> pids;
  const std::string ours = ipcNamespaceOf("/proc/self");
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator("/proc", error)) {
    const auto pid = tool::numberFrom(entry.path().filename().string(), INT32_MAX);
    if (pid && ipcNamespaceOf(entry.path()) == ours && maps(entry.path(), shmId)) {
      pids.push_back(static_cast<pid_t>(*pid));
    }
  }
  std::sort(pids.begin(), pids.end());
  return pids;
}

}  // namespace ctl
