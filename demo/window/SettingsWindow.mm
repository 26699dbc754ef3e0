#import "SettingsWindow.h"

#include <unistd.h>

#include <algorithm>
#include <initializer_list>
#include <iterator>

#import "LogTab.h"
#import "Look.h"
#import "ProfileTab.h"
#import "RecordsTab.h"
#import "ServiceCall.h"
#import "SystemTab.h"
#import "Texts.h"

namespace {

struct Language {
  int number;
  const char* name;
};
constexpr Language kLanguages[] = {
    {2, "English"}, {1, "Deutsch"}, {4, "Fran\u00E7ais"}, {3, "Espa\u00F1ol"}, {11, "Polski"}};

}  // namespace

@interface SettingsWindow (Private)
- (void)addControls;
- (void)resizeToTexts;
- (CGFloat)heightBelowTabs;
- (void)layOut;
- (void)languageChosen:(id)sender;
- (void)refresh;
- (void)profileChanged;
- (void)send:(Request)request;
- (void)ask:(Request)request;
- (void)showOutcome:(uint32_t)number;
@end

@implementation SettingsWindow

- (id)initWithTexts:(Texts*)shownTexts
           language:(int)number
          directory:(const std::string&)directory
                log:(SharedLog*)shared {
  self = [super init];
  if (self != nil) {
    texts = [shownTexts retain];
    profile = [[Profile alloc] init];
    window = [[NSWindow alloc]
        initWithContentRect:NSMakeRect(100, 100, 400, 300)
                  styleMask:NSTitledWindowMask | NSClosableWindowMask | NSResizableWindowMask
                    backing:NSBackingStoreBuffered
                      defer:NO];
    [window setReleasedWhenClosed:NO];
    [window setDelegate:self];
    sharedLog = shared;
    tabs = [[NSMutableArray alloc] init];
    [tabs addObject:[[[ProfileTab alloc] initWithProfile:profile owner:self
                                                 changed:@selector(profileChanged)] autorelease]];
    [tabs addObject:[[[RecordsTab alloc] initWithProfile:profile] autorelease]];
    [tabs addObject:[[[LogTab alloc] initWithLog:shared directory:directory] autorelease]];
    [tabs addObject:[[[SystemTab alloc] initWithLog:shared] autorelease]];
    call = [[ServiceCall alloc] initWithSocket:directory + "/service.sock"
                                         owner:self
                                          done:@selector(answered)];
    [self addControls];
    [self showLanguage:number];
  }
  return self;
}

- (void)dealloc {
  [window setDelegate:nil];
  [window release];
  [call release];
  [tabs release];
  [profile release];
  [texts release];
  [super dealloc];
}

- (void)open {
  [window makeKeyAndOrderFront:nil];
  [self ask:kRequestRead];
  [self refresh];
  // The timer keeps its target; close lets go of both.
  timer = [NSTimer scheduledTimerWithTimeInterval:0.25
                                           target:self
                                         selector:@selector(refresh)
                                         userInfo:nil
                                          repeats:YES];
}

- (void)close {
  [timer invalidate];
  timer = nil;
  [call stop];
  [window orderOut:nil];
}

- (NSWindow*)window {
  return window;
}

- (Profile*)profile {
  return profile;
}

- (Texts*)texts {
  return texts;
}

- (SharedLog*)log {
  return sharedLog;
}

- (NSPopUpButton*)languages {
  return languages;
}

- (NSTextField*)status {
  return status;
}

- (NSTabView*)tabView {
  return tabView;
}

- (NSArray*)tabs {
  return tabs;
}

- (ProfileTab*)profileTab {
  return [tabs objectAtIndex:0];
}

- (RecordsTab*)recordsTab {
  return [tabs objectAtIndex:1];
}

- (LogTab*)logTab {
  return [tabs objectAtIndex:2];
}

- (SystemTab*)systemTab {
  return [tabs objectAtIndex:3];
}

- (void)selectTab:(NSUInteger)index {
  [tabView selectTabViewItemAtIndex:static_cast<NSInteger>(index)];
}

