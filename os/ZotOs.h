// The operating-system layer: every header of this room.
#ifndef ZOT_OS_H
#define ZOT_OS_H

#include "os/ZotOsFile.h"
#include "os/ZotOsMmf.h"
#include "os/ZotOsProcess.h"
#include "os/ZotOsSync.h"
#include "os/ZotOsSystem.h"
#include "os/ZotOsThread.h"
#include "os/zot_string.h"

#endif
