// The window's texts: from the language files, with the English ones as defaults.
#import <AppKit/AppKit.h>

@class ZOTMultiLang;

// Element numbers of the form, which are also the controls' tags.  A profile's field
// has the element number of its OID.
enum Element {
  kWindowTitle = 1,
  kLanguage = 2,
  kSystemLanguage = 3,
  kCancel = 4,
  kApply = 5,
  kConnect = 6,
  kProfileTab = 7,
  kRecordsTab = 8,
  kLogTab = 9,
  kSystemTab = 10,
  kFirstOption = 31,  // one check box for each bit of the options
  kMessage = 40,
  kOffsetColumn = 41,
  kOidColumn = 42,
  kLengthColumn = 43,
  kFieldColumn = 44,
  kValueColumn = 45,
  kBytes = 46,
  kEndMarker = 47,
  kRequest = 48,
  kLevels = 50,
  kErrors = 51,
  kFatal = 52,
  kTrace = 53,
  kDebug = 54,
  kStandardOutput = 55,
  kProgramColumn = 56,
  kLineColumn = 57,
  kWords = 60,
  kWordColumn = 61,
  kMeaningColumn = 62,
  kFirstWord = 63,  // the meanings of the block's five words
  kSlots = 70,
  kSlotColumn = 71,
  kIdentifierColumn = 72,
  kReferencesColumn = 73,
  kObjectColumn = 74,
  kWindowMutex = 75,
  kAppliedEvent = 76,
  kForeignObject = 77,
  kFaults = 100,   // what may be wrong with any field, see Fault
  kOutcomes = 110  // what became of a message, see Outcome
};

// Sub-elements of a profile's field: what belongs into it, and what is wrong with it.
enum { kTitle = 0, kHint = 1, kWrongForm = 2 };

@interface Texts : NSObject {
 @private
  ZOTMultiLang* texts;
  NSString* directory;
}

- (id)initWithDirectory:(NSString*)path;
- (void)dealloc;

// 0 follows the user's preference.
- (void)setLanguage:(int)number;

- (NSString*)textOf:(NSInteger)element;
- (NSString*)textOf:(NSInteger)element sub:(NSInteger)subElement;

// Gives every direct subview with a tag its text.
- (void)labelView:(NSView*)view;

@end

// Calls action(element, sub-element) for every text that the program has.
void forEachText(void (*action)(int element, int subElement, void* context), void* context);
