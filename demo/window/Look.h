// How the program looks: GNUstep's defaults and drawing, changed for this program alone.

// Before the application exists.  With ownTitleBar AppKit draws the window's title
// bar, which is then part of its picture.
void registerLook(bool ownTitleBar);

// Once it exists.
void installLook();

@class NSColor;

// The colours of what is wrong and of what only explains.
NSColor* faultColor();
NSColor* hintColor();
