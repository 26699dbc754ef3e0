// The front end's record buffer: a Mif32 spoken to with Foundation values.
//
// OIDs are taken modulo 65536, so -1 is the end marker's OID.  Every read and
// update addresses the first record of its OID.  Texts are ISO 8859-1 inside the
// buffer.  Numbers handed out are autoreleased; strings and data to be filled are
// the caller's own and get new contents.
//
// A nil value adds nothing and makes a BOOL method answer NO.  NO leaves the
// caller's objects as they were.  Nothing logs or raises.  An instance serves one
// thread at a time.
#ifndef ZOT_MIF_BUFFER_H
#define ZOT_MIF_BUFFER_H

#import <Foundation/Foundation.h>

#ifdef __cplusplus
class Mif32;
#else
typedef struct Mif32 Mif32;
#endif

@interface ZOTMifBuffer : NSObject {
 @private
  Mif32* mif32;
}

// An empty buffer; dealloc wipes what it holds.
- (id)init;
- (void)dealloc;

// ---- The whole buffer ----

// Replaces the contents by a copy of the first (length modulo 65536) bytes.
- (void)setData:(NSData*)data;

// Declares len modulo 65536 bytes in use, unchecked.
- (void)setLen:(int)len;

// Starts over with an empty block of len modulo 65536 bytes.
- (void)allocWithLen:(int)len;
- (void)clearBuffer;

// Appends the end marker unless it is there; removes it, YES when it was.
- (void)addEndKz;
- (BOOL)delEndKz;

// Deletes the first record of an OID; NO when there is none.
- (BOOL)delFirstOccurenceOfOid:(int)oid;

// Replaces the contents of buffer by the bytes in use, end marker included.
- (void)getDataIntoBuffer:(NSMutableData*)buffer;
- (int)getDataLen;

// ---- Adding ----
// A text that ISO 8859-1 cannot hold is not added.  Lengths are cut to 16 bits.

- (void)addInt:(NSNumber*)value forOid:(int)oid;
- (void)addInt64:(NSNumber*)value forOid:(int)oid;
- (void)addString:(NSString*)text forOid:(int)oid;
- (void)addBin:(NSData*)data forOid:(int)oid;

// ---- Reading ----
// YES when the record exists and, for getString, holds at most 511 bytes.  The
// first three take a null or nil target and answer all the same.

- (BOOL)getInt:(NSNumber**)value forOid:(int)oid;
- (BOOL)getInt64:(NSNumber**)value forOid:(int)oid;
- (BOOL)getString:(NSMutableString*)text forOid:(int)oid;
- (BOOL)getBinData:(NSMutableData*)data forOid:(int)oid;

// ---- Updating ----
// YES when a record was replaced.  A missing record is appended, and the answer
// is NO all the same: callers rely on it.

- (BOOL)updateInt:(NSNumber*)value forOid:(int)oid;
- (BOOL)updateInt64:(NSNumber*)value forOid:(int)oid;
- (BOOL)updateString:(NSString*)text forOid:(int)oid;
- (BOOL)updateBin:(NSData*)data forOid:(int)oid;

@end

#endif
