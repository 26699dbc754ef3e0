#import "User.h"

#import "ProfileTab.h"
#import "Texts.h"

static constexpr double kPatience = 8;  // seconds

const char* const kTyped[kEntryCount] = {"B\u00FCro S\u00FCd",
                                         "192.0.2.1",
                                         "10.8.0.10",
                                         "10.8.0.200",
                                         "00:1a:2B:3c:4D:5e",
                                         "40000",
                                         "40999",
                                         "Nachtwache am Tor",
                                         "0F.1E.2D.3C.4B.5A.69.78.87.96.A5.B4.C3.D2.E1.F0"};

NSString* text(const char* utf8) {
  return [NSString stringWithUTF8String:utf8];
}

bool waitUntil(const std::function<bool()>& condition) {
  NSDate* end = [NSDate dateWithTimeIntervalSinceNow:kPatience];
  while (!condition()) {
    if ([end timeIntervalSinceNow] < 0) {
      return false;
    }
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSEvent* event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                        untilDate:[NSDate dateWithTimeIntervalSinceNow:0.02]
                                           inMode:NSDefaultRunLoopMode
                                          dequeue:YES];
    if (event != nil) {
      [NSApp sendEvent:event];
    }
    [pool release];
  }
  return true;
}

void type(SettingsWindow* settings, Entry entry, NSString* typed) {
  NSTextField* field = [[settings profileTab] fieldOf:entry];
  [[settings window] makeFirstResponder:field];
  NSText* editor = [field currentEditor];
  [editor selectAll:nil];
  if ([typed length] != 0) {
    [(NSTextView*)editor insertText:typed];
  } else {
    [(NSTextView*)editor deleteBackward:nil];
  }
}

void press(NSWindow* window, NSString* key) {
  NSEvent* event = [NSEvent keyEventWithType:NSKeyDown
                                    location:NSZeroPoint
                               modifierFlags:0
                                   timestamp:0
                                windowNumber:[window windowNumber]
                                     context:nil
                                  characters:key
                 charactersIgnoringModifiers:key
                                   isARepeat:NO
                                     keyCode:0];
  [NSApp postEvent:event atStart:NO];
  waitUntil([&] { return [NSApp currentEvent] == event; });
}

void click(NSView* view) {
  NSWindow* window = [view window];
  const NSRect bounds = [view bounds];
  const NSPoint place = [view convertPoint:NSMakePoint(NSMidX(bounds), NSMidY(bounds)) toView:nil];
  NSEvent* event = nil;
  for (const NSEventType kind : {NSLeftMouseDown, NSLeftMouseUp}) {
    event = [NSEvent mouseEventWithType:kind
                               location:place
                          modifierFlags:0
                              timestamp:0
                           windowNumber:[window windowNumber]
                                context:nil
                            eventNumber:0
                             clickCount:1
                               pressure:0];
    [NSApp postEvent:event atStart:NO];
  }
  waitUntil([&] { return [NSApp currentEvent] == event; });
}

void chooseLanguage(SettingsWindow* settings, int number) {
  NSPopUpButton* languages = [settings languages];
  [languages selectItemAtIndex:[languages indexOfItemWithTag:number]];
  [NSApp sendAction:[languages action] to:[languages target] from:languages];
}

NSButton* button(SettingsWindow* settings, int element) {
  return [[[settings window] contentView] viewWithTag:element];
}

bool comesTo(SettingsWindow* settings, Outcome outcome) {
  return waitUntil([&] {
    return [[[settings status] stringValue] isEqual:[[settings texts] textOf:kOutcomes sub:outcome]];
  });
}
