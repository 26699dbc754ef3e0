#import "Profile.h"

#include <initializer_list>

#include "mif/MifRecord.h"
#import "mifobject/ZOTMifBuffer.h"

namespace {

NSString* trimmed(NSString* text) {
  return [text stringByTrimmingCharactersInSet:[NSCharacterSet whitespaceCharacterSet]];
}

// The buffer's own parsers take any text that splits into as many parts; a user is
// told what is wrong with them.
BOOL isNumber(NSString* part, unsigned int highest) {
  NSCharacterSet* others = [[NSCharacterSet characterSetWithCharactersInString:@"0123456789"] invertedSet];
  return [part length] >= 1 && [part length] <= 5 && [part rangeOfCharacterFromSet:others].length == 0 &&
         [part integerValue] <= static_cast<NSInteger>(highest);
}

BOOL isAddress(NSString* text) {
  NSArray* parts = [text componentsSeparatedByString:@"."];
  for (NSUInteger i = 0; i < [parts count]; ++i) {
    if (!isNumber([parts objectAtIndex:i], 255)) {
      return NO;
    }
  }
  return [parts count] == 4;
}

BOOL isHexGroups(NSString* text, NSUInteger count) {
  NSCharacterSet* others =
      [[NSCharacterSet characterSetWithCharactersInString:@"0123456789abcdefABCDEF"] invertedSet];
  NSArray* parts =
      [text componentsSeparatedByCharactersInSet:[NSCharacterSet characterSetWithCharactersInString:@".:"]];
  for (NSUInteger i = 0; i < [parts count]; ++i) {
    NSString* part = [parts objectAtIndex:i];
    if ([part length] != 2 || [part rangeOfCharacterFromSet:others].length != 0) {
      return NO;
    }
  }
  return [parts count] == count;
}

uint32_t addressOf(NSString* text) {
  uint32_t address = 0;
  NSEnumerator* parts = [[text componentsSeparatedByString:@"."] objectEnumerator];
  for (NSString* part; (part = [parts nextObject]) != nil;) {
    address = address << 8 | static_cast<uint32_t>([part integerValue]);
  }
  return address;
}

// A scrambled byte that looks like an escape reads back as another text.
BOOL survivesScrambling(NSString* password) {
  ZOTMifBuffer* buffer = [[[ZOTMifBuffer alloc] init] autorelease];
  NSMutableString* back = [NSMutableString string];
  return [buffer addCryptStr:password forOid:kOidPassword] && [buffer getCryptStr:back forOid:kOidPassword] &&
         [back isEqualToString:password];
}

Fault faultOfText(NSString* text, NSUInteger longest) {
  if (![text canBeConvertedToEncoding:NSISOLatin1StringEncoding] ||
      [text rangeOfCharacterFromSet:[NSCharacterSet controlCharacterSet]].length != 0) {
    return kFaultCharacters;
  }
  return [text length] <= longest ? kNoFault : kFaultForm;
}

NSNumber* portNumber(NSString* text) {
  return [NSNumber numberWithInteger:[text integerValue]];
}

}  // namespace

@implementation Profile

- (void)dealloc {
  for (NSString* entry : entries) {
    [entry release];
  }
  [super dealloc];
}

- (NSString*)entry:(Entry)entry {
  return entries[entry] != nil ? entries[entry] : @"";
}

- (void)setEntry:(Entry)entry to:(NSString*)text {
  // Blanks around a name or a number are slips; in a password they are meant.
  NSString* taken = [entry == kPassword ? text : trimmed(text) copy];
  [entries[entry] release];
  entries[entry] = taken;
}

- (unsigned int)options {
  return options;
}

- (void)setOptions:(unsigned int)bits {
  options = bits;
}

// Both ends of a range, or neither.
- (Fault)faultFrom:(Entry)from
                to:(Entry)to
              form:(BOOL (*)(NSString*))form
             value:(uint32_t (*)(NSString*))value {
  NSString* first = [self entry:from];
  NSString* last = [self entry:to];
  if ([first length] == 0 && [last length] == 0) {
    return kNoFault;
  }
  if ([first length] == 0 || [last length] == 0) {
    return kFaultMissing;
  }
  if (!form(first) || !form(last)) {
    return kFaultForm;
  }
  return value(first) <= value(last) ? kNoFault : kFaultOrder;
}

- (Fault)faultOf:(unsigned short)oid {
  const auto unlessEmpty = [self](Entry entry, BOOL right) {
    return [[self entry:entry] length] == 0 || right ? kNoFault : kFaultForm;
  };
  switch (oid) {
    case kOidName:
      return [[self entry:kName] length] == 0 ? kFaultMissing : faultOfText([self entry:kName], kLongestName);
    case kOidGateway:
      if ([[self entry:kGateway] length] == 0) {
        return kFaultMissing;
      }
      return unlessEmpty(kGateway, isAddress([self entry:kGateway]));
    case kOidRange:
      return [self faultFrom:kRangeFrom to:kRangeTo form:isAddress value:addressOf];
    case kOidAdapter:
      return unlessEmpty(kAdapter, isHexGroups([self entry:kAdapter], 6));
    case kOidPorts:
      return [self faultFrom:kPortFrom
          to:kPortTo
          form:[](NSString* text) -> BOOL { return isNumber(text, 65535) && [text integerValue] > 0; }
          value:[](NSString* text) { return static_cast<uint32_t>([text integerValue]); }];
    case kOidPassword: {
      const Fault fault = faultOfText([self entry:kPassword], kLongestName);
      return fault != kNoFault ? fault : unlessEmpty(kPassword, survivesScrambling([self entry:kPassword]));
    }
    case kOidKey:
      return unlessEmpty(kKey, isHexGroups([self entry:kKey], 16));
    default:
      return kNoFault;
  }
}

