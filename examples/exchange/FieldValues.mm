#import "FieldValues.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace {

std::optional<unsigned long long> parseNumber(const std::string& text, unsigned long long largest) {
  char* end = nullptr;
  errno = 0;
  const unsigned long long number = std::strtoull(text.c_str(), &end, 10);
  const bool whole = !text.empty() && text[0] != '-' && *end == '\0' && errno == 0;
  return whole && number <= largest ? std::optional(number) : std::nullopt;
}

// Nil when the text is no number up to the largest one.
NSNumber* numberOf(const std::string& text, unsigned long long largest) {
  const auto number = parseNumber(text, largest);
  return number ? [NSNumber numberWithUnsignedLongLong:*number] : nil;
}

NSData* parseHex(NSString* text) {
  NSMutableData* bytes = [NSMutableData data];
  NSScanner* scanner = text != nil ? [NSScanner scannerWithString:text] : nil;
  while (![scanner isAtEnd]) {
    unsigned int number = 0;
    if (![scanner scanHexInt:&number] || number > 0xFF) {
      return nil;
    }
    const auto byte = static_cast<unsigned char>(number);
    [bytes appendBytes:&byte length:1];
  }
  return bytes;
}

// "FROM-TO"; without a TO the range has one element.
BOOL addAddressRange(ZOTMifBuffer* buffer, NSString* text, int oid) {
  NSArray* ends = [text componentsSeparatedByString:@"-"];
  NSString* to = [ends count] > 1 ? [ends objectAtIndex:1] : nil;
  return [ends count] <= 2 && [buffer addIPRangeFrom:[ends objectAtIndex:0] to:to forOid:oid];
}

BOOL addByteRange(ZOTMifBuffer* buffer, const std::string& text, int oid) {
  const size_t dash = text.find('-');
  NSNumber* from = numberOf(text.substr(0, dash), 0xFF);
  NSNumber* to = dash == std::string::npos ? from : numberOf(text.substr(dash + 1), 0xFF);
  return [buffer addByteRangeFrom:from to:to forOid:oid];
}

// "FROM-TO", or FROM alone when both are the same.
NSString* rangeText(id from, id to) {
  return [from isEqual:to] ? [from description] : [NSString stringWithFormat:@"%@-%@", from, to];
}

// Nil when there is no such record, or one that is not in the form of the field.
NSString* readingOf(ZOTMifBuffer* buffer, const Field& field) {
  NSMutableString* text = [NSMutableString string];
  NSMutableString* endText = [NSMutableString string];
  NSNumber* from = nil;
  NSNumber* to = nil;
  switch (field.kind) {
    case FieldKind::AddressRange:
      return [buffer getIpRangeStr:text end:endText forOid:field.oid] ? rangeText(text, endText) : nil;
    case FieldKind::ByteRange:
      return [buffer getByteRangeNumber:&from end:&to forOid:field.oid] ? rangeText(from, to) : nil;
    case FieldKind::MacAddress:
      return [buffer getMacAddr:text forOid:field.oid] ? text : nil;
    case FieldKind::Key:
      return [buffer getCryptKeyStr:text forOid:field.oid] ? text : nil;
    case FieldKind::Password:
      return [buffer getCryptStr:text forOid:field.oid] ? text : nil;
    default:
      return nil;
  }
}

}  // namespace

BOOL addSetting(ZOTMifBuffer* buffer, const Setting& setting) {
  const int oid = setting.field->oid;
  const int before = [buffer getDataLen];
  NSString* text = [NSString stringWithUTF8String:setting.value.c_str()];
  switch (setting.field->kind) {
    case FieldKind::Integer:
      [buffer addInt:numberOf(setting.value, 0xFFFFFFFF) forOid:oid];
      break;
    case FieldKind::Integer64:
      [buffer addInt64:numberOf(setting.value, ~0ull) forOid:oid];
      break;
    case FieldKind::Text:
      [buffer addString:text forOid:oid];
      break;
    case FieldKind::Binary: {
      NSData* bytes = parseHex(text);
      [buffer addBin:[bytes length] != 0 ? bytes : nil forOid:oid];
      break;
    }
    case FieldKind::AddressRange:
      return addAddressRange(buffer, text, oid);
    case FieldKind::MacAddress:
      return [buffer addMacAddr:text forOid:oid];
    case FieldKind::ByteRange:
      return addByteRange(buffer, setting.value, oid);
    case FieldKind::Password:
      return [buffer addCryptStr:text forOid:oid];
    case FieldKind::Key:
      return [buffer addCryptKey:text forOid:oid];
  }
  // The plain writers tell of a refusal only by adding nothing.
  return [buffer getDataLen] != before;
}

void printReadings(ZOTMifBuffer* buffer) {
  std::printf("front end: read with the buffer object\n");
  for (const Field& field : kFields) {
    NSString* reading = readingOf(buffer, field);
    if (reading == nil) {
      continue;
    }
    NSData* bytes = [reading dataUsingEncoding:NSISOLatin1StringEncoding];
    const bool quoted = field.kind == FieldKind::Password;
    printReading(field, quoted ? quotedText(bytesOf(bytes)) : [reading UTF8String]);
  }
  std::putchar('\n');
}
