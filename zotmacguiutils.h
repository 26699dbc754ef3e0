// Every public header that the including language can read.
#ifndef ZOTMACGUIUTILS_H
#define ZOTMACGUIUTILS_H

#include "os/zot_string.h"

#endif
