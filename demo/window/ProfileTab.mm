#import "ProfileTab.h"

#include <algorithm>

#import "Look.h"
#import "Texts.h"

namespace {

constexpr CGFloat kSmallestFields = 380;

// A row of the page: a label, one field or both ends of a range, a hint below.
struct Row {
  unsigned short oid;
  Entry first, last;
};

constexpr Row kRows[] = {
    {kOidName, kName, kName},
    {kOidGateway, kGateway, kGateway},
    {kOidRange, kRangeFrom, kRangeTo},
    {kOidAdapter, kAdapter, kAdapter},
    {kOidPorts, kPortFrom, kPortTo},
    {kOidPassword, kPassword, kPassword},
    {kOidKey, kKey, kKey},
};

}  // namespace

@implementation ProfileTab

- (id)initWithProfile:(Profile*)shown owner:(id)target changed:(SEL)action {
  self = [super init];
  if (self != nil) {
    profile = [shown retain];
    owner = target;
    changed = action;
    for (const Row& row : kRows) {
      [page addSubview:makeText(row.oid)];
      for (int entry = row.first; entry <= row.last; ++entry) {
        fields[entry] = makeField(entry == kPassword);
        [fields[entry] setDelegate:self];
        [page addSubview:fields[entry]];
      }
      hints[row.oid - kOidName] = makeHint();
      [page addSubview:hints[row.oid - kOidName]];
    }
    [page addSubview:makeText(kOidOptions)];
    for (unsigned int i = 0; i < kOptionCount; ++i) {
      options[i] = makeCheckBox(kFirstOption + i, self, @selector(optionChosen:));
      [page addSubview:options[i]];
    }
    for (int entry = 0; entry < kEntryCount; ++entry) {
      NSView* next = entry + 1 < kEntryCount ? (NSView*)fields[entry + 1] : options[0];
      [fields[entry] setNextKeyView:next];
    }
    for (unsigned int i = 0; i + 1 < kOptionCount; ++i) {
      [options[i] setNextKeyView:options[i + 1]];
    }
  }
  return self;
}

- (void)dealloc {
  for (NSTextField* field : fields) {
    [field setDelegate:nil];
  }
  [profile release];
  [super dealloc];
}

- (NSInteger)element {
  return kProfileTab;
}

- (NSTextField*)fieldOf:(Entry)entry {
  return fields[entry];
}

- (NSTextField*)hintOf:(unsigned short)oid {
  return hints[oid - kOidName];
}

- (NSView*)firstControl {
  return fields[0];
}

- (NSView*)lastControl {
  return options[kOptionCount - 1];
}

- (void)showProfile {
  for (int entry = 0; entry < kEntryCount; ++entry) {
    [fields[entry] setStringValue:[profile entry:static_cast<Entry>(entry)]];
  }
  for (unsigned int i = 0; i < kOptionCount; ++i) {
    [options[i] setState:([profile options] >> i & 1) != 0 ? NSOnState : NSOffState];
  }
}

// Below a field stands what belongs into it, or what is wrong with it.
- (void)showHint:(unsigned short)oid fault:(Fault)fault {
  NSTextField* hint = hints[oid - kOidName];
  [hint setTextColor:fault == kNoFault ? hintColor() : faultColor()];
  [hint setStringValue:fault == kNoFault     ? [shownTexts textOf:oid sub:kHint]
                       : fault == kFaultForm ? [shownTexts textOf:oid sub:kWrongForm]
                                             : [shownTexts textOf:kFaults sub:fault]];
}

- (void)showHints {
  for (const Row& row : kRows) {
    [self showHint:row.oid fault:told[row.oid - kOidName] ? [profile faultOf:row.oid] : kNoFault];
  }
}

- (BOOL)tellFaults:(unsigned short)refused {
  const Row* first = nullptr;
  for (const Row& row : kRows) {
    const Fault fault = [profile faultOf:row.oid];
    told[row.oid - kOidName] = fault != kNoFault;
    [self showHint:row.oid fault:row.oid == refused ? kFaultForm : fault];
    if (first == nullptr && (fault != kNoFault || row.oid == refused)) {
      first = &row;
    }
  }
  if (first != nullptr) {
    // Once the button is done, which takes the keyboard when the mouse has pressed it.
    [self performSelector:@selector(editField:) withObject:fields[first->first] afterDelay:0];
  }
  return first != nullptr;
}

- (void)editField:(NSTextField*)field {
  [[page window] makeFirstResponder:field];
  [page setNeedsDisplay:YES];
}

- (void)showTexts:(Texts*)texts {
  [super showTexts:texts];
  [self showHints];
}

