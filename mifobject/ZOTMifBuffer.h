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
// A text that ISO 8859-1 cannot hold is not added, nor are empty data whose bytes
// are a null pointer.  Lengths are cut to 16 bits.

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
// is NO all the same: callers rely on it.  What cannot be added changes nothing.

- (BOOL)updateInt:(NSNumber*)value forOid:(int)oid;
- (BOOL)updateInt64:(NSNumber*)value forOid:(int)oid;
- (BOOL)updateString:(NSString*)text forOid:(int)oid;
- (BOOL)updateBin:(NSData*)data forOid:(int)oid;

@end

// Addresses and ranges of numbers as binary records:
//
//   IPv4 address            4 bytes, the last number of the text first
//   MAC address             6 bytes in text order
//   range of either         the start, then the end: 8 or 12 bytes
//   range of 16-bit words   two numbers in host order: 4 bytes
//   range of bytes          2 bytes
//
// Each byte of an address, of a byte range and of a key is the one at the lowest
// memory address of the number in host order: the low 8 bits on a little-endian
// host, the high-order byte on a big-endian one.  No number is refused for its
// size.  Callers rely on both.
@interface ZOTMifBuffer (AddressesAndRanges)

// ---- Writing ----
// NO, and no record written, for a nil first value and as stated below.

// A loose parse: decimal numbers up to four '.', missing ones 0, the rest ignored.
// A number of four and more characters runs on into the next, so that 1234.5.6.7
// begins with 12345 (callers rely on it); what runs past the fourth is dropped.  NO
// for a text that is not ASCII.  Otherwise addIp answers YES, and updateIp as updateBin
// does.
- (BOOL)addIp:(NSString*)ip forOid:(int)oid;
- (BOOL)updateIp:(NSString*)ip forOid:(int)oid;

// A nil end is the start once more.  NO when a text has not four numbers (IPv4) or
// six groups (MAC) as split below; otherwise YES, for a missing record too.
- (BOOL)addIPRangeFrom:(NSString*)from to:(NSString*)to forOid:(int)oid;
- (BOOL)updateIPRangeFrom:(NSString*)from to:(NSString*)to forOid:(int)oid;
- (BOOL)addMacAddr:(NSString*)mac forOid:(int)oid;
- (BOOL)addMacAddrRangeFrom:(NSString*)from to:(NSString*)to forOid:(int)oid;
- (BOOL)updateMacAddrRangeFrom:(NSString*)from to:(NSString*)to forOid:(int)oid;

// The numbers are taken modulo 65536; NO when one is nil.
- (BOOL)addWordRangeFrom:(NSNumber*)from to:(NSNumber*)to forOid:(int)oid;
- (BOOL)addByteRangeFrom:(NSNumber*)from to:(NSNumber*)to forOid:(int)oid;

// ---- Reading ----
// Texts are 10.0.0.1 and 00.1A.2B.3C.4D.5E.  NO for a nil or null target and for a
// value of another length, except that getIpStr shows the first four bytes of any
// value (missing ones as 0) and takes a nil target.

- (BOOL)getIpStr:(NSMutableString*)ip forOid:(int)oid;
- (BOOL)getIpRangeStr:(NSMutableString*)start end:(NSMutableString*)end forOid:(int)oid;
- (BOOL)getMacAddr:(NSMutableString*)mac forOid:(int)oid;
- (BOOL)getMacAddrRangeStr:(NSMutableString*)start end:(NSMutableString*)end forOid:(int)oid;
- (BOOL)getByteRangeNumber:(NSNumber**)start end:(NSNumber**)end forOid:(int)oid;

// ---- Splitting ----
// Append one NSNumber a group.  NO, and numbers unchanged, for a nil argument and
// for any other count of groups than four decimal ones between '.', or six
// hexadecimal ones between '.' or ':'.  A decimal group without digits is 0; a
// hexadecimal one repeats the number before it, the first is 0 then.

- (BOOL)splitIpStr:(NSString*)text IntoNumbersArray:(NSMutableArray*)numbers;
- (BOOL)splitMacStr:(NSString*)text IntoNumbersArray:(NSMutableArray*)numbers;

@end

// Passwords as string records, scrambled by EncryptPasw_20 (PasswordScrambling.h
// says what that loses), and keys as binary records of 16 bytes in text order.
// NO, and nothing changed, for nil arguments.
@interface ZOTMifBuffer (CryptFields)

// NO for a text that ISO 8859-1 cannot hold and when memory is short.  updateCryptStr
// appends a missing record and answers NO, as updateString does.
- (BOOL)addCryptStr:(NSString*)password forOid:(int)oid;
- (BOOL)updateCryptStr:(NSString*)password forOid:(int)oid;

// NO for a missing or empty record and for one of more than 511 bytes.
- (BOOL)getCryptStr:(NSMutableString*)password forOid:(int)oid;

// Sixteen hexadecimal groups, split as those of a MAC address are; NO for any other
// count, and for a record of another length.  Texts read are 00.11.AA and so on.
- (BOOL)addCryptKey:(NSString*)key forOid:(int)oid;
- (BOOL)getCryptKeyStr:(NSMutableString*)key forOid:(int)oid;
- (BOOL)splitCryptKeyStr:(NSString*)text IntoNumbersArray:(NSMutableArray*)numbers;

@end

#endif
