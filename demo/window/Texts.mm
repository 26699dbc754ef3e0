#import "Texts.h"

#include "ProfileFormat.h"
#import "multilang/ZOTMultiLang.h"

namespace {

constexpr int kForm = 10;

struct English {
  int element;
  int subElement;
  const char* text;
};

// What shows without a language file.
constexpr English kEnglish[] = {
    {kWindowTitle, 0, "Network profile"},
    {kLanguage, 0, "Language:"},
    {kSystemLanguage, 0, "System"},
    {kCancel, 0, "Cancel"},
    {kApply, 0, "Apply"},
    {kConnect, 0, "Connect"},
    {kProfileTab, 0, "Profile"},
    {kRecordsTab, 0, "Records"},
    {kLogTab, 0, "Log"},
    {kSystemTab, 0, "System"},

    {kOidName, kTitle, "Profile name:"},
    {kOidName, kHint, "As you want to find it again, such as Office"},
    {kOidName, kWrongForm, "A name has at most 63 characters."},
    {kOidGateway, kTitle, "Gateway:"},
    {kOidGateway, kHint, "Its IPv4 address, such as 192.0.2.1"},
    {kOidGateway, kWrongForm, "An address is four numbers up to 255, with dots between."},
    {kOidRange, kTitle, "Addresses:"},
    {kOidRange, kHint, "First and last address that the gateway hands out"},
    {kOidRange, kWrongForm, "Each address is four numbers up to 255, with dots between."},
    {kOidAdapter, kTitle, "Adapter:"},
    {kOidAdapter, kHint, "The network adapter's address, such as 00:1A:2B:3C:4D:5E"},
    {kOidAdapter, kWrongForm, "An adapter's address is six pairs of the digits 0-9 and A-F."},
    {kOidPorts, kTitle, "Ports:"},
    {kOidPorts, kHint, "First and last local port, from 1 to 65535"},
    {kOidPorts, kWrongForm, "A port is a number from 1 to 65535."},
    {kOidPassword, kTitle, "Password:"},
    {kOidPassword, kHint, "It is stored scrambled"},
    {kOidPassword, kWrongForm, "This password cannot be stored; please choose another one."},
    {kOidKey, kTitle, "Key:"},
    {kOidKey, kHint, "16 pairs of the digits 0-9 and A-F, with dots between"},
    {kOidKey, kWrongForm, "A key is 16 pairs of the digits 0-9 and A-F, with dots between."},
    {kOidOptions, kTitle, "Options:"},
    {kFirstOption, 0, "Connect when the computer starts"},
    {kFirstOption + 1, 0, "Connect again when the line was lost"},
    {kFirstOption + 2, 0, "Send everything through the gateway"},

    {kMessage, 0, "This is the message that Apply would send:"},
    {kOffsetColumn, 0, "Offset"},
    {kOidColumn, 0, "OID"},
    {kLengthColumn, 0, "Length"},
    {kFieldColumn, 0, "Field"},
    {kValueColumn, 0, "Value"},
    {kBytes, 0, "Its bytes, those of the selected record marked:"},
    {kEndMarker, 0, "End marker"},
    {kRequest, 0, "Request"},

    {kLevels, 0, "These lines are written, in every process of the client:"},
    {kErrors, 0, "Errors"},
    {kFatal, 0, "Fatal errors"},
    {kTrace, 0, "Trace"},
    {kDebug, 0, "Debugging"},
    {kStandardOutput, 0, "To standard output, which shows them here"},
    {kProgramColumn, 0, "Program"},
    {kLineColumn, 0, "Line"},

    {kWords, 0, "The words of the block that all processes share:"},
    {kWordColumn, 0, "Word"},
    {kMeaningColumn, 0, "Meaning"},
    {kFirstWord, 0, "Log level"},
    {kFirstWord + 1, 0, "Log objects attached"},
    {kFirstWord + 2, 0, "Semaphores in use"},
    {kFirstWord + 3, 0, "References to named semaphores"},
    {kFirstWord + 4, 0, "Slots ever used"},
    {kSlots, 0, "Its slots, one for each named object:"},
    {kSlotColumn, 0, "Slot"},
    {kIdentifierColumn, 0, "Identifier"},
    {kReferencesColumn, 0, "References"},
    {kObjectColumn, 0, "Object"},
    {kWindowMutex, 0, "Mutex: only one window"},
    {kAppliedEvent, 0, "Event: a profile was applied"},
    {kForeignObject, 0, "Of another program"},

    {kFaults, kFaultMissing, "Please fill in this field."},
    {kFaults, kFaultOrder, "The first value is above the second."},
    {kFaults, kFaultCharacters, "There is a character here that cannot be stored."},

    {kOutcomes, kApplied, "The profile is stored."},
    {kOutcomes, kConnected, "The profile is stored and the connection is made."},
    {kOutcomes, kSending, "The profile is being sent."},
    {kOutcomes, kNoService, "The service is not running. What you entered is still here."},
    {kOutcomes, kNoAnswer, "The service gave no answer. What you entered is still here."},
    {kOutcomes, kNonsense, "The service's answer makes no sense. What you entered is still here."},
    {kOutcomes, kRefused, "The service refused the profile. What you entered is still here."},
    {kOutcomes, kNotStored, "The service cannot store the profile. What you entered is still here."},
    {kOutcomes, kFaultyFields, "Please correct the fields that are marked."},
    {kOutcomes, kSecondWindow, "Another window is open already."},
};

const char* englishOf(NSInteger element, NSInteger subElement) {
  for (const English& english : kEnglish) {
    if (english.element == element && english.subElement == subElement) {
      return english.text;
    }
  }
  return nullptr;
}

}  // namespace

@implementation Texts

- (id)initWithDirectory:(NSString*)path {
  self = [super init];
  if (self != nil) {
    directory = [path copy];
    texts = [[ZOTMultiLang alloc] init];
    [texts setBaseName:@"demo"];
  }
  return self;
}

- (void)dealloc {
  [texts release];
  [directory release];
  [super dealloc];
}

- (void)setLanguage:(int)number {
  if (number == 0) {
    [texts loadTextsForPreferredLanguageWithFilePath:directory formNumber:[NSNumber numberWithInt:kForm]];
  } else {
    [texts loadTextsForLanguageNr:number withFilePath:directory formNumber:kForm];
  }
}

- (NSString*)textOf:(NSInteger)element {
  return [self textOf:element sub:0];
}

- (NSString*)textOf:(NSInteger)element sub:(NSInteger)subElement {
  const char* english = englishOf(element, subElement);
  return [texts prgTextForElemNr:[NSNumber numberWithInteger:element]
                       subElemNr:[NSNumber numberWithInteger:subElement]
                     withDefault:english != nullptr ? [NSString stringWithUTF8String:english] : nil];
}

- (void)labelView:(NSView*)view {
  // A control without a text keeps its title: let that be the English one and not
  // that of the language before.
  NSEnumerator* subviews = [[view subviews] objectEnumerator];
  for (NSView* subview; (subview = [subviews nextObject]) != nil;) {
    const char* english = englishOf([subview tag], 0);
    if (english != nullptr) {
      [[(NSControl*)subview cell] setTitle:[NSString stringWithUTF8String:english]];
    }
  }
  [texts setTextsForView:view];
}

@end

void forEachText(void (*action)(int element, int subElement, void* context), void* context) {
  for (const English& english : kEnglish) {
    action(english.element, english.subElement, context);
  }
}
