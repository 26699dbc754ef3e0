#import "ConnectWindow.h"

#include <algorithm>
#include <initializer_list>

#import "multilang/ZOTMultiLang.h"

namespace {

// Element numbers of form 10.  A field that the user fills has tag 0, or its
// contents would be taken for a title.
enum Element {
  kWindowTitle = 1,
  kHeading = 2,
  kIntroduction = 3,
  kServer = 10,
  kUserName = 11,
  kPassword = 12,
  kLanguage = 13,
  kRemember = 20,
  kAutomatic = 21,
  kWhatToDo = 22,
  kConnect = 30,
  kCancel = 31,
  kHelp = 32
};

constexpr CGFloat kMargin = 20;
constexpr CGFloat kGap = 8;
constexpr CGFloat kFieldHeight = 22;
constexpr CGFloat kFieldWidth = 320;
constexpr CGFloat kSmallestButton = 90;

struct Language {
  int number;
  const char* name;
};
constexpr Language kLanguages[] = {{2, "English"}, {1, "Deutsch"}, {4, "Fran\u00E7ais"}};

NSTextField* makeText(Element element, CGFloat size, BOOL bold) {
  NSTextField* text = [[[NSTextField alloc] initWithFrame:NSZeroRect] autorelease];
  [text setTag:element];
  [text setEditable:NO];
  [text setSelectable:NO];
  [text setBezeled:NO];
  [text setDrawsBackground:NO];
  [text setFont:bold ? [NSFont boldSystemFontOfSize:size] : [NSFont systemFontOfSize:size]];
  return text;
}

NSButton* makeButton(Element element, NSButtonType type, id target, SEL action) {
  NSButton* button = [[[NSButton alloc] initWithFrame:NSZeroRect] autorelease];
  [button setTag:element];
  [button setButtonType:type];
  if (type == NSMomentaryPushInButton) {
    [button setBezelStyle:NSRoundedBezelStyle];
  }
  [button setTarget:target];
  [button setAction:action];
  return button;
}

NSSize sizeOf(NSView* content, Element element) {
  return [[[content viewWithTag:element] cell] cellSize];
}

}  // namespace

// Counts from its top edge, like the layout below.
@interface FlippedView : NSView
@end

@implementation FlippedView
- (BOOL)isFlipped {
  return YES;
}
@end

@interface ConnectWindow (Building)
- (void)addControlsShowing:(int)languageNumber;
- (void)addRowFor:(Element)element field:(NSView*)field;
- (void)showTexts;
- (void)layOut;
- (void)languageChosen:(id)sender;
@end

@implementation ConnectWindow

+ (int)formNumber {
  return 10;
}

- (id)initWithTexts:(ZOTMultiLang*)loadedTexts languageNumber:(int)number {
  self = [super init];
  if (self != nil) {
    texts = [loadedTexts retain];
    window = [[NSWindow alloc] initWithContentRect:NSMakeRect(200, 200, 400, 300)
                                         styleMask:NSTitledWindowMask
                                           backing:NSBackingStoreBuffered
                                             defer:NO];
    [window setReleasedWhenClosed:NO];
    [window setContentView:[[[FlippedView alloc] initWithFrame:NSZeroRect] autorelease]];
    [self addControlsShowing:number];
    [self showTexts];
  }
  return self;
}

- (void)dealloc {
  [window release];
  [texts release];
  [super dealloc];
}

- (NSWindow*)window {
  return window;
}

@end

@implementation ConnectWindow (Building)

- (void)addControlsShowing:(int)languageNumber {
  NSView* content = [window contentView];
  [content addSubview:makeText(kHeading, 18, YES)];
  [content addSubview:makeText(kIntroduction, 12, NO)];

  [self addRowFor:kServer field:[[[NSTextField alloc] initWithFrame:NSZeroRect] autorelease]];
  [self addRowFor:kUserName field:[[[NSTextField alloc] initWithFrame:NSZeroRect] autorelease]];
  [self addRowFor:kPassword field:[[[NSSecureTextField alloc] initWithFrame:NSZeroRect] autorelease]];
  languages = [[[NSPopUpButton alloc] initWithFrame:NSZeroRect pullsDown:NO] autorelease];
  for (const Language& language : kLanguages) {
    [languages addItemWithTitle:[NSString stringWithUTF8String:language.name]];
    [[languages lastItem] setTag:language.number];
  }
  [languages selectItemAtIndex:std::max<NSInteger>(0, [languages indexOfItemWithTag:languageNumber])];
  [languages setTarget:self];
  [languages setAction:@selector(languageChosen:)];
  [self addRowFor:kLanguage field:languages];
  // Not an element of its own but the server's second text, so tag 0.
  serverHint = makeText(static_cast<Element>(0), 10, NO);
  [content addSubview:serverHint];

  [content addSubview:makeButton(kRemember, NSSwitchButton, nil, nullptr)];
  [content addSubview:makeButton(kAutomatic, NSSwitchButton, nil, nullptr)];
  [content addSubview:makeText(kWhatToDo, 12, NO)];
  [content addSubview:makeButton(kHelp, NSMomentaryPushInButton, nil, nullptr)];
  [content addSubview:makeButton(kCancel, NSMomentaryPushInButton, NSApp, @selector(terminate:))];
  [content addSubview:makeButton(kConnect, NSMomentaryPushInButton, NSApp, @selector(terminate:))];
}

