// Every public header that the including language can read.
#ifndef ZOTMACGUIUTILS_H
#define ZOTMACGUIUTILS_H

#ifdef __cplusplus
#include "ipaddr/ZotIpAddr.h"
#endif
#include "ipaddr/zot_inet.h"
#include "log/ZotLog.h"
#include "mifobject/PasswordScrambling.h"
#include "os/ZotOs.h"

#ifdef __cplusplus
#include "mif/Mif32.h"
#include "mif/MifRecord.h"
#endif

#endif
