// What the search shares with the deletion of trees and with tests.
#ifndef ZOT_OS_FILE_INTERNAL_H
#define ZOT_OS_FILE_INTERNAL_H

#include "os/ZotOsFile.h"

// Splits a path at its last '/' into dir and name, ZOT_OS_FIND_TEXT bytes each; what
// does not fit is cut.  Without a '/', dir is "./".  An empty name becomes "*".
void vSplitFileName(const char* path, char* dir, char* name);

// The two halves of a search without a look at the entries: opens the directory that a
// text names (false, which is logged, when it cannot), and reads on to the next entry
// that matches (null at the end).
bool openSearch(ZotOsFindData& find, const char* text);
const dirent* readMatch(const ZotOsFindData& find);

#endif
