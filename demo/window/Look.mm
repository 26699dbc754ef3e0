#import "Look.h"

#import <GNUstepGUI/GSTheme.h>

namespace {

constexpr CGFloat kRadius = 4;
constexpr CGFloat kTabHeight = 30;
constexpr CGFloat kTabPadding = 14;

NSColor* grey(CGFloat white) {
  return [NSColor colorWithCalibratedWhite:white alpha:1];
}

NSColor* accent() {
  return [NSColor colorWithCalibratedRed:0.16 green:0.42 blue:0.78 alpha:1];
}

NSColor* lineColor() {
  return grey(0.72);
}

// A frame's line runs through the middle of its pixels.
NSBezierPath* frameIn(NSRect rect, CGFloat radius) {
  return [NSBezierPath bezierPathWithRoundedRect:NSInsetRect(rect, 0.5, 0.5) xRadius:radius yRadius:radius];
}

void drawFrame(NSRect rect, CGFloat radius, NSColor* fill, NSColor* line) {
  NSBezierPath* path = frameIn(rect, radius);
  [fill set];
  [path fill];
  [line set];
  [path setLineWidth:1];
  [path stroke];
}

NSImage* drawnImage(NSSize size, void (*draw)(NSRect)) {
  NSImage* image = [[[NSImage alloc] initWithSize:size] autorelease];
  [image lockFocus];
  draw(NSMakeRect(0, 0, size.width, size.height));
  [image unlockFocus];
  return image;
}

// Room to the right keeps the box and its title apart.
constexpr NSSize kCheckBox = {22, 16};

NSRect boxIn(NSRect rect) {
  return NSMakeRect(1, 1, NSHeight(rect) - 2, NSHeight(rect) - 2);
}

void drawUncheckedBox(NSRect rect) {
  drawFrame(boxIn(rect), 3, [NSColor whiteColor], grey(0.6));
}

void drawCheckedBox(NSRect rect) {
  drawFrame(boxIn(rect), 3, accent(), accent());
  NSBezierPath* tick = [NSBezierPath bezierPath];
  [tick moveToPoint:NSMakePoint(4.5, 8)];
  [tick lineToPoint:NSMakePoint(7, 5.3)];
  [tick lineToPoint:NSMakePoint(11.8, 11)];
  [tick setLineWidth:1.8];
  [[NSColor whiteColor] set];
  [tick stroke];
}

void drawChevron(NSRect rect) {
  NSBezierPath* chevron = [NSBezierPath bezierPath];
  [chevron moveToPoint:NSMakePoint(2, 7)];
  [chevron lineToPoint:NSMakePoint(NSMidX(rect), 3.5)];
  [chevron lineToPoint:NSMakePoint(NSMaxX(rect) - 2, 7)];
  [chevron setLineWidth:1.5];
  [grey(0.35) set];
  [chevron stroke];
}

void drawCross(NSRect rect) {
  const NSRect inner = NSInsetRect(rect, 3, 3);
  NSBezierPath* cross = [NSBezierPath bezierPath];
  [cross moveToPoint:NSMakePoint(NSMinX(inner), NSMinY(inner))];
  [cross lineToPoint:NSMakePoint(NSMaxX(inner), NSMaxY(inner))];
  [cross moveToPoint:NSMakePoint(NSMinX(inner), NSMaxY(inner))];
  [cross lineToPoint:NSMakePoint(NSMaxX(inner), NSMinY(inner))];
  [cross setLineWidth:1.3];
  [grey(0.3) set];
  [cross stroke];
}

// AppKit finds images by their names, and a name keeps none: these stay for good.
void replaceImage(NSString* name, NSSize size, void (*draw)(NSRect)) {
  static NSMutableArray* kept = [[NSMutableArray alloc] init];
  NSImage* before = [NSImage imageNamed:name];
  [before setName:nil];
  NSImage* image = drawnImage(size, draw);
  [kept addObject:image];
  [image setName:name];
}

}  // namespace

@implementation RoomyTabItem
- (void)drawLabel:(BOOL)truncated inRect:(NSRect)tab {
  [super drawLabel:truncated inRect:NSInsetRect(tab, kTabPadding, 7)];
  _rect = tab;  // where a click selects the tab
}
@end

// Flat controls in light grey with thin lines.
@interface FlatTheme : GSTheme
@end

@implementation FlatTheme

