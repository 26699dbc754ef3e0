// Every public header that the including language can read.
#ifndef ZOTMACGUIUTILS_H
#define ZOTMACGUIUTILS_H

#include "mifobject/PasswordScrambling.h"
#include "os/ZotOsFile.h"
#include "os/zot_string.h"

#endif