- (void)showLanguage:(int)number {
  [texts setLanguage:number];
  [languages selectItemAtIndex:[languages indexOfItemWithTag:number]];
  [[languages itemAtIndex:0] setTitle:[texts textOf:kSystemLanguage]];
  [languages synchronizeTitleAndSelectedItem];
  [window setTitle:[texts textOf:kWindowTitle]];
  for (NSUInteger i = 0; i < [tabs count]; ++i) {
    TabPage<Tab>* tab = [tabs objectAtIndex:i];
    [tab showTexts:texts];
    [[tabView tabViewItemAtIndex:static_cast<NSInteger>(i)] setLabel:[texts textOf:[tab element]]];
  }
  [texts labelView:[window contentView]];
  [self showOutcome:outcome];
  [self resizeToTexts];
}

- (void)windowDidResize:(NSNotification*)note {
  [self layOut];
}

- (void)windowWillClose:(NSNotification*)note {
  [NSApp stop:self];
}

@end

@implementation SettingsWindow (Private)

- (void)addControls {
  NSView* content = [[[Page alloc] initWithFrame:NSZeroRect] autorelease];
  [window setContentView:content];
  tabView = [[[NSTabView alloc] initWithFrame:NSMakeRect(0, 0, 100, 100)] autorelease];
  for (NSUInteger i = 0; i < [tabs count]; ++i) {
    NSTabViewItem* item = [[[RoomyTabItem alloc] initWithIdentifier:nil] autorelease];
    [item setView:[(TabPage<Tab>*)[tabs objectAtIndex:i] view]];
    [tabView addTabViewItem:item];
  }
  [content addSubview:tabView];

  [content addSubview:makeText(kLanguage)];
  languages = [[[NSPopUpButton alloc] initWithFrame:NSZeroRect pullsDown:NO] autorelease];
  [languages addItemWithTitle:@""];
  for (const Language& language : kLanguages) {
    [languages addItemWithTitle:[NSString stringWithUTF8String:language.name]];
    [[languages lastItem] setTag:language.number];
  }
  [languages setTarget:self];
  [languages setAction:@selector(languageChosen:)];
  [content addSubview:languages];

  status = makeText(0);
  [content addSubview:status];
  NSButton* cancel = makeButton(kCancel, NSApp, @selector(stop:));
  NSButton* apply = makeButton(kApply, self, @selector(applyChosen:));
  NSButton* connect = makeButton(kConnect, self, @selector(connectChosen:));
  [cancel setKeyEquivalent:@"\033"];
  [connect setKeyEquivalent:@"\r"];
  [connect setFont:[NSFont boldSystemFontOfSize:12]];
  NSView* const order[] = {[[self profileTab] lastControl], cancel, apply, connect, languages};
  for (size_t i = 0; i + 1 < std::size(order); ++i) {
    [order[i] setNextKeyView:order[i + 1]];
  }
  [languages setNextKeyView:[[self profileTab] firstControl]];
  for (NSButton* button : {cancel, apply, connect}) {
    [content addSubview:button];
  }
  [window setInitialFirstResponder:[[self profileTab] firstControl]];
}

// Texts differ in length from language to language: the window grows with them.
- (void)resizeToTexts {
  NSSize page = NSZeroSize;
  for (NSUInteger i = 0; i < [tabs count]; ++i) {
    const NSSize smallest = [(TabPage<Tab>*)[tabs objectAtIndex:i] smallestSize];
    page = NSMakeSize(std::max(page.width, smallest.width), std::max(page.height, smallest.height));
  }
  const NSRect whole = NSMakeRect(0, 0, 1000, 1000);
  [tabView setFrame:whole];
  const NSRect inner = [tabView contentRect];
  const NSSize size =
      NSMakeSize(page.width + NSWidth(whole) - NSWidth(inner) + 2 * kMargin,
                 page.height + NSHeight(whole) - NSHeight(inner) + [self heightBelowTabs] + kMargin);
  const NSSize now = [[window contentView] bounds].size;
  [window setContentMinSize:size];
  [window setContentSize:NSMakeSize(std::max(size.width, now.width), std::max(size.height, now.height))];
  [self layOut];
}

- (CGFloat)heightBelowTabs {
  const CGFloat buttons = sizeOf([[window contentView] viewWithTag:kConnect]).height;
  return kGap + sizeOf(status).height + kGap + buttons + kMargin;
}

