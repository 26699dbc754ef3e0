// A command line, with a search path and the interpreter's answer: what the interpreter
// is given, and what the caller learns, against a model that takes the line word by word.
//
// Input: two bytes of the interpreter's status, one of flags, PATH up to a zero, the line.
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "os/ZotOsProcess.h"

namespace {

std::vector<std::string> commandsRun;
int statusToReturn = 0;

constexpr const char* kBlanks = " \t\n";

// The search path stays where the environment knows it; setenv would keep every text.
void setSearchPath(const std::string& path) {
  static char variable[4096];
  std::snprintf(variable, sizeof variable, "PATH=%s", path.c_str());
  putenv(variable);
}

std::optional<std::string> expectedPath(const std::string& name) {
  if (name.find('/') != name.npos) {
    return name;
  }
  std::istringstream list("/sbin:/usr/sbin:/usr/local/sbin:/bin:/usr/bin:/usr/local/bin:" +
                          std::string(std::getenv("PATH")) + ":");
  for (std::string directory; std::getline(list, directory, ':');) {
    const std::string path = (directory + "/" + name).substr(0, 1023);
    struct stat status;
    if (directory.size() + name.size() <= 1024 && stat(path.c_str(), &status) == 0 &&
        (status.st_mode & 0100) != 0) {
      return path;
    }
  }
  return std::nullopt;
}

// What the interpreter is to be given, if anything.
std::optional<std::string> expectedCommand(const std::string& line, bool inBackground) {
  std::string words = line;
  const char* const first = std::strtok(words.data(), kBlanks);
  if (line.size() > 1024 || first == nullptr) {
    return std::nullopt;
  }
  const bool hasArguments = std::strtok(nullptr, kBlanks) != nullptr;
  const auto path = expectedPath(first);
  if (!path) {
    return std::nullopt;
  }
  const std::string behind = line.substr(std::strlen(first));
  return *path + (hasArguments ? " " + behind.substr(behind.find_first_not_of(kBlanks)) : "") +
         (inBackground ? " &" : "");
}

void require(bool condition) {
  if (!condition) {
    std::abort();
  }
}

}  // namespace

// The linker's --wrap option sends the calls of system() here.
extern "C" int __wrap_system(const char* command) {
  commandsRun.emplace_back(command);
  return statusToReturn;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 3) {
    return 0;
  }
  const int status = data[0] | data[1] << 8;
  statusToReturn = status == 0xFFFF ? -1 : status;
  const int32_t flags = data[2] << 13;
  const std::string texts(reinterpret_cast<const char*>(data) + 3, size - 3);
  const std::string path = texts.c_str();
  const std::string line = texts.substr(std::min(path.size() + 1, texts.size())).c_str();
  setSearchPath(path);

  commandsRun.clear();
  uint32_t code = 77;
  const uint32_t result = ZotOsCreateProcessEx(line.c_str(), flags, &code);
  const auto command = expectedCommand(line, (flags & 0x10000) != 0);
  const uint32_t ran = (statusToReturn & 0x7F) != 0 ? static_cast<uint32_t>(statusToReturn) : data[1];
  require(commandsRun == (command ? std::vector{*command} : std::vector<std::string>{}));
  require(code == (command ? ran : UINT32_MAX) && result == (code == 0 ? 1 : 0));
  require(ZotOsCreateProcessSw(line.c_str(), flags) == result && ZotOsCreateProcess(line.c_str()) == result);
  require(commandsRun.size() == (command ? 3 : 0));
  require(ZotOsCreateProcess(nullptr) == 0 && ZotOsdGetPath(nullptr) == 0);

  if (line.size() < 1024) {
    char buffer[1024];
    std::strcpy(buffer, line.c_str());
    const auto found = expectedPath(line);
    require(ZotOsdGetPath(buffer) == (found ? found->size() : 0) && buffer == found.value_or(line));
  }
  return 0;
}
