// How the program looks: GNUstep's defaults and drawing, changed for this program alone.

// Before the application exists.  With ownTitleBar AppKit draws the window's title
// bar, which is then part of its picture.
void registerLook(bool ownTitleBar);

// Once it exists.
void installLook();

@class NSColor;
@class NSTabView;

// Of all tabs side by side.
double widthOfTabs(NSTabView* view);

// The colours of what is wrong, of what only explains, and behind what is marked.
NSColor* faultColor();
NSColor* hintColor();
NSColor* markColor();
