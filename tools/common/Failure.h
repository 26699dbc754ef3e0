// How a subcommand ends.
#ifndef ZOT_TOOLS_FAILURE_H
#define ZOT_TOOLS_FAILURE_H

#include <stdexcept>

namespace tool {

// The exit status of every program here.
enum class Exit {
  Done = 0,
  Findings = 1,  // the work is done and there is something to mend
  Trouble = 2    // wrong command line, or what was needed could not be read or written
};

// Thrown where a subcommand can't go on; what() is the whole message for the user.
// CommandLine::run() prints it and ends with Exit::Trouble.
class Failure : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The same where the message begins with its place, "FILE:LINE: ", as compilers write
// it: without the program's name in front.
class FailureAt : public Failure {
  using Failure::Failure;
};

}  // namespace tool

#endif
