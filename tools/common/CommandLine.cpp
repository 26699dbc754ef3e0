#include "tools/common/CommandLine.h"

#include <fmt/format.h>

#include <cstdio>
#include <iostream>

#include "tools/common/Output.h"
#include "tools/common/Progress.h"
#include "tools/common/Text.h"

namespace tool {

namespace {

int statusOf(Exit result) {
  return static_cast<int>(result);
}

int complain(const std::string& message) {
  Progress::hide();
  // What was printed so far stands before the message where both go to one file.
  std::fflush(stdout);
  fmt::print(stderr, "{}\n", message);
  return statusOf(Exit::Trouble);
}

int complain(const std::string& program, const std::string& message) {
  return complain(program + ": " + message);
}

// What is wrong with a command line, and where help on it is: at the subcommand it got to.
int complainOf(const CLI::ParseError& error, const CLI::App& app) {
  const CLI::App* command = &app;
  std::string path = app.get_name();
  while (!command->get_subcommands().empty()) {
    command = command->get_subcommands().front();
    path += " " + command->get_name();
  }
  const std::vector<std::string> unknown = command->remaining();
  const bool noSubcommand = command->get_require_subcommand_min() != 0 && !unknown.empty();
  return complain(app.get_name(), fmt::format("{}\nTry '{} --help'.",
                                              noSubcommand ? visible(unknown.front()) + " is no subcommand"
                                                           : visible(error.what()),
                                              path));
}

}  // namespace

CommandLine::CommandLine(const std::string& name, const std::string& what) : app_(what, name) {
  app_.set_version_flag("--version", fmt::format("{} {}", name, ZOT_VERSION), "Print the version and exit");
  app_.set_help_flag("-h,--help", "Print this help and exit");
  app_.require_subcommand(1);
}

CLI::App* CommandLine::add(const std::string& name, const std::string& what, const std::string& example,
                           std::function<Exit()> work, CLI::App* parent) {
  CLI::App* const command = (parent != nullptr ? parent : &app_)->add_subcommand(name, what);
  command->footer("Example:\n  " + example);
  // A subcommand below this one replaces the work: its callback runs later.
  command->callback([this, command, work = std::move(work)] {
    if (command->get_subcommands().empty()) {
      work_ = work;
    }
  });
  return command;
}

int CommandLine::run(int argc, char** argv) {
  const std::string program = app_.get_name();
  try {
    app_.parse(argc, argv);
  } catch (const CLI::Success& wanted) {  // --help, --version
    app_.exit(wanted);
    return std::cout.flush() ? statusOf(Exit::Done)
                             : complain(program, "standard output could not be written");
  } catch (const CLI::ParseError& error) {
    return complainOf(error, app_);
  }
  return guarded(program, [this] {
    const Exit result = work_();
    Output(stdout).flush();
    return statusOf(result);
  });
}

CLI::Option* addJson(CLI::App* command, bool& json) {
  return command->add_flag("--json", json, "Print JSON");
}

void addOrder(CLI::App* command, std::string& order, const std::string& what) {
  command->add_option("--order", order, what)->check(CLI::IsMember({"little", "big"}));
}

int guarded(const std::string& program, const std::function<int()>& work) {
  try {
    return work();
  } catch (const FailureAt& failure) {
    return complain(failure.what());
  } catch (const std::bad_alloc&) {
    return complain(program, "out of memory");
  } catch (const std::exception& error) {
    return complain(program, error.what());
  }
}

}  // namespace tool
