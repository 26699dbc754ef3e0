#import "Controls.h"

#include <algorithm>
#include <cmath>

#import "Look.h"
#import "Texts.h"

@implementation Page
- (BOOL)isFlipped {
  return YES;
}
@end

@implementation TabPage

- (id)init {
  self = [super init];
  if (self != nil) {
    page = [[Page alloc] initWithFrame:NSZeroRect];
  }
  return self;
}

- (void)dealloc {
  [shownTexts release];
  [page release];
  [super dealloc];
}

- (NSView*)view {
  return page;
}

- (void)showTexts:(Texts*)texts {
  [texts retain];
  [shownTexts release];
  shownTexts = texts;
  [texts labelView:page];
}

@end

NSTextField* makeText(NSInteger element) {
  NSTextField* text = [[[NSTextField alloc] initWithFrame:NSZeroRect] autorelease];
  [text setTag:element];
  [text setEditable:NO];
  [text setSelectable:NO];
  [text setBezeled:NO];
  [text setDrawsBackground:NO];
  return text;
}

NSTextField* makeHint() {
  NSTextField* hint = makeText(0);
  [hint setFont:[NSFont systemFontOfSize:10]];
  [hint setTextColor:hintColor()];
  return hint;
}

NSTextField* makeField(BOOL secret) {
  Class kind = secret ? [NSSecureTextField class] : [NSTextField class];
  NSTextField* field = [[[kind alloc] initWithFrame:NSZeroRect] autorelease];
  [[field cell] setScrollable:YES];
  return field;
}

NSButton* makeButton(NSInteger element, id target, SEL action) {
  NSButton* button = [[[NSButton alloc] initWithFrame:NSZeroRect] autorelease];
  [button setTag:element];
  [button setButtonType:NSMomentaryPushInButton];
  [button setBezelStyle:NSRoundedBezelStyle];
  [button setTarget:target];
  [button setAction:action];
  return button;
}

NSButton* makeCheckBox(NSInteger element, id target, SEL action) {
  NSButton* box = makeButton(element, target, action);
  [box setButtonType:NSSwitchButton];
  [box setImagePosition:NSImageLeft];
  return box;
}

@implementation TextTable

- (id)initWithColumns:(const int*)elements samples:(const char* const*)longest count:(size_t)count {
  self = [super initWithFrame:NSMakeRect(0, 0, 100, 100)];
  if (self != nil) {
    samples = longest;
    table = [[[NSTableView alloc] initWithFrame:NSMakeRect(0, 0, 100, 100)] autorelease];
    for (size_t i = 0; i < count; ++i) {
      NSString* identifier = [NSString stringWithFormat:@"%d", elements[i]];
      NSTableColumn* column = [[[NSTableColumn alloc] initWithIdentifier:identifier] autorelease];
      [column setEditable:NO];
      [[column dataCell] setFont:[NSFont systemFontOfSize:11]];
      [[column headerCell] setFont:[NSFont boldSystemFontOfSize:11]];
      [[column headerCell] setAlignment:NSLeftTextAlignment];
      [table addTableColumn:column];
    }
    [table setRowHeight:18];
    [table setGridStyleMask:NSTableViewSolidHorizontalGridLineMask];
    [table setColumnAutoresizingStyle:NSTableViewLastColumnOnlyAutoresizingStyle];
    [table setDataSource:self];
    [table setDelegate:self];
    [self setBorderType:NSLineBorder];
    [self setHasVerticalScroller:YES];
    [self setAutohidesScrollers:YES];
    [self setDocumentView:table];
  }
  return self;
}

- (void)dealloc {
  [table setDataSource:nil];
  [table setDelegate:nil];
  [rows release];
  [super dealloc];
}

- (void)setTarget:(id)target selected:(SEL)action {
  owner = target;
  selected = action;
}