// A label and, right behind it among the subviews, the field that it names.
- (void)addRowFor:(Element)element field:(NSView*)field {
  NSTextField* label = makeText(element, 12, NO);
  [label setAlignment:NSRightTextAlignment];
  [[window contentView] addSubview:label];
  [[window contentView] addSubview:field];
}

- (void)showTexts {
  [window setTitle:[texts prgTextForElemNr:[NSNumber numberWithInt:kWindowTitle]
                                 subElemNr:[NSNumber numberWithInt:0]
                               withDefault:@""]];
  [serverHint setStringValue:[texts prgTextForElemNr:[NSNumber numberWithInt:kServer]
                                           subElemNr:[NSNumber numberWithInt:1]
                                         withDefault:@""]];
  [texts setTextsForView:[window contentView]];
  [self layOut];
}

// Texts differ in length from language to language, so the controls take the room
// that theirs needs, and the window follows.
- (void)layOut {
  NSView* content = [window contentView];
  NSArray* subviews = [content subviews];
  CGFloat labelWidth = 0;
  for (const Element element : {kServer, kUserName, kPassword, kLanguage}) {
    labelWidth = std::max(labelWidth, sizeOf(content, element).width);
  }
  const CGFloat fieldWidth = std::max(kFieldWidth, [[serverHint cell] cellSize].width);
  CGFloat width = labelWidth + kGap + fieldWidth;
  CGFloat y = kMargin;

  const auto placeAlone = [&](Element element) {
    const NSSize size = sizeOf(content, element);
    width = std::max(width, size.width);
    [[content viewWithTag:element] setFrame:NSMakeRect(kMargin, y, size.width, size.height)];
    y += size.height + kGap;
  };
  const auto placeRow = [&](Element element) {
    NSView* label = [content viewWithTag:element];
    NSView* field = [subviews objectAtIndex:[subviews indexOfObject:label] + 1];
    const CGFloat height = sizeOf(content, element).height;
    [label setFrame:NSMakeRect(kMargin, y + (kFieldHeight - height) / 2, labelWidth, height)];
    [field setFrame:NSMakeRect(kMargin + labelWidth + kGap, y, fieldWidth, kFieldHeight)];
    y += kFieldHeight + kGap;
  };

  placeAlone(kHeading);
  placeAlone(kIntroduction);
  y += kGap;
  placeRow(kServer);
  const NSSize hintSize = [[serverHint cell] cellSize];
  [serverHint setFrame:NSMakeRect(kMargin + labelWidth + kGap, y - kGap / 2, fieldWidth, hintSize.height)];
  y += hintSize.height + kGap / 2;
  for (const Element element : {kUserName, kPassword, kLanguage}) {
    placeRow(element);
  }
  y += kGap;
  for (const Element element : {kRemember, kAutomatic, kWhatToDo}) {
    placeAlone(element);
  }
  y += kGap;

  CGFloat right = kMargin + width;
  CGFloat buttonHeight = 0;
  for (const Element element : {kConnect, kCancel, kHelp}) {
    NSSize size = sizeOf(content, element);
    size.width = std::max(size.width + 2 * kGap, kSmallestButton);
    const CGFloat x = element == kHelp ? kMargin : right - size.width;
    [[content viewWithTag:element] setFrame:NSMakeRect(x, y, size.width, size.height)];
    right -= size.width + kGap;
    buttonHeight = std::max(buttonHeight, size.height);
  }
  [window setContentSize:NSMakeSize(width + 2 * kMargin, y + buttonHeight + kMargin)];
  [content setNeedsDisplay:YES];
}

- (void)languageChosen:(id)sender {
  // The table that is loaded changes its texts in place.
  [texts setLanguage:[NSNumber numberWithInteger:[[sender selectedItem] tag]]];
  [self showTexts];
}

@end
