// Texts of number groups, as addresses and keys are written, and their value
// bytes.  Private to the room.  Objects handed out are autoreleased.
#ifndef ZOT_GROUP_TEXT_INTERNAL_H
#define ZOT_GROUP_TEXT_INTERNAL_H

#import <Foundation/Foundation.h>

#include <cstdint>

namespace zot {

struct GroupForm {
  NSUInteger count;
  // Hexadecimal groups are separated by '.' or ':' and stored in text order,
  // decimal ones are separated by '.' and stored last group first.
  bool hexadecimal;
};

constexpr GroupForm kIpV4Form{4, false};
constexpr GroupForm kMacForm{6, true};
constexpr GroupForm kKeyForm{16, true};

// Appends the number of each group of text to numbers.  A group is never refused
// for what stands in it: a decimal one without digits counts 0, a hexadecimal one
// repeats the number before it (0 for the first group).
//
// NO, and numbers unchanged, for a nil argument and for another count of groups.
BOOL splitGroups(GroupForm form, NSString* text, NSMutableArray* numbers);

// Writes one byte for each group of text.  NO, and nothing written, where
// splitGroups refuses.
BOOL groupBytes(GroupForm form, NSString* text, uint8_t* value);

// The text of form.count bytes: plain decimal, or two upper-case digits a group,
// with '.' between.
NSString* groupText(GroupForm form, const uint8_t* value);

}  // namespace zot

#endif
