#include "os/ZotOsProcess.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "log/LogLineInternal.h"
#include "os/CancellationOff.h"
#include "os/zot_string.h"

namespace {

constexpr size_t kPathSize = 1024;    // bytes of the buffer that holds a path
constexpr size_t kLineLength = 1024;  // characters of the longest command line
constexpr size_t kCommandSize = kPathSize + 1 + kLineLength + sizeof " &";
constexpr uint32_t kNotRun = UINT32_MAX;

constexpr std::string_view kBlanks = " \t\n";
constexpr std::string_view kSystemDirectories =
    "/sbin:/usr/sbin:/usr/local/sbin:/bin:/usr/bin:/usr/local/bin:";

// Only the owner's bit counts, not the caller's own right to execute.
bool isProgram(const char* path) {
  struct stat status;
  return stat(path, &status) == 0 && (status.st_mode & S_IXUSR) != 0;
}

std::string searchList() {
  const char* path = std::getenv("PATH");
  return std::string(kSystemDirectories) + (path != nullptr ? path : "");
}

// Writes the path of the first program of this name to buffer, of kPathSize bytes.
bool findProgram(std::string_view list, const std::string& name, char* buffer) {
  for (;;) {
    const size_t colon = list.find(':');
    const std::string_view directory = list.substr(0, colon);
    if (directory.size() + name.size() <= kPathSize) {
      sprintf_zot(buffer, kPathSize, "%.*s/%s", static_cast<int>(directory.size()), directory.data(),
                  name.c_str());
      if (isProgram(buffer)) {
        return true;
      }
    }
    if (colon == list.npos) {
      return false;
    }
    list.remove_prefix(colon + 1);
  }
}

// The arguments of a command line, null when it has none.  They are taken from behind as
// many characters as the first word has, also when the line begins with blanks and the
// word therefore ends later; callers rely on that position.
const char* argumentsOf(const char* commandLine, size_t wordStart, size_t wordLength) {
  const std::string_view line = commandLine;
  if (line.find_first_not_of(kBlanks, wordStart + wordLength) == line.npos) {
    return nullptr;
  }
  return commandLine + line.find_first_not_of(kBlanks, wordLength);
}

// What system() returned, as callers see it.
uint32_t exitCodeOf(int status) {
  const auto word = static_cast<uint32_t>(status);
  return (word & 0x7F) != 0 ? word : (word >> 8) & 0xFF;
}

// Runs a command line of proper length.  Returns its exit code.
uint32_t runCommand(const char* commandLine, bool inBackground) {
  const std::string_view line = commandLine;
  const size_t wordStart = std::min(line.find_first_not_of(kBlanks), line.size());
  const size_t wordLength = std::min(line.find_first_of(kBlanks, wordStart), line.size()) - wordStart;

  // Both the whole line as one word and any path that the search makes fit.
  char command[kCommandSize];
  strncpy_zot(command, sizeof command, commandLine + wordStart, static_cast<unsigned int>(wordLength));
  if (wordLength == 0 || ZotOsdGetPath(command) == 0) {
    ZOT_LINE_IDS(ZOT_LOG_ERROR, "ERROR ZotOsCreateProcess: command (%s) cannot be found (pid=%u tid=%ld)",
                 command);
    return kNotRun;
  }
  if (const char* arguments = argumentsOf(commandLine, wordStart, wordLength)) {
    strcat_zot(command, sizeof command, " ");
    strcat_zot(command, sizeof command, arguments);
  }
  if (inBackground) {
    strcat_zot(command, sizeof command, " &");
  }
  const uint32_t exitCode = exitCodeOf(std::system(command));
  ZOT_LINE_IDS(ZOT_LOG_TRACE, "TRACE ZotOsCreateProcess: cmd execed: '%s'=%u (pid=%u tid=%ld)", command,
               exitCode);
  return exitCode;
}

// What is wrong with a command line; null when nothing is.
const char* faultOf(const char* commandLine) {
  if (commandLine == nullptr || *commandLine == '\0') {
    return "empty";
  }
  return strnlen(commandLine, kLineLength + 1) > kLineLength ? "too long" : nullptr;
}

}  // namespace

uint32_t ZotOsCreateProcessEx(const char* commandLine, int32_t flags, uint32_t* exitCode) {
  const CancellationOff uncancelled;
  uint32_t code = kNotRun;
  if (const char* fault = faultOf(commandLine)) {
    ZOT_LINE_IDS(ZOT_LOG_ERROR, "ERROR ZotOsCreateProcess: command line (%s) is %s (pid=%u tid=%ld)",
                 commandLine != nullptr ? commandLine : "", fault);
  } else {
    code = runCommand(commandLine, (flags & ZOT_OS_PROCESS_BACKGROUND) != 0);
  }
  if (exitCode != nullptr) {
    *exitCode = code;
  }
  return code == 0 ? 1 : 0;
}

uint32_t ZotOsCreateProcessSw(const char* commandLine, int32_t flags) {
  return ZotOsCreateProcessEx(commandLine, flags, nullptr);
}

uint32_t ZotOsCreateProcess(const char* commandLine) {
  return ZotOsCreateProcessEx(commandLine, 0, nullptr);
}

uint32_t ZotOsdGetPath(char* command) try {
  if (command == nullptr) {
    return 0;
  }
  if (std::strchr(command, '/') == nullptr) {
    const std::string name = command;
    if (!findProgram(searchList(), name, command)) {
      std::memcpy(command, name.c_str(), name.size() + 1);
      return 0;
    }
  }
  return static_cast<uint32_t>(std::strlen(command));
} catch (const std::bad_alloc&) {
  return 0;
}
