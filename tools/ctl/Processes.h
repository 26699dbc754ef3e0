// Processes as /proc shows them.
#ifndef ZOT_TOOLS_CTL_PROCESSES_H
#define ZOT_TOOLS_CTL_PROCESSES_H

#include <sys/types.h>

#include <string>
#include <vector>

namespace ctl {

// False for one that has ended and only waits to be reaped.
bool alive(pid_t pid);

// Its command's name, "?" when there is none.
std::string commandOf(pid_t pid);

// "1234 (client)", "1234 (gone)", "-" for 0, which the system says of nobody and of
// processes out of our sight.
std::string shownProcess(pid_t pid);

// Those that have this shared memory segment attached, as far as we may look.
std::vector<pid_t> attachedTo(int shmId);

}  // namespace ctl

#endif
