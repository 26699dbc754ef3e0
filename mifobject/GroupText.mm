#import "mifobject/GroupTextInternal.h"

#include "mifobject/FieldBytesInternal.h"

namespace {

NSArray* groupsOf(zot::GroupForm form, NSString* text) {
  if (!form.hexadecimal) {
    return [text componentsSeparatedByString:@"."];
  }
  NSCharacterSet* separators = [NSCharacterSet characterSetWithCharactersInString:@".:"];
  return [text componentsSeparatedByCharactersInSet:separators];
}

// The place of a group's byte in the value.
NSUInteger placeOf(zot::GroupForm form, NSUInteger group) {
  return form.hexadecimal ? group : form.count - 1 - group;
}

}  // namespace

BOOL zot::splitGroups(GroupForm form, NSString* text, NSMutableArray* numbers) {
  if (text == nil || numbers == nil) {
    return NO;
  }
  NSArray* groups = groupsOf(form, text);
  if ([groups count] != form.count) {
    return NO;
  }
  // Not reset from group to group: the scanner leaves it alone when it finds no
  // digits, and callers rely on the repeated number.
  unsigned int scanned = 0;
  for (NSUInteger i = 0; i < form.count; ++i) {
    NSString* group = [groups objectAtIndex:i];
    if (form.hexadecimal) {
      [[NSScanner scannerWithString:group] scanHexInt:&scanned];
      [numbers addObject:[NSNumber numberWithUnsignedInt:scanned]];
    } else {
      [numbers addObject:[NSNumber numberWithInteger:[group integerValue]]];
    }
  }
  return YES;
}

BOOL zot::groupBytes(GroupForm form, NSString* text, uint8_t* value) {
  NSMutableArray* numbers = [[NSMutableArray alloc] init];
  const BOOL whole = splitGroups(form, text, numbers);
  for (NSUInteger i = 0; i < [numbers count]; ++i) {
    value[placeOf(form, i)] = fieldByte([[numbers objectAtIndex:i] intValue]);
  }
  [numbers release];
  return whole;
}

NSString* zot::groupText(GroupForm form, const uint8_t* value) {
  NSMutableString* text = [NSMutableString string];
  NSString* const format = form.hexadecimal ? @"%@%02X" : @"%@%d";
  for (NSUInteger i = 0; i < form.count; ++i) {
    [text appendFormat:format, i == 0 ? @"" : @".", value[placeOf(form, i)]];
  }
  return text;
}
