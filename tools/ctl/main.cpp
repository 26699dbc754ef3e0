// zot-ctl: the log level and the named semaphores of the running client.
#include <algorithm>

#include "tools/common/CommandLine.h"
#include "tools/common/Output.h"
#include "tools/ctl/Commands.h"
#include "tools/ctl/Level.h"

namespace {

using ctl::Streams;
using tool::CommandLine;

struct Options {
  bool json = false;
  bool yes = false;                       // of sem clean
  std::vector<std::string> names;         // of level set, clear and with
  uint32_t every = 100;                   // of level watch
  std::vector<std::string> childCommand;  // of level with
  std::string lineClass = "error";        // of log
  std::string text;
};

void addNames(CLI::App* command, std::vector<std::string>& names) {
  command->add_option("NAMES", names, "Bits of the level, or numbers")
      ->type_name(std::string("{") + ctl::kLevelNames + "}")
      ->required();
}

// Takes the command behind "level with NAMES --" off the arguments: it has options of its own.
std::vector<std::string> commandBehind(int& argc, char** argv) {
  const std::vector<std::string> words(argv, argv + argc);
  const bool with = argc > 2 && words[1] == "level" && words[2] == "with";
  const auto dashes = std::find(words.begin(), words.end(), "--");
  if (!with || dashes == words.end()) {
    return {};
  }
  argc = static_cast<int>(dashes - words.begin());
  return {dashes + 1, words.end()};
}

// commandStatus: the exit status of the command that "level with" has run.
void addLevelWith(CommandLine& line, CLI::App* level, Options& options, Streams streams, int& commandStatus) {
  CLI::App* const command = line.add(
      "with", "Set bits for as long as the command behind -- runs",
      "zot-ctl level with trace,stdout -- sleep 60",
      [&options, &commandStatus, streams] {
        if (options.childCommand.empty()) {
          throw tool::Failure("level with NAMES -- COMMAND: the command is missing");
        }
        commandStatus = ctl::runWithLevel(options.names, options.childCommand, streams);
        return tool::Exit::Done;
      },
      level);
  addNames(command, options.names);
}

void addLevel(CommandLine& line, Options& options, Streams streams, int& commandStatus) {
  CLI::App* const level = line.add("level", "Show the log level, or change it", "zot-ctl level",
                                   [&options, streams] { return ctl::showLevel(options.json, streams); });
  tool::addJson(level, options.json);
  CLI::App* command = line.add(
      "set", "Set bits", "zot-ctl level set trace stdout",
      [&options, streams] { return ctl::setLevel(options.names, streams); }, level);
  addNames(command, options.names);
  command = line.add(
      "clear", "Clear bits", "zot-ctl level clear trace",
      [&options, streams] { return ctl::clearLevel(options.names, streams); }, level);
  addNames(command, options.names);
  addLevelWith(line, level, options, streams, commandStatus);
  command = line.add(
      "watch", "Print the level each time it changes", "zot-ctl level watch",
      [&options, streams] { return ctl::watchLevel(options.every, options.json, streams); }, level);
  command->add_option("--every", options.every, "Milliseconds between two looks")
      ->capture_default_str()
      ->check(CLI::Range(1, 60000));
  tool::addJson(command, options.json);
}

void addStatus(CommandLine& line, Options& options, Streams streams) {
  CLI::App* const command = line.add("status", "Show the shared block and who is attached", "zot-ctl status",
                                     [&options, streams] { return ctl::showStatus(options.json, streams); });
  tool::addJson(command, options.json);
}

void addSemaphores(CommandLine& line, Options& options, Streams streams) {
  CLI::App* const semaphores =
      line.add("sem", "Show the named semaphores, or remove what is left behind", "zot-ctl sem list", {});
  semaphores->require_subcommand(1);
  CLI::App* command = line.add(
      "list", "Show every semaphore, in the table and in the system", "zot-ctl sem list",
      [&options, streams] { return ctl::listSemaphores(options.json, streams); }, semaphores);
  tool::addJson(command, options.json);
  command = line.add(
      "clean", "Remove semaphores whose last user is gone and on which nobody waits",
      "zot-ctl sem clean --yes",
      [&options, streams] { return ctl::cleanSemaphores(options.yes, options.json, streams); }, semaphores);
  command->add_flag("--yes", options.yes, "Do it; without, only tell what would be removed");
  tool::addJson(command, options.json);
}

void addLog(CommandLine& line, Options& options, Streams streams) {
  CLI::App* const command =
      line.add("log", "Write one line to the client's log", "zot-ctl log --as trace 'here it begins'",
               [&options, streams] { return ctl::logLine(options.lineClass, options.text, streams); });
  command->add_option("--as", options.lineClass, "The line's class")
      ->capture_default_str()
      ->check(CLI::IsMember({"debug", "trace", "error", "fatal"}));
  command->add_option("TEXT", options.text, "The line")->type_name("")->required();
}

int run(int argc, char** argv) {
  Options options;
  options.childCommand = commandBehind(argc, argv);
  CommandLine line("zot-ctl", "Shows and rules what the processes of the running client share.");
  tool::Output output(stdout);
  tool::Output errors(stderr);
  const Streams streams{output, errors};
  int commandStatus = 0;
  addLevel(line, options, streams, commandStatus);
  addStatus(line, options, streams);
  addSemaphores(line, options, streams);
  addLog(line, options, streams);
  const int result = line.run(argc, argv);
  return result != 0 ? result : commandStatus;
}

}  // namespace

int main(int argc, char** argv) {
  return tool::guarded("zot-ctl", [&] { return run(argc, argv); });
}
