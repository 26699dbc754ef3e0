#import "mifobject/GroupTextInternal.h"

#include <cstdio>

#include "mifobject/FieldBytesInternal.h"
#import "mifobject/ZOTMifBufferInternal.h"

namespace {

constexpr size_t kLongestText = zot::kKeyForm.count * (sizeof "255." - 1) + 1;

NSArray* groupsOf(const zot::GroupForm& form, NSString* text) {
  if (!form.colonSeparates) {
    return [text componentsSeparatedByString:@"."];
  }
  NSCharacterSet* separators = [NSCharacterSet characterSetWithCharactersInString:@".:"];
  return [text componentsSeparatedByCharactersInSet:separators];
}

// The place of a group's byte in the value.
NSUInteger placeOf(const zot::GroupForm& form, NSUInteger group) {
  return form.lastGroupFirst ? form.count - 1 - group : group;
}

}  // namespace

BOOL zot::splitGroups(const GroupForm& form, NSString* text, NSMutableArray* numbers) {
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
      [numbers addObject:[numberClass() numberWithUnsignedInt:scanned]];
    } else {
      [numbers addObject:[numberClass() numberWithInteger:[group integerValue]]];
    }
  }
  return YES;
}

std::optional<BOOL> zot::groupBytes(const GroupForm& form, ZOTMifBuffer* buffer, NSString* text,
                                    uint8_t* value) {
  if (text == nil) {
    return std::nullopt;
  }
  NSMutableArray* numbers = [[NSMutableArray alloc] init];
  std::optional<BOOL> answer = form.split(buffer, text, numbers);
  if ([numbers count] != form.count) {
    answer.reset();
  }
  for (NSUInteger i = 0; answer && i < form.count; ++i) {
    value[placeOf(form, i)] = fieldByte([[numbers objectAtIndex:i] intValue]);
  }
  [numbers release];
  return answer;
}

NSString* zot::groupText(const GroupForm& form, const uint8_t* value) {
  char text[kLongestText];
  size_t length = 0;
  for (NSUInteger i = 0; i < form.count; ++i) {
    if (i != 0) {
      text[length++] = '.';
    }
    const int printed =
        std::snprintf(text + length, sizeof text - length, form.printed, value[placeOf(form, i)]);
    length += static_cast<size_t>(printed);
  }
  return [stringClass() stringWithCString:text encoding:NSASCIIStringEncoding];
}
