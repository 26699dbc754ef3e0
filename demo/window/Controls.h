// Controls made in code and the measures that every page keeps to.
#import <AppKit/AppKit.h>

@class Texts;

constexpr CGFloat kMargin = 20;
constexpr CGFloat kGap = 8;
constexpr CGFloat kFieldHeight = 22;
constexpr CGFloat kSmallestButton = 96;
constexpr CGFloat kHexSize = 11;  // of the characters in a hex view

// Counts from its top edge.
@interface Page : NSView
@end

// What each tab of the window has its own way to do.
@protocol Tab
- (NSInteger)element;  // of the tab's title
// The size below which something would be cut, with the texts that show.
- (NSSize)smallestSize;
- (void)layOut:(NSSize)size;
// Shows what has changed; comes after every change and four times a second.
- (void)refresh;
@end

// What all tabs have alike.
@interface TabPage : NSObject {
 @protected
  Page* page;         // empty at first
  Texts* shownTexts;  // nil before the first language
}

- (id)init;
- (void)dealloc;

- (NSView*)view;
// Puts the texts of the language on all that shows: here, on the page's own controls.
- (void)showTexts:(Texts*)texts;

@end

// A text that the user does not change.  Its tag is the element of its text, or 0.
NSTextField* makeText(NSInteger element);
NSTextField* makeHint();

// A field that the user fills has tag 0: its contents are no title.
NSTextField* makeField(BOOL secret);

NSButton* makeButton(NSInteger element, id target, SEL action);
NSButton* makeCheckBox(NSInteger element, id target, SEL action);

// A table of texts that nobody changes, in a frame that scrolls.
@interface TextTable : NSScrollView <NSTableViewDataSource, NSTableViewDelegate> {
 @private
  NSTableView* table;
  const char* const* samples;
  NSArray* rows;
  id owner;
  SEL selected;
}

// elements are those of the columns' titles; the samples stand for the longest texts.
// Both outlive the table.
- (id)initWithColumns:(const int*)elements samples:(const char* const*)longest count:(size_t)count;
- (void)dealloc;

// Sends action to target, which is not retained, when another row is selected.
- (void)setTarget:(id)target selected:(SEL)action;

// Gives the columns their titles, and all but the last the width that they need.
- (void)showTexts:(Texts*)texts;

// Arrays of texts in the order of the columns.
- (void)setRows:(NSArray*)texts;
- (NSArray*)rows;

// -1: none.
- (NSInteger)selectedRow;
- (void)selectRow:(NSUInteger)row;
- (void)showLastRow;

- (NSArray*)columns;

// The width below which a column would be cut.
- (CGFloat)smallestWidth;

@end

// A text of equally wide characters that nobody changes, in a frame that scrolls, and
// the room that it needs.
NSScrollView* makeHexFrame();
CGFloat hexWidth(NSUInteger characters);
CGFloat hexHeight(NSUInteger lines);

// The size that the contents of a control need.
NSSize sizeOf(NSView* control);

// Places a control at its own size, and returns the bottom edge.
CGFloat place(NSView* control, CGFloat x, CGFloat y);
