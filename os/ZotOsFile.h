// Files, directories, a one-star search, and the place of the running program.
//
// Paths are terminated texts with '/' as the only separator, a '\' being a character like
// any other, except where ZotOsChkAndCreateDir says so.  Results are 1 for success
// and 0 for failure, and a failure leaves errno as the call that failed set it.
// Times are seconds since the epoch and sizes are in bytes; of both, the low
// 32 bits are given.  Nothing here keeps state between calls: threads may use
// everything at the same time, each with search records of its own.  A thread is not
// cancelled within a call.
#ifndef ZOT_OS_FILE_H
#define ZOT_OS_FILE_H

#include <dirent.h>
#include <stdint.h>

#include "os/ZotExport.h"

#ifdef __cplusplus
extern "C" {
#endif

// Bytes of the texts of a search, terminators included.
#define ZOT_OS_FIND_TEXT 1024

// The types of entries that a search reports: a directory, or a link to one;
// everything else, a link to a file included.
#define ZOT_OS_FIND_FILE 1
#define ZOT_OS_FIND_DIRECTORY 2

// A search.  It belongs to the caller and to one thread.
typedef struct ZotOsFindData {
  DIR* dir;                        // null while no search is open
  char path[ZOT_OS_FIND_TEXT];     // the directory that is searched
  char pattern[ZOT_OS_FIND_TEXT];  // what the names of its entries must match
} ZotOsFindData;

// Returns 1 when path names something that exists; a link to nothing does not.
ZOT_EXPORT uint32_t ZotOsFileExists(const char* path);

// Stores the size of the file; 0 when it cannot be had.
ZOT_EXPORT uint32_t ZotOsGetFileSize(const char* path, uint32_t* size);

// Sets the times of last access and last modification.
ZOT_EXPORT uint32_t ZotOsSetFileTime(const char* path, uint32_t seconds);

// Copies the bytes, the permission bits (whatever the umask), the owner, the group
// and the times of a file.  An existing destination is overwritten, or refused
// with 0 when failIfExists is not 0.
//
// A failed copy leaves behind what it has written so far.  Until the copy is complete,
// the destination has at most the read, write and execute bits of the source and no set-id
// bit; an existing file that cannot be narrowed to that gets no bytes.  When there is no
// memory for the copy's buffer, the destination stays empty, keeps its owner, and
// the result is 1; callers rely on that.  A file copied onto itself ends empty.
ZOT_EXPORT uint32_t ZotOsCopyFile(const char* source, const char* destination, uint32_t failIfExists);

// Delete a file; delete an empty directory; rename, replacing what stands there.
ZOT_EXPORT uint32_t ZotOsDeleteFile(const char* path);
ZOT_EXPORT uint32_t ZotOsDeleteDir(const char* path);
ZOT_EXPORT uint32_t ZotOsRenameFile(const char* oldPath, const char* newPath);

// Makes a directory and, with mode 0700, each one above it that is missing.  Both
// '/' and '\' end a component: "a\b" makes "a" and then "a\b" beside it.  A separator at
// the very beginning or end is a part of its component.
//
// Returns 1 for a path that exists already, a file or a read-only directory included;
// callers rely on that.  Else returns 1 when the last component was made, or stands
// and is writable.  Returns 0
//   - as soon as a component cannot be made, with the errno of mkdir; those before it stay
//   - when the last component stands and is not writable ("new/../readonly")
//   - for an empty path, and for one of 500 characters and more (ENAMETOOLONG)
ZOT_EXPORT uint32_t ZotOsChkAndCreateDir(const char* path);

// Deletes a directory with everything in it, and what a link to a directory
// leads to as well, but no directory twice: links may lead in circles.  The path of every
// entry, formed below path, must have fewer than 256 characters.
//
// Returns 0 when something is left: what could not be deleted, all that follows
// an entry which cannot be examined (a link to nothing), and a directory that
// was emptied through a link, because the link remains.
ZOT_EXPORT uint32_t ZotOsDeleteDirTree(const char* path);

// Opens a search and gives its first hit.  Where the text has a '*', its part behind
// the last '/' is the pattern for the names in the directory before that; without
// a '/' the current directory is searched.  A text without a '*' means every entry
// of the directory that it names, or else the one file.
//
// Only the first '*' of a pattern is special, and nothing else is: "*", "*.*" and
// "*." match every name but "." and ".."; any other matches the names that begin
// with its text before the star and end with its text behind it, in the same
// case.  ".*" matches "." and ".." too; callers rely on that.  "/x*" names no
// directory before its '/' and finds nothing; "//x*" searches the root.
//
//   find   the search; one that is open must be closed first
//   name   receives the entry's name: ZOT_OS_FIND_TEXT bytes
//   type, mtime, size   of the entry, a link followed; each may be null
//
// Returns 1 with the search open.  Returns 0 with nothing left to close when there
// is no hit, or when the first hit cannot be examined, as a link to nothing.
ZOT_EXPORT uint32_t ZotOsFindFirst(ZotOsFindData* find, const char* pattern, char* name, uint32_t* type,
                                   uint32_t* mtime, uint32_t* size);

// Gives the next hit, in the directory's order.
//
// Returns 0 at the end, with an empty name, and for a hit that cannot be examined,
// with its name; type, mtime and size stay unchanged then.  The search stays open.
ZOT_EXPORT uint32_t ZotOsFindNext(ZotOsFindData* find, char* name, uint32_t* type, uint32_t* mtime,
                                  uint32_t* size);

// Closes a search; 1 also when none is open.
ZOT_EXPORT uint32_t ZotOsFindClose(ZotOsFindData* find);

// Stores the directory of the running program, without a '/' at its end, in dir
// and the program's name in name, which may be null.  error, which may be null,
// receives errno, 0 on success.
//
// Sizes count bytes, terminators included.  A dirSize below the length of the
// program's whole path cuts that path before it is split, and the result is still 1.
ZOT_EXPORT uint32_t ZotOsGetModuleFileName(char* dir, uint32_t dirSize, char* name, uint32_t nameSize,
                                           uint32_t* error);
ZOT_EXPORT uint32_t ZotOsGetModulePath(char* dir, uint32_t dirSize, uint32_t* error);

#ifdef __cplusplus
}
#endif

#endif