- (BOOL)isFaulty {
  for (unsigned short oid = kOidName; oid <= kOidKey; ++oid) {
    if ([self faultOf:oid] != kNoFault) {
      return YES;
    }
  }
  return NO;
}

- (void)addField:(unsigned short)oid to:(ZOTMifBuffer*)buffer {
  switch (oid) {
    case kOidName:
      [buffer addString:[self entry:kName] forOid:oid];
      break;
    case kOidGateway:
      [buffer addIp:[self entry:kGateway] forOid:oid];
      break;
    case kOidRange:
      [buffer addIPRangeFrom:[self entry:kRangeFrom] to:[self entry:kRangeTo] forOid:oid];
      break;
    case kOidAdapter:
      [buffer addMacAddr:[self entry:kAdapter] forOid:oid];
      break;
    case kOidPorts:
      [buffer addWordRangeFrom:portNumber([self entry:kPortFrom])
                            to:portNumber([self entry:kPortTo])
                        forOid:oid];
      break;
    case kOidPassword:
      [buffer addCryptStr:[self entry:kPassword] forOid:oid];
      break;
    case kOidKey:
      [buffer addCryptKey:[self entry:kKey] forOid:oid];
      break;
  }
}

- (NSData*)messageFor:(Request)request {
  // The first entry of each field: without it the field is empty.
  constexpr Entry kFirst[] = {kName, kGateway, kRangeFrom, kAdapter, kPortFrom, kPassword, kKey};
  ZOTMifBuffer* buffer = [[[ZOTMifBuffer alloc] init] autorelease];
  [buffer addInt:[NSNumber numberWithUnsignedInt:request] forOid:kOidRequest];
  for (unsigned short oid = kOidName; request != kRequestRead && oid <= kOidKey; ++oid) {
    if ([[self entry:kFirst[oid - kOidName]] length] != 0 && [self faultOf:oid] == kNoFault) {
      [self addField:oid to:buffer];
    }
  }
  if (request != kRequestRead) {
    [buffer addInt:[NSNumber numberWithUnsignedInt:options] forOid:kOidOptions];
  }
  [buffer addEndKz];
  NSMutableData* message = [NSMutableData data];
  [buffer getDataIntoBuffer:message];
  return message;
}

- (void)takeMessage:(NSData*)message {
  ZOTMifBuffer* buffer = [[[ZOTMifBuffer alloc] init] autorelease];
  [buffer setData:message];
  NSMutableString* texts[kEntryCount];
  for (NSMutableString*& text : texts) {
    text = [NSMutableString string];
  }
  [buffer getString:texts[kName] forOid:kOidName];
  [buffer getIpStr:texts[kGateway] forOid:kOidGateway];
  [buffer getIpRangeStr:texts[kRangeFrom] end:texts[kRangeTo] forOid:kOidRange];
  [buffer getMacAddr:texts[kAdapter] forOid:kOidAdapter];
  [buffer getCryptStr:texts[kPassword] forOid:kOidPassword];
  [buffer getCryptKeyStr:texts[kKey] forOid:kOidKey];
  NSMutableData* ports = [NSMutableData data];
  if ([buffer getBinData:ports forOid:kOidPorts] && [ports length] == 4) {
    const auto* value = static_cast<const unsigned char*>([ports bytes]);
    [texts[kPortFrom] appendFormat:@"%u", mifLoad<unsigned short>(value)];
    [texts[kPortTo] appendFormat:@"%u", mifLoad<unsigned short>(value + 2)];
  }
  for (int entry = 0; entry < kEntryCount; ++entry) {
    [self setEntry:static_cast<Entry>(entry) to:texts[entry]];
  }
  NSNumber* bits = nil;
  options = [buffer getInt:&bits forOid:kOidOptions] ? [bits unsignedIntValue] : 0;
}

@end

NSString* readableField(NSData* message, unsigned short oid) {
  Profile* profile = [[[Profile alloc] init] autorelease];
  [profile takeMessage:message];
  const auto range = [profile](Entry from, Entry to) {
    return [NSString stringWithFormat:@"%@ - %@", [profile entry:from], [profile entry:to]];
  };
  switch (oid) {
    case kOidName:
      return [profile entry:kName];
    case kOidGateway:
      return [profile entry:kGateway];
    case kOidRange:
      return range(kRangeFrom, kRangeTo);
    case kOidAdapter:
      return [profile entry:kAdapter];
    case kOidPorts:
      return range(kPortFrom, kPortTo);
    case kOidPassword:
      return [@"" stringByPaddingToLength:[[profile entry:kPassword] length]
                               withString:@"*"
                          startingAtIndex:0];
    case kOidKey:
      return [profile entry:kKey];
    case kOidOptions:
      return [NSString stringWithFormat:@"0x%X", [profile options]];
    default:
      return nil;
  }
}