- (CGFloat)labelWidth {
  CGFloat width = sizeOf([page viewWithTag:kOidOptions]).width;
  for (const Row& row : kRows) {
    width = std::max(width, sizeOf([page viewWithTag:row.oid]).width);
  }
  return width;
}

// As wide as the longest sentence that may stand below a field.
- (CGFloat)fieldWidth {
  CGFloat width = kSmallestFields;
  NSTextField* probe = makeHint();
  for (const Row& row : kRows) {
    for (const int sub : {kHint, kWrongForm}) {
      [probe setStringValue:[shownTexts textOf:row.oid sub:sub]];
      width = std::max(width, sizeOf(probe).width);
    }
  }
  for (NSButton* option : options) {
    width = std::max(width, sizeOf(option).width);
  }
  return width;
}

- (NSSize)smallestSize {
  const CGFloat width = 2 * kMargin + [self labelWidth] + kGap + [self fieldWidth];
  [self layOut:NSMakeSize(width, 0)];
  return NSMakeSize(width, NSMaxY([options[kOptionCount - 1] frame]) + kMargin);
}

- (void)layOut:(NSSize)size {
  const CGFloat labels = [self labelWidth];
  const CGFloat left = kMargin + labels + kGap;
  const CGFloat width = size.width - kMargin - left;
  CGFloat y = kMargin;
  // GCC 12 gives up on an instance variable in a lambda.
  Page* view = page;
  const auto placeLabel = [&](unsigned short oid, CGFloat height) {
    NSView* label = [view viewWithTag:oid];
    const NSSize own = sizeOf(label);
    [label
        setFrame:NSMakeRect(left - kGap - own.width, y + (height - own.height) / 2, own.width, own.height)];
  };
  for (const Row& row : kRows) {
    placeLabel(row.oid, kFieldHeight);
    const int count = row.last - row.first + 1;
    const CGFloat each = (width - (count - 1) * kGap) / count;
    for (int i = 0; i < count; ++i) {
      [fields[row.first + i] setFrame:NSMakeRect(left + i * (each + kGap), y, each, kFieldHeight)];
    }
    NSTextField* hint = hints[row.oid - kOidName];
    const CGFloat height = sizeOf(hint).height;
    [hint setFrame:NSMakeRect(left, y + kFieldHeight + 2, width, height)];
    y += kFieldHeight + height + kGap;
  }
  y += kGap / 2;
  for (NSButton* option : options) {
    if (option == options[0]) {
      placeLabel(kOidOptions, sizeOf(option).height);
    }
    y = place(option, left, y) + kGap / 2;
  }
}

- (void)refresh {
  // This tab is where changes come from.
}

- (void)changeSeen {
  [owner performSelector:changed];
}

- (void)optionChosen:(id)sender {
  unsigned int bits = 0;
  for (unsigned int i = 0; i < kOptionCount; ++i) {
    bits |= ([options[i] state] == NSOnState ? 1u : 0u) << i;
  }
  [profile setOptions:bits];
  [self changeSeen];
}

- (void)controlTextDidChange:(NSNotification*)note {
  for (int entry = 0; entry < kEntryCount; ++entry) {
    if (fields[entry] == [note object]) {
      [profile setEntry:static_cast<Entry>(entry) to:[fields[entry] stringValue]];
    }
  }
  // A fault that was told goes as soon as it is mended.
  for (const Row& row : kRows) {
    told[row.oid - kOidName] &= [profile faultOf:row.oid] != kNoFault;
  }
  [self showHints];
  [self changeSeen];
}

// Return and Escape are the buttons', also while a field is edited.  Escape comes as
// complete: or cancelOperation:, as the user's key bindings have it.
- (BOOL)control:(NSControl*)control textView:(NSTextView*)editor doCommandBySelector:(SEL)command {
  return (sel_isEqual(command, @selector(insertNewline:)) || sel_isEqual(command, @selector(complete:)) ||
          sel_isEqual(command, @selector(cancelOperation:))) &&
         [[page window] performKeyEquivalent:[NSApp currentEvent]];
}

// A field that was left half filled is told; an empty one may still be filled.
- (void)controlTextDidEndEditing:(NSNotification*)note {
  // The frame of the field that is edited has a colour of its own.
  [page setNeedsDisplay:YES];
  for (const Row& row : kRows) {
    if (fields[row.first] == [note object] || fields[row.last] == [note object]) {
      const Fault fault = [profile faultOf:row.oid];
      told[row.oid - kOidName] |= fault != kNoFault && fault != kFaultMissing;
    }
  }
  [self showHints];
}

@end
