// Running external commands through the system's command interpreter.
//
// A command's first word is looked up in /sbin, /usr/sbin, /usr/local/sbin, /bin,
// /usr/bin, /usr/local/bin and then in the directories of PATH.  An empty element of
// PATH is the root directory, not the current one; callers rely on that.
//
// The interpreter parses what is run once more: quotes, variables and redirections in
// the command line work, and a directory of PATH whose name holds blanks or quotes does
// not.  Never pass text of a stranger.  Threads may run commands at the same time, and are
// not cancelled before their command has ended.
#ifndef ZOT_OS_PROCESS_H
#define ZOT_OS_PROCESS_H

#include <stdint.h>

#include "os/ZotExport.h"

#ifdef __cplusplus
extern "C" {
#endif

// The one flag: start the command in the background and return at once.
#define ZOT_OS_PROCESS_BACKGROUND 0x10000

// Runs a command line and waits for its end, or for its start in the background.
//
//   commandLine  at most 1024 characters; words end at blanks, tabs and newlines.  No
//                leading blanks: the arguments are taken from the position that equals the
//                first word's length, callers rely on that
//   flags        0 or ZOT_OS_PROCESS_BACKGROUND; other bits mean nothing
//   exitCode     out, may be null: the command's exit status; the whole status word of
//                system() when a signal ended the interpreter or it could not start
//                (0xFFFFFFFF); 0xFFFFFFFF when the line is empty or too long or its program
//                is not found.  In the background: 0 once the program was started
//
// Returns 1 when the exit code is 0, else 0.
ZOT_EXPORT uint32_t ZotOsCreateProcessEx(const char* commandLine, int32_t flags, uint32_t* exitCode);

// The same without the exit code, and without flags.
ZOT_EXPORT uint32_t ZotOsCreateProcessSw(const char* commandLine, int32_t flags);
ZOT_EXPORT uint32_t ZotOsCreateProcess(const char* commandLine);

// Finds the program that a command names.
//
//   command  in: the name; out: its path when it was found, else the name.  The buffer
//            holds 1024 bytes.  A name with a '/' is its own path, whether it exists or not
//
// Found is what has the owner's execute bit, be it a directory or another user's
// program.  A path of more than 1023 characters is cut before it is looked at.
//
// Returns the length of the path, 0 when nothing was found or command is null.
ZOT_EXPORT uint32_t ZotOsdGetPath(char* command);

#ifdef __cplusplus
}
#endif

#endif
