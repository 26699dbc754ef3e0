// What the sources of ZOTMifBuffer share.
#ifndef ZOT_MIF_BUFFER_INTERNAL_H
#define ZOT_MIF_BUFFER_INTERNAL_H

#import "mifobject/ZOTMifBuffer.h"
#import "os/FoundationTextInternal.h"

// OIDs are cut to their low 16 bits, negative ones included.
inline unsigned short oid16(int oid) {
  return static_cast<unsigned short>(oid);
}

inline const char* latin1(NSString* text) {
  return zotCString(text, NSISOLatin1StringEncoding);
}

#endif
