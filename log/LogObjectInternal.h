// Beginning and end of pstLog, the process's own log object.
//
// The caller holds the SharedBlockLock.
#ifndef ZOT_LOG_OBJECT_INTERNAL_H
#define ZOT_LOG_OBJECT_INTERNAL_H

// Does what ZotOspLogNew does for a program, and sets pstLog and pstShm.  Returns false,
// with errno from the step that failed, when the block cannot be attached.
bool beginProcessLog();

// Detaches the block and sets both to null.  The object's memory is kept for the next
// one: another thread may just be looking at its level.
void endProcessLog();

#endif
