// What the search and its tests share.
#ifndef ZOT_OS_FILE_INTERNAL_H
#define ZOT_OS_FILE_INTERNAL_H

// Splits a path at its last '/' into dir and name, ZOT_OS_FIND_TEXT bytes each; what
// does not fit is cut.  Without a '/', dir is "./".  An empty name becomes "*".
void vSplitFileName(const char* path, char* dir, char* name);

#endif