- (void)drawButton:(NSRect)frame
                in:(NSCell*)cell
              view:(NSView*)view
             style:(int)style
             state:(GSThemeControlState)state {
  const BOOL pressed = state == GSThemeHighlightedState || state == GSThemeHighlightedFirstResponderState;
  if ([cell isKindOfClass:[NSButtonCell class]] && [[(NSButtonCell*)cell keyEquivalent] isEqual:@"\r"]) {
    const CGFloat shade = pressed ? 0.9 : 1;
    NSColor* fill = [NSColor colorWithCalibratedRed:0.84 * shade green:0.91 * shade blue:shade alpha:1];
    drawFrame(frame, kRadius, fill, accent());
  } else {
    drawFrame(frame, kRadius, grey(pressed ? 0.85 : 0.99), lineColor());
  }
}

- (GSThemeMargins)buttonMarginsForCell:(NSCell*)cell style:(int)style state:(GSThemeControlState)state {
  return GSThemeMargins{12, 12, 5, 5};
}

- (void)setKeyEquivalent:(NSString*)key forButtonCell:(NSButtonCell*)cell {
  // The default button shows by its colour and needs no image of a key.
}

- (void)drawBorderType:(NSBorderType)type frame:(NSRect)frame view:(NSView*)view {
  if (type == NSBezelBorder) {
    NSResponder* focused = [[view window] firstResponder];
    const BOOL editing = [focused isKindOfClass:[NSText class]] && [(NSText*)focused delegate] == (id)view;
    drawFrame(frame, kRadius, [view isKindOfClass:[NSTextField class]] ? [NSColor whiteColor] : grey(0.99),
              editing ? accent() : lineColor());
  } else {
    [super drawBorderType:type frame:frame view:view];
  }
}

- (void)drawFocusFrame:(NSRect)frame view:(NSView*)view {
  NSBezierPath* path = frameIn(NSInsetRect(frame, -1, -1), kRadius);
  [[accent() colorWithAlphaComponent:0.6] set];
  [path setLineWidth:1];
  [path stroke];
}

- (NSRect)tabViewContentRectForBounds:(NSRect)bounds
                          tabViewType:(NSTabViewType)type
                              tabView:(NSTabView*)view {
  bounds.origin.y += kTabHeight;
  bounds.size.height -= kTabHeight;
  return NSInsetRect(bounds, 1, 1);
}

- (void)drawTabViewRect:(NSRect)rect
                 inView:(NSView*)view
              withItems:(NSArray*)items
           selectedItem:(NSTabViewItem*)selected {
  const NSRect bounds = [view bounds];
  const NSRect page = NSMakeRect(0, kTabHeight - 1, NSWidth(bounds), NSHeight(bounds) - kTabHeight + 1);
  drawFrame(page, kRadius, grey(0.98), lineColor());
  CGFloat x = kRadius;
  NSEnumerator* all = [items objectEnumerator];
  for (NSTabViewItem* item; (item = [all nextObject]) != nil;) {
    NSRect tab = NSMakeRect(x, 0, [item sizeOfLabel:NO].width + 2 * kTabPadding, kTabHeight);
    if (item == selected) {
      // Open towards the page: the page's own colour covers the line between.
      [NSGraphicsContext saveGraphicsState];
      NSRectClip(tab);
      NSRect shape = tab;
      shape.size.height += 2 * kRadius;
      drawFrame(shape, kRadius, grey(0.98), lineColor());
      [accent() set];
      NSRectFill(NSMakeRect(x + kRadius, 0, NSWidth(tab) - 2 * kRadius, 2));
      [NSGraphicsContext restoreGraphicsState];
    }
    [item drawLabel:NO inRect:tab];
    x = NSMaxX(tab);
  }
}

- (void)drawBorderAndBackgroundForMenuItemCell:(NSMenuItemCell*)cell
                                     withFrame:(NSRect)frame
                                        inView:(NSView*)view
                                         state:(GSThemeControlState)state
                                  isHorizontal:(BOOL)horizontal {
  [(state == GSThemeSelectedState || state == GSThemeHighlightedState ? markColor() : grey(0.99)) set];
  NSRectFill(frame);
}

- (float)resizebarHeight {
  return 0;
}

- (NSColor*)colorNamed:(NSString*)name state:(GSThemeControlState)state {
  return [name isEqual:@"highlightedTableRowBackgroundColor"] ? markColor()
                                                              : [super colorNamed:name state:state];
}

