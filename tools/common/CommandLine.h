// The command line of a program with subcommands.  CLI11 is slow to compile: only
// the main.cpp of each program includes this.
#ifndef ZOT_TOOLS_COMMAND_LINE_H
#define ZOT_TOOLS_COMMAND_LINE_H

#include <CLI/CLI.hpp>

#include <functional>
#include <string>

#include "tools/common/Failure.h"

namespace tool {

// A program of this name that needs one of its subcommands, with --help and --version.
class CommandLine {
 public:
  // what: one sentence for --help.
  CommandLine(const std::string& name, const std::string& what);

  // Adds a subcommand, below `parent` where given.  example: shown by its --help, one
  // command a line.  work runs once the command line is whole.
  CLI::App* add(const std::string& name, const std::string& what, const std::string& example,
                std::function<Exit()> work, CLI::App* parent = nullptr);

  // Parses and runs; returns the exit status.  Nothing thrown gets out.
  int run(int argc, char** argv);

 private:
  CLI::App app_;
  std::function<Exit()> work_;
};

// Options that several programs have, with one wording.
CLI::Option* addJson(CLI::App* command, bool& json);
void addOrder(CLI::App* command, std::string& order, const std::string& what);

// What main() returns: the exit status that work() gives, or Exit::Trouble once it is told
// what work() has thrown.
int guarded(const std::string& program, const std::function<int()>& work);

}  // namespace tool

#endif
