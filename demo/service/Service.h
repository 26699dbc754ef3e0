// The peer of the window: checks what it is sent, stores it, answers.
#ifndef DEMO_SERVICE_H
#define DEMO_SERVICE_H

#include <csignal>
#include <string>

#include "SharedLog.h"

// Answers until *stopped; the directory holds socket and profile.  Returns the exit status.
int runService(const std::string& directory, const volatile sig_atomic_t* stopped);

// Prints a line for every profile that is applied, until SIGINT or SIGTERM.
int runWatch(const std::string& directory);

#endif
