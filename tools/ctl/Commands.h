// The subcommands of zot-ctl.  All throw tool::Failure where they can't look; all say
// on `errors` that no process is attached, and then end with Exit::Findings.
#ifndef ZOT_TOOLS_CTL_COMMANDS_H
#define ZOT_TOOLS_CTL_COMMANDS_H

#include <cstdint>
#include <string>
#include <vector>

#include "tools/common/Failure.h"
#include "tools/common/Output.h"

namespace ctl {

// Where a subcommand prints.
struct Streams {
  tool::Output& output;
  tool::Output& errors;
};

tool::Exit showLevel(bool json, Streams streams);
tool::Exit setLevel(const std::vector<std::string>& names, Streams streams);
tool::Exit clearLevel(const std::vector<std::string>& names, Streams streams);

// Prints the level, and again each time it has changed, until a signal ends the program.
// every: milliseconds between two looks.
tool::Exit watchLevel(uint32_t every, bool json, Streams streams);

// Runs a command with these bits set, and clears those that were not set before, whatever
// ends the command.  Without a client the bits are set as soon as the command has made one.
// status: the command's own, 128 and the signal's number, 127 when there is no such command.
int runWithLevel(const std::vector<std::string>& names, const std::vector<std::string>& command,
                 Streams streams);

tool::Exit showStatus(bool json, Streams streams);

tool::Exit listSemaphores(bool json, Streams streams);

// Without yes it only tells what it would remove, and ends with Exit::Findings.
tool::Exit cleanSemaphores(bool yes, bool json, Streams streams);

// Writes one line of a class through the library, where the level lets it pass.
tool::Exit logLine(const std::string& lineClass, const std::string& text, Streams streams);

}  // namespace ctl

#endif