- (void)showTexts:(Texts*)texts {
  for (NSUInteger i = 0; i < [[self columns] count]; ++i) {
    NSTableColumn* column = [[self columns] objectAtIndex:i];
    [[column headerCell] setStringValue:[texts textOf:[[column identifier] integerValue]]];
    NSDictionary* font = [NSDictionary dictionaryWithObject:[[column dataCell] font]
                                                     forKey:NSFontAttributeName];
    const CGFloat sample = [[NSString stringWithUTF8String:samples[i]] sizeWithAttributes:font].width;
    const CGFloat width = std::ceil(std::max([[column headerCell] cellSize].width, sample) + 2 * kGap);
    [column setMinWidth:width];
    if (i + 1 < [[self columns] count]) {
      [column setWidth:width];
    }
  }
  [table sizeLastColumnToFit];
  [[table headerView] setNeedsDisplay:YES];
}

- (void)setFrame:(NSRect)frame {
  [super setFrame:frame];
  [table sizeLastColumnToFit];
}

- (void)setRows:(NSArray*)texts {
  [texts retain];
  [rows release];
  rows = texts;
  [table reloadData];
}

- (NSArray*)rows {
  return rows;
}

- (NSInteger)selectedRow {
  return [table selectedRow];
}

- (void)selectRow:(NSUInteger)row {
  [table selectRowIndexes:[NSIndexSet indexSetWithIndex:row] byExtendingSelection:NO];
}

- (void)showLastRow {
  [table scrollRowToVisible:static_cast<NSInteger>([rows count]) - 1];
}

- (NSArray*)columns {
  return [table tableColumns];
}

- (CGFloat)smallestWidth {
  CGFloat width = [NSScroller scrollerWidth] + 2;
  for (NSUInteger i = 0; i < [[self columns] count]; ++i) {
    width += [[[self columns] objectAtIndex:i] minWidth] + [table intercellSpacing].width;
  }
  return std::ceil(width);
}

- (NSInteger)numberOfRowsInTableView:(NSTableView*)view {
  return static_cast<NSInteger>([rows count]);
}

- (id)tableView:(NSTableView*)view objectValueForTableColumn:(NSTableColumn*)column row:(NSInteger)row {
  return
      [[rows objectAtIndex:static_cast<NSUInteger>(row)] objectAtIndex:[[self columns] indexOfObject:column]];
}

- (void)tableViewSelectionDidChange:(NSNotification*)note {
  [owner performSelector:selected];
}

@end

NSScrollView* makeHexFrame() {
  NSTextView* text = [[[NSTextView alloc] initWithFrame:NSMakeRect(0, 0, 100, 100)] autorelease];
  [text setEditable:NO];
  [text setAutoresizingMask:NSViewWidthSizable];
  [text setTextContainerInset:NSMakeSize(kGap / 2, kGap / 2)];
  NSScrollView* frame = [[[NSScrollView alloc] initWithFrame:NSMakeRect(0, 0, 100, 100)] autorelease];
  [frame setBorderType:NSLineBorder];
  [frame setHasVerticalScroller:YES];
  [frame setDocumentView:text];
  return frame;
}

CGFloat hexWidth(NSUInteger characters) {
  const CGFloat each = [[NSFont userFixedPitchFontOfSize:kHexSize] maximumAdvancement].width;
  return std::ceil(each * static_cast<CGFloat>(characters) + 3 * kGap + [NSScroller scrollerWidth]);
}

CGFloat hexHeight(NSUInteger lines) {
  const CGFloat each = [[NSFont userFixedPitchFontOfSize:kHexSize] defaultLineHeightForFont];
  return std::ceil(each * static_cast<CGFloat>(lines) + 2 * kGap);
}

NSSize sizeOf(NSView* control) {
  NSSize size = [[(NSControl*)control cell] cellSize];
  return NSMakeSize(std::ceil(size.width), std::ceil(size.height));
}

CGFloat place(NSView* control, CGFloat x, CGFloat y) {
  const NSSize size = sizeOf(control);
  [control setFrame:NSMakeRect(x, y, size.width, size.height)];
  return y + size.height;
}
