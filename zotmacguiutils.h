// Every public header that the including language can read.
#ifndef ZOTMACGUIUTILS_H
#define ZOTMACGUIUTILS_H

#include "log/ZotLog.h"
#include "mifobject/PasswordScrambling.h"
#include "os/ZotOs.h"

#endif
