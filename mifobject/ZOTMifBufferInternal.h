// What the sources of ZOTMifBuffer share.
#ifndef ZOT_MIF_BUFFER_INTERNAL_H
#define ZOT_MIF_BUFFER_INTERNAL_H

#import "mifobject/ZOTMifBuffer.h"
#import "os/FoundationTextInternal.h"

// The run time looks a class that is named in a message up by its name each time.
inline Class numberClass() {
  static const Class kept = [NSNumber class];
  return kept;
}

inline Class stringClass() {
  static const Class kept = [NSString class];
  return kept;
}

inline Class dataClass() {
  static const Class kept = [NSData class];
  return kept;
}

// OIDs are cut to their low 16 bits, negative ones included.
inline unsigned short oid16(int oid) {
  return static_cast<unsigned short>(oid);
}

inline const char* latin1(NSString* text) {
  return zotCString(text, NSISOLatin1StringEncoding);
}

#endif
