// Texts of number groups, as addresses and keys are written, and their value
// bytes.  Private to the room.  Objects handed out are autoreleased.
#ifndef ZOT_GROUP_TEXT_INTERNAL_H
#define ZOT_GROUP_TEXT_INTERNAL_H

#import <Foundation/Foundation.h>

#include <cstdint>
#include <optional>

#import "mifobject/ZOTMifBuffer.h"

namespace zot {

struct GroupForm {
  NSUInteger count;     // groups of a text, bytes of a value
  bool colonSeparates;  // as '.' does
  bool hexadecimal;     // the numbers of a text that is read
  bool lastGroupFirst;  // in the value
  const char* printed;  // a byte as text
  // The public selector that splits such a text: a subclass may have its own.
  BOOL (*split)(ZOTMifBuffer* buffer, NSString* text, NSMutableArray* numbers);
};

constexpr GroupForm kIpV4Form{.count = 4,
                              .colonSeparates = false,
                              .hexadecimal = false,
                              .lastGroupFirst = true,
                              .printed = "%d",
                              .split = [](ZOTMifBuffer* buffer, NSString* text, NSMutableArray* numbers) {
                                return [buffer splitIpStr:text IntoNumbersArray:numbers];
                              }};

constexpr GroupForm kMacForm{.count = 6,
                             .colonSeparates = true,
                             .hexadecimal = true,
                             .lastGroupFirst = false,
                             .printed = "%02X",
                             .split = [](ZOTMifBuffer* buffer, NSString* text, NSMutableArray* numbers) {
                               return [buffer splitMacStr:text IntoNumbersArray:numbers];
                             }};

constexpr GroupForm kKeyForm{.count = 16,
                             .colonSeparates = true,
                             .hexadecimal = true,
                             .lastGroupFirst = false,
                             .printed = "%02X",
                             .split = [](ZOTMifBuffer* buffer, NSString* text, NSMutableArray* numbers) {
                               return [buffer splitCryptKeyStr:text IntoNumbersArray:numbers];
                             }};

// Appends the number of each group of text to numbers.  A group is never refused
// for what stands in it: a decimal one without digits counts 0, a hexadecimal one
// repeats the number before it (0 for the first group).
//
// NO, and numbers unchanged, for a nil argument and for another count of groups.
BOOL splitGroups(const GroupForm& form, NSString* text, NSMutableArray* numbers);

// Has the buffer split text and writes one byte for each number.  Returns what the
// split answered, since only the end of a range asks for that; nothing, and nothing
// written, for a nil text and for another count of numbers.
std::optional<BOOL> groupBytes(const GroupForm& form, ZOTMifBuffer* buffer, NSString* text, uint8_t* value);

// The text of form.count bytes, with '.' between the groups.
NSString* groupText(const GroupForm& form, const uint8_t* value);

}  // namespace zot

#endif
