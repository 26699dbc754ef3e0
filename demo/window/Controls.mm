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

NSScrollView* makeTable(const int* elements, size_t count, id source) {
  NSTableView* table = [[[NSTableView alloc] initWithFrame:NSMakeRect(0, 0, 100, 100)] autorelease];
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
  [table setDataSource:source];
  [table setDelegate:source];
  NSScrollView* frame = [[[NSScrollView alloc] initWithFrame:NSMakeRect(0, 0, 100, 100)] autorelease];
  [frame setBorderType:NSLineBorder];
  [frame setHasVerticalScroller:YES];
  [frame setAutohidesScrollers:YES];
  [frame setDocumentView:table];
  return frame;
}

NSTableView* tableIn(NSScrollView* frame) {
  return [frame documentView];
}

void showColumns(NSTableView* table, Texts* texts, const char* const* samples) {
  NSArray* columns = [table tableColumns];
  for (NSUInteger i = 0; i < [columns count]; ++i) {
    NSTableColumn* column = [columns objectAtIndex:i];
    [[column headerCell] setStringValue:[texts textOf:[[column identifier] integerValue]]];
    NSDictionary* font = [NSDictionary dictionaryWithObject:[[column dataCell] font] forKey:NSFontAttributeName];
    const CGFloat sample = [[NSString stringWithUTF8String:samples[i]] sizeWithAttributes:font].width;
    const CGFloat width = std::ceil(std::max([[column headerCell] cellSize].width, sample) + 2 * kGap);
    [column setMinWidth:width];
    if (i + 1 < [columns count]) {
      [column setWidth:width];
    }
  }
  [table sizeLastColumnToFit];
  [[table headerView] setNeedsDisplay:YES];
}

CGFloat tableWidth(NSTableView* table) {
  CGFloat width = [NSScroller scrollerWidth] + 2;
  NSEnumerator* columns = [[table tableColumns] objectEnumerator];
  for (NSTableColumn* column; (column = [columns nextObject]) != nil;) {
    width += [column minWidth] + [table intercellSpacing].width;
  }
  return std::ceil(width);
}

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
