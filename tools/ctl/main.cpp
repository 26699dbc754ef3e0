// zot-ctl: the log level and the named semaphores of the running client.
#include <algorithm>

#include "tools/common/CommandLine.h"
#include "tools/common/Output.h"
#include "tools/ctl/Commands.h"
#include "tools/ctl/Level.h"

namespace {

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

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> childCommand = commandBehind(argc, argv);
  tool::CommandLine line("zot-ctl", "Shows and rules what the processes of the running client share.");
  tool::Output output(stdout);
  tool::Output errors(stderr);
  const ctl::Streams streams{output, errors};
  bool json = false;

  CLI::App* const level = line.add("level", "Show the log level, or change it", "zot-ctl level",
                                   [&] { return ctl::showLevel(json, streams); });
  tool::addJson(level, json);
  std::vector<std::string> names;
  addNames(line.add(
               "set", "Set bits", "zot-ctl level set trace stdout",
               [&] { return ctl::setLevel(names, streams); }, level),
           names);
  addNames(line.add(
               "clear", "Clear bits", "zot-ctl level clear trace",
               [&] { return ctl::clearLevel(names, streams); }, level),
           names);
  int commandStatus = 0;
  CLI::App* command = line.add(
      "with", "Set bits for as long as a command runs", "zot-ctl level with trace,stdout -- sleep 60",
      [&] {
        if (childCommand.empty()) {
          throw tool::Failure("level with NAMES -- COMMAND: the command is missing");
        }
        commandStatus = ctl::runWithLevel(names, childCommand, streams);
        return tool::Exit::Done;
      },
      level);
  addNames(command, names);
  uint32_t every = 100;
  command = line.add(
      "watch", "Print the level each time it changes", "zot-ctl level watch",
      [&] { return ctl::watchLevel(every, json, streams); }, level);
  command->add_option("--every", every, "Milliseconds between two looks")
      ->capture_default_str()
      ->check(CLI::Range(1, 60000));
  tool::addJson(command, json);

  tool::addJson(line.add("status", "Show the shared block and who is attached", "zot-ctl status",
                         [&] { return ctl::showStatus(json, streams); }),
                json);

  CLI::App* const semaphores =
      line.add("sem", "Show the named semaphores, or remove what is left behind", "zot-ctl sem list", {});
  semaphores->require_subcommand(1);
  tool::addJson(line.add(
                    "list", "Show every semaphore, in the table and in the system", "zot-ctl sem list",
                    [&] { return ctl::listSemaphores(json, streams); }, semaphores),
                json);
  bool yes = false;
  command = line.add(
      "clean", "Remove semaphores whose last user is gone and on which nobody waits",
      "zot-ctl sem clean --yes", [&] { return ctl::cleanSemaphores(yes, json, streams); }, semaphores);
  command->add_flag("--yes", yes, "Do it; without, only tell what would be removed");
  tool::addJson(command, json);

  std::string lineClass = "error";
  std::string text;
  command = line.add("log", "Write one line to the client's log", "zot-ctl log --as trace 'here it begins'",
                     [&] { return ctl::logLine(lineClass, text, streams); });
  command->add_option("--as", lineClass, "The line's class")
      ->capture_default_str()
      ->check(CLI::IsMember({"debug", "trace", "error", "fatal"}));
  command->add_option("TEXT", text, "The line")->type_name("")->required();

  const int result = line.run(argc, argv);
  return result != 0 ? result : commandStatus;
}
