// How the program looks: GNUstep's defaults and drawing, changed for this program alone.
#import <AppKit/AppKit.h>

// Before the application exists.  With ownTitleBar AppKit draws the window's title
// bar, which is then part of its picture.
void registerLook(bool ownTitleBar);

// Once it exists.
void installLook();

// A tab that a click anywhere on it selects.
@interface RoomyTabItem : NSTabViewItem
@end

// Of all tabs side by side.
CGFloat widthOfTabs(NSTabView* view);

// The colours of what is wrong, of what only explains, and behind what is marked.
NSColor* faultColor();
NSColor* hintColor();
NSColor* markColor();
