#import "mifobject/ZOTMifBuffer.h"

#include <algorithm>
#include <array>
#include <initializer_list>

#include "mif/Mif32.h"
#include "mifobject/FieldBytesInternal.h"
#import "mifobject/GroupTextInternal.h"
#import "mifobject/ZOTMifBufferInternal.h"

using zot::kIpV4Form;
using zot::kMacForm;

namespace {

template <typename Array>
NSData* dataOf(const Array& value) {
  return [dataClass() dataWithBytes:value.data() length:sizeof value];
}

// The bytes of the text's four numbers; nil for a text that ASCII cannot hold.
NSData* looseIpData(NSString* ip) {
  const char* text = zotCString(ip, NSASCIIStringEncoding);
  return text != nullptr ? dataOf(zot::looseIpV4(text)) : nil;
}

// The bytes of both addresses, a nil end being the start; nil when one of the texts
// has not the form's number of groups.
NSData* rangeData(ZOTMifBuffer* buffer, const zot::GroupForm& form, NSString* from, NSString* to) {
  std::array<uint8_t, 2 * kMacForm.count> value;
  uint8_t* const end = value.data() + form.count;
  if (!zot::groupBytes(form, buffer, from, value.data())) {
    return nil;
  }
  if (to == nil) {
    std::copy_n(value.data(), form.count, end);
  } else if (!zot::groupBytes(form, buffer, to, end).value_or(NO)) {
    return nil;
  }
  return [dataClass() dataWithBytes:value.data() length:2 * form.count];
}

// Both give YES for a value that could be made, whatever came of the record: callers
// of the range updates rely on YES for a missing one.
BOOL addValue(ZOTMifBuffer* buffer, NSData* value, int oid) {
  if (value == nil) {
    return NO;
  }
  [buffer addBin:value forOid:oid];
  return YES;
}

BOOL updateValue(ZOTMifBuffer* buffer, NSData* value, int oid) {
  if (value == nil) {
    return NO;
  }
  [buffer updateBin:value forOid:oid];
  return YES;
}

// Reads a value of exactly one address for each text.  Nothing changes unless all
// texts are there.
BOOL readAddresses(Mif32& records, int oid, const zot::GroupForm& form,
                   std::initializer_list<NSMutableString*> texts) {
  std::array<uint8_t, 2 * kMacForm.count> value;
  if (std::find(texts.begin(), texts.end(), nil) != texts.end() ||
      !zot::readWhole(records, oid16(oid), {value.data(), texts.size() * form.count})) {
    return NO;
  }
  const uint8_t* address = value.data();
  for (NSMutableString* text : texts) {
    [text setString:zot::groupText(form, address)];
    address += form.count;
  }
  return YES;
}

}  // namespace

@implementation ZOTMifBuffer (AddressesAndRanges)

- (BOOL)addIp:(NSString*)ip forOid:(int)oid {
  return addValue(self, looseIpData(ip), oid);
}

- (BOOL)updateIp:(NSString*)ip forOid:(int)oid {
  NSData* value = looseIpData(ip);
  return value != nil && [self updateBin:value forOid:oid];
}

- (BOOL)addIPRangeFrom:(NSString*)from to:(NSString*)to forOid:(int)oid {
  return addValue(self, rangeData(self, kIpV4Form, from, to), oid);
}

- (BOOL)updateIPRangeFrom:(NSString*)from to:(NSString*)to forOid:(int)oid {
  return updateValue(self, rangeData(self, kIpV4Form, from, to), oid);
}

- (BOOL)addMacAddr:(NSString*)mac forOid:(int)oid {
  std::array<uint8_t, kMacForm.count> value;
  return zot::groupBytes(kMacForm, self, mac, value.data()) && addValue(self, dataOf(value), oid);
}

- (BOOL)addMacAddrRangeFrom:(NSString*)from to:(NSString*)to forOid:(int)oid {
  return addValue(self, rangeData(self, kMacForm, from, to), oid);
}

- (BOOL)updateMacAddrRangeFrom:(NSString*)from to:(NSString*)to forOid:(int)oid {
  return updateValue(self, rangeData(self, kMacForm, from, to), oid);
}

- (BOOL)addWordRangeFrom:(NSNumber*)from to:(NSNumber*)to forOid:(int)oid {
  if (from == nil || to == nil) {
    return NO;
  }
  return addValue(self, dataOf(std::array{[from unsignedShortValue], [to unsignedShortValue]}), oid);
}

- (BOOL)addByteRangeFrom:(NSNumber*)from to:(NSNumber*)to forOid:(int)oid {
  if (from == nil || to == nil) {
    return NO;
  }
  const std::array value{zot::fieldByte([from unsignedShortValue]), zot::fieldByte([to unsignedShortValue])};
  return addValue(self, dataOf(value), oid);
}

- (BOOL)getIpStr:(NSMutableString*)ip forOid:(int)oid {
  NSMutableData* data = [[NSMutableData alloc] initWithLength:0];
  const BOOL found = [self getBinData:data forOid:oid];
  if (found) {
    // A longer value shows its first four bytes, a shorter one ends in zeros.
    std::array<uint8_t, kIpV4Form.count> value{};
    [data getBytes:value.data() length:std::min<NSUInteger>(value.size(), [data length])];
    [ip setString:zot::groupText(kIpV4Form, value.data())];
  }
  [data release];
  return found;
}

- (BOOL)getIpRangeStr:(NSMutableString*)start end:(NSMutableString*)end forOid:(int)oid {
  return readAddresses(*mif32, oid, kIpV4Form, {start, end});
}

- (BOOL)getMacAddr:(NSMutableString*)mac forOid:(int)oid {
  return readAddresses(*mif32, oid, kMacForm, {mac});
}

- (BOOL)getMacAddrRangeStr:(NSMutableString*)start end:(NSMutableString*)end forOid:(int)oid {
  return readAddresses(*mif32, oid, kMacForm, {start, end});
}

- (BOOL)getByteRangeNumber:(NSNumber**)start end:(NSNumber**)end forOid:(int)oid {
  std::array<uint8_t, 2> value;
  if (start == nullptr || end == nullptr || !zot::readWhole(*mif32, oid16(oid), value)) {
    return NO;
  }
  *start = [numberClass() numberWithUnsignedInt:value[0]];
  *end = [numberClass() numberWithUnsignedInt:value[1]];
  return YES;
}

- (BOOL)splitIpStr:(NSString*)text IntoNumbersArray:(NSMutableArray*)numbers {
  return zot::splitGroups(kIpV4Form, text, numbers);
}

- (BOOL)splitMacStr:(NSString*)text IntoNumbersArray:(NSMutableArray*)numbers {
  return zot::splitGroups(kMacForm, text, numbers);
}

@end