- (void)drawTableHeaderCell:(NSTableHeaderCell*)cell
                  withFrame:(NSRect)frame
                     inView:(NSView*)view
                      state:(GSThemeControlState)state {
  [grey(0.93) set];
  NSRectFill(frame);
  [lineColor() set];
  NSRectFill(NSMakeRect(NSMinX(frame), NSMaxY(frame) - 1, NSWidth(frame), 1));
  NSRectFill(NSMakeRect(NSMaxX(frame) - 1, NSMinY(frame) + 4, 1, NSHeight(frame) - 9));
}

- (void)drawTableCornerView:(NSView*)corner withClip:(NSRect)rect {
  [grey(0.93) set];
  NSRectFill([corner bounds]);
}

- (void)drawScrollerRect:(NSRect)rect
                  inView:(NSView*)view
                 hitPart:(NSScrollerPart)part
            isHorizontal:(BOOL)horizontal {
  NSScroller* scroller = (NSScroller*)view;
  [grey(0.95) set];
  NSRectFill([scroller bounds]);
  const NSRect knob = [scroller rectForPart:NSScrollerKnob];
  if (!NSIsEmptyRect(knob)) {
    drawFrame(NSInsetRect(knob, 2, 2), kRadius, grey(0.75), grey(0.75));
  }
}

@end

void registerLook(bool ownTitleBar) {
  // The registration domain is the weakest one: what the user has set is kept.
  [[NSUserDefaults standardUserDefaults]
      registerDefaults:[NSDictionary
                           dictionaryWithObjectsAndKeys:@"DejaVuSans", @"NSFont", @"DejaVuSans-Bold",
                                                        @"NSBoldFont", @"DejaVuSansMono",
                                                        @"NSUserFixedPitchFont", @"12", @"NSFontSize", @"YES",
                                                        @"GSSuppressAppIcon", @"NO", @"GSAppOwnsMiniwindow",
                                                        @"NSMacintoshInterfaceStyle",
                                                        @"NSScrollViewInterfaceStyle", @"12",
                                                        @"GSScrollerDefaultWidth",
                                                        ownTitleBar ? @"NO" : @"YES",
                                                        @"GSX11HandlesWindowDecorations", nil]];
}

void installLook() {
  struct {
    NSString* name;
    NSColor* color;
  } const colors[] = {
      {@"windowBackgroundColor", grey(0.93)},
      {@"controlBackgroundColor", grey(0.98)},
      {@"controlColor", grey(0.98)},
      {@"controlTextColor", grey(0.13)},
      {@"textColor", grey(0.13)},
      {@"gridColor", grey(0.9)},
      {@"scrollBarColor", grey(0.95)},
      {@"controlDarkShadowColor", lineColor()},
      {@"selectedControlColor", accent()},
      {@"selectedControlTextColor", grey(0.13)},
      {@"alternateSelectedControlColor", accent()},
      {@"secondarySelectedControlColor", accent()},
      {@"selectedTextBackgroundColor", markColor()},
      {@"selectedMenuItemColor", accent()},
      {@"selectedMenuItemTextColor", grey(0.13)},
      {@"windowFrameColor", grey(0.85)},
      {@"windowFrameTextColor", grey(0.13)},
  };
  NSColorList* system = [NSColorList colorListNamed:@"System"];
  for (const auto& entry : colors) {
    [system setColor:entry.color forKey:entry.name];
  }
  [GSTheme setTheme:[[[FlatTheme alloc] initWithBundle:nil] autorelease]];
  // The theme has just given these names to images of its own.
  replaceImage(@"GSSwitch", kCheckBox, drawUncheckedBox);
  replaceImage(@"GSSwitchSelected", kCheckBox, drawCheckedBox);
  replaceImage(@"common_Nibble", NSMakeSize(12, 10), drawChevron);
  replaceImage(@"common_Close", NSMakeSize(14, 14), drawCross);
}

NSColor* faultColor() {
  return [NSColor colorWithCalibratedRed:0.75 green:0.1 blue:0.1 alpha:1];
}

NSColor* hintColor() {
  return grey(0.42);
}

NSColor* markColor() {
  return [NSColor colorWithCalibratedRed:0.72 green:0.83 blue:0.97 alpha:1];
}

CGFloat widthOfTabs(NSTabView* view) {
  CGFloat width = 2 * kRadius;
  NSEnumerator* all = [[view tabViewItems] objectEnumerator];
  for (NSTabViewItem* item; (item = [all nextObject]) != nil;) {
    width += [item sizeOfLabel:NO].width + 2 * kTabPadding;
  }
  return width;
}
