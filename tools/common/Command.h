// What execvp() wants, and what becomes of a command that does not exist.
#ifndef ZOT_TOOLS_COMMAND_H
#define ZOT_TOOLS_COMMAND_H

#include <string>
#include <vector>

namespace tool {

// As a shell's exit status.
inline constexpr int kNoCommand = 127;

// Pointers to the words of a command, and a null one behind them.
inline std::vector<char*> argumentsOf(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& word : command) {
    arguments.push_back(const_cast<char*>(word.c_str()));
  }
  arguments.push_back(nullptr);
  return arguments;
}

}  // namespace tool

#endif