- (void)layOut {
  NSView* content = [window contentView];
  const NSSize size = [content bounds].size;
  const CGFloat width = size.width - 2 * kMargin;
  const NSSize popUp = sizeOf(languages);
  [languages setFrame:NSMakeRect(kMargin + width - popUp.width, kMargin - 5, popUp.width, kFieldHeight)];
  NSView* label = [content viewWithTag:kLanguage];
  const NSSize labelSize = sizeOf(label);
  [label setFrame:NSMakeRect(NSMinX([languages frame]) - kGap - labelSize.width,
                             NSMidY([languages frame]) - labelSize.height / 2, labelSize.width,
                             labelSize.height)];

  CGFloat y = size.height - [self heightBelowTabs];
  [tabView setFrame:NSMakeRect(kMargin, kMargin, width, y - kMargin)];
  for (NSUInteger i = 0; i < [tabs count]; ++i) {
    TabPage<Tab>* tab = [tabs objectAtIndex:i];
    [[tab view] setFrame:[tabView contentRect]];
    [tab layOut:[tabView contentRect].size];
  }
  y += kGap;
  [status setFrame:NSMakeRect(kMargin, y, width, sizeOf(status).height)];
  y = NSMaxY([status frame]) + kGap;
  CGFloat right = kMargin + width;
  for (const Element element : {kConnect, kApply, kCancel}) {
    NSView* button = [content viewWithTag:element];
    NSSize own = sizeOf(button);
    own.width = std::max(own.width, kSmallestButton);
    [button setFrame:NSMakeRect(right - own.width, y, own.width, own.height)];
    right -= own.width + kGap;
  }
  [content setNeedsDisplay:YES];
}

- (void)languageChosen:(id)sender {
  [self showLanguage:static_cast<int>([[sender selectedItem] tag])];
}

- (void)refresh {
  for (NSUInteger i = 0; i < [tabs count]; ++i) {
    [(TabPage<Tab>*)[tabs objectAtIndex:i] refresh];
  }
}

- (void)profileChanged {
  touched = YES;
  [self refresh];
}

- (void)applyChosen:(id)sender {
  [self send:kRequestApply];
}

- (void)connectChosen:(id)sender {
  [self send:kRequestConnect];
}

- (void)send:(Request)request {
  if ([[self profileTab] tellFaults:0]) {
    [self selectTab:0];
    [self showOutcome:kFaultyFields];
  } else if (underWay != 0) {
    waiting = request;
    [self showOutcome:kSending];
  } else {
    [self ask:request];
  }
}

- (void)ask:(Request)request {
  const BOOL sent = [call send:[profile messageFor:request]];
  underWay = sent ? static_cast<uint32_t>(request) : 0;
  if (request != kRequestRead) {
    [self showOutcome:sent ? kSending : kNoAnswer];
  }
}

- (void)answered {
  const Outcome came = [call outcome];
  ZotOsvLog(*sharedLog, ZOT_LOG_TRACE, "TRACE window: %lu bytes answered, outcome %u (pid=%d)",
            static_cast<unsigned long>([[call answer] length]), came, getpid());
  const uint32_t asked = underWay;
  underWay = 0;
  if (asked == kRequestRead) {
    // The stored profile; what was typed meanwhile counts more.
    if (came == kRead && !touched) {
      [profile takeMessage:[call answer]];
      [[self profileTab] showProfile];
      [self refresh];
    }
    if (waiting != 0) {
      [self send:static_cast<Request>(waiting)];
      waiting = 0;
    } else if (came != kRead) {
      [self showOutcome:came];
    }
    return;
  }
  if (came == kRefused) {
    NSData* answer = [call answer];
    const Bytes bytes(static_cast<const unsigned char*>([answer bytes]), [answer length]);
    [self selectTab:0];
    [[self profileTab] tellFaults:static_cast<unsigned short>(integerIn(bytes, kOidFaulty))];
  }
  [self showOutcome:came == kRead ? kNonsense : came];
}

- (void)showOutcome:(uint32_t)number {
  outcome = number;
  NSView* content = [window contentView];
  [[content viewWithTag:kApply] setEnabled:number != kSending];
  [[content viewWithTag:kConnect] setEnabled:number != kSending];
  const BOOL good = number == kApplied || number == kConnected || number == kSending;
  [status setTextColor:good ? hintColor() : faultColor()];
  [status setStringValue:number == 0 ? @"" : [texts textOf:kOutcomes sub:number]];
}

@end
