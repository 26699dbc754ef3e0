// Every public header that the including language can read and that is there: an
// installation may lack the object classes, and only a build makes the version.
#ifndef ZOTMACGUIUTILS_H
#define ZOTMACGUIUTILS_H

#if defined __has_include
#if __has_include("zotmacguiutils_version.h")
#include "zotmacguiutils_version.h"
#endif
#endif

#ifdef __cplusplus
#include "ipaddr/ZotIpAddr.h"
#include "mif/Mif32.h"
#include "mif/MifRecord.h"
#include "multilang/LanguageRecords.h"
#include "multilang/ProgramTexts.h"
#include "multilang/ZOT_MultiLanguage.h"
#endif
#include "ipaddr/zot_inet.h"
#include "log/ZotLog.h"
#include "mif/zotmif.h"
#include "mifobject/PasswordScrambling.h"
#include "os/ZotOs.h"
#include "os/zot_string.h"

#ifdef __OBJC__
#if __has_include("mifobject/ZOTMifBuffer.h")
#include "mifobject/ZOTMifBuffer.h"
#include "multilang/ZOTMultiLang.h"
#endif
#endif

#endif
