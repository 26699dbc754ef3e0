// The profile as the user types it: the model behind the window.  Used on the main
// thread only.
#import <Foundation/Foundation.h>

#include "ProfileFormat.h"

// One text that the user enters; a range has two.
enum Entry {
  kName,
  kGateway,
  kRangeFrom,
  kRangeTo,
  kAdapter,
  kPortFrom,
  kPortTo,
  kPassword,
  kKey,
  kEntryCount
};

@interface Profile : NSObject {
 @private
  NSString* entries[kEntryCount];
  unsigned int options;
}

- (void)dealloc;

- (NSString*)entry:(Entry)entry;
- (void)setEntry:(Entry)entry to:(NSString*)text;

- (unsigned int)options;
- (void)setOptions:(unsigned int)bits;

// What is wrong with a field, kOidName to kOidKey.
- (Fault)faultOf:(unsigned short)oid;
- (BOOL)isFaulty;

// The message that asks for request; fields that are empty or faulty are left out.
- (NSData*)messageFor:(Request)request;

// Takes over the fields of a sound message; those that it lacks become empty.
- (void)takeMessage:(NSData*)message;

@end

// The value of a profile's field as people read it; nil when the record is missing or
// not in its form.  A password shows as dots.
NSString* readableField(NSData* message, unsigned short oid);
