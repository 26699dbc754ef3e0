#import "mifobject/ZOTMifBuffer.h"

#include <algorithm>
#include <new>

#include "mif/Mif32.h"
#include "mif/MifRecord.h"
#include "mifobject/FieldBytesInternal.h"
#import "mifobject/ZOTMifBufferInternal.h"

namespace {

// Texts are read with a terminator.
constexpr unsigned int kStringBufferSize = 512;

// The conversions cut to the low 16 bits, negative numbers included.
unsigned short low16(NSUInteger number) {
  return static_cast<unsigned short>(number);
}

const unsigned char* bytesOf(NSData* data) {
  return static_cast<const unsigned char*>([data bytes]);
}

// Replaces the contents of data by length bytes, of which the first inside stand at
// bytes and the others are 0.
void fill(NSMutableData* data, const unsigned char* bytes, size_t inside, NSUInteger length) {
  NSData* contents;
  if (inside == length) {
    // setData: copies, so that these bytes need not be copied for it.
    contents = [[dataClass() alloc] initWithBytesNoCopy:const_cast<unsigned char*>(bytes)
                                                 length:length
                                           freeWhenDone:NO];
  } else {
    NSMutableData* padded = [[NSMutableData alloc] initWithLength:length];
    mifCopyBounded([padded mutableBytes], bytes, inside, 0, length);
    contents = padded;
  }
  [data setData:contents];
  [contents release];
}

}  // namespace

@implementation ZOTMifBuffer

- (id)init {
  self = [super init];
  if (self != nil) {
    mif32 = new (std::nothrow) Mif32();
    if (mif32 == nullptr) {
      [self release];
      return nil;
    }
  }
  return self;
}

- (void)dealloc {
  delete mif32;
  [super dealloc];
}

- (void)setData:(NSData*)data {
  if (data != nil) {
    mif32->SetData(bytesOf(data), low16([data length]));
  }
}

- (void)setLen:(int)len {
  mif32->SetLen(static_cast<unsigned short>(len));
}

- (void)allocWithLen:(int)len {
  mif32->Alloc(static_cast<unsigned short>(len));
}

- (void)clearBuffer {
  mif32->ClearBuffer();
}

- (void)addEndKz {
  mif32->AddEndKz();
}

- (BOOL)delEndKz {
  return mif32->DelEndKz() != 0;
}

- (BOOL)delFirstOccurenceOfOid:(int)oid {
  return mif32->DelOid(oid16(oid)) != 0;
}

- (void)getDataIntoBuffer:(NSMutableData*)buffer {
  if (buffer == nil) {
    return;
  }
  // A length set by hand may claim more than the block holds.
  const unsigned int length = mif32->GetLen();
  const unsigned int block = mif32->GetData() != nullptr ? mif32->GetAllocLen() : 0;
  fill(buffer, mif32->GetData(), std::min(length, block), length);
}

- (int)getDataLen {
  return static_cast<int>(mif32->GetLen());
}

- (void)addInt:(NSNumber*)value forOid:(int)oid {
  if (value != nil) {
    mif32->AddInt(oid16(oid), [value unsignedIntValue]);
  }
}

- (void)addInt64:(NSNumber*)value forOid:(int)oid {
  if (value != nil) {
    mif32->AddInt64(oid16(oid), [value unsignedLongLongValue]);
  }
}

- (void)addString:(NSString*)text forOid:(int)oid {
  mif32->AddStr(oid16(oid), latin1(text));
}

- (void)addBin:(NSData*)data forOid:(int)oid {
  if (data != nil) {
    mif32->AddBin(oid16(oid), bytesOf(data), static_cast<unsigned int>([data length]));
  }
}

- (BOOL)getInt:(NSNumber**)value forOid:(int)oid {
  unsigned int number = 0;
  if (mif32->GetInt(oid16(oid), &number, 1) != 1) {
    return NO;
  }
  if (value != nullptr) {
    *value = [numberClass() numberWithUnsignedInt:number];
  }
  return YES;
}

- (BOOL)getInt64:(NSNumber**)value forOid:(int)oid {
  unsigned long long number = 0;
  if (mif32->GetInt64(oid16(oid), &number, 1) != 1) {
    return NO;
  }
  if (value != nullptr) {
    *value = [numberClass() numberWithUnsignedLongLong:number];
  }
  return YES;
}

- (BOOL)getString:(NSMutableString*)text forOid:(int)oid {
  const auto value = zot::valueOf(*mif32, oid16(oid));
  if (!value || value->length >= kStringBufferSize) {
    return NO;
  }
  NSString* contents = [[stringClass() alloc] initWithBytes:value->bytes
                                                     length:value->textLength()
                                                   encoding:NSISOLatin1StringEncoding];
  [text setString:contents];
  [contents release];
  return YES;
}

- (BOOL)getBinData:(NSMutableData*)data forOid:(int)oid {
  const auto value = data != nil ? zot::valueOf(*mif32, oid16(oid)) : std::nullopt;
  if (!value) {
    return NO;
  }
  fill(data, value->bytes, value->inside, value->length);
  return YES;
}

- (BOOL)updateInt:(NSNumber*)value forOid:(int)oid {
  return value != nil && mif32->UpdInt(oid16(oid), [value unsignedIntValue], 1) != 0;
}

- (BOOL)updateInt64:(NSNumber*)value forOid:(int)oid {
  return value != nil && mif32->UpdInt64(oid16(oid), [value unsignedLongLongValue], 1) != 0;
}

- (BOOL)updateString:(NSString*)text forOid:(int)oid {
  const char* bytes = latin1(text);
  return bytes != nullptr && mif32->UpdStr(oid16(oid), bytes, 1) != 0;
}

- (BOOL)updateBin:(NSData*)data forOid:(int)oid {
  // Exactly 1, and the length cut here: callers rely on both.
  return data != nil && mif32->UpdBin(oid16(oid), bytesOf(data), low16([data length]), 1) == 1;
}

@end
