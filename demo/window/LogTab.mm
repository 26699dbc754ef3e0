#import "LogTab.h"

#include <algorithm>

#include "LogLines.h"
#import "Texts.h"

namespace {

struct Level {
  uint32_t mask;
  int element;
};
constexpr Level kLevelBoxes[] = {{ZOT_LOG_ERROR, kErrors},
                                 {ZOT_LOG_FATAL, kFatal},
                                 {ZOT_LOG_TRACE, kTrace},
                                 {ZOT_LOG_DEBUG, kDebug},
                                 {ZOT_LOG_STDOUT, kStandardOutput}};

constexpr int kColumns[] = {kProgramColumn, kLineColumn};
constexpr const char* kSamples[] = {
    "service",
    "26-10-23 12:34:56,789 - TRACE service: 123 bytes received, outcome 1, 123 bytes answered (pid=123456)"};
constexpr CGFloat kTableHeight = 200;

}  // namespace

@implementation LogTab

- (id)initWithLog:(SharedLog*)shared directory:(const std::string&)directory {
  self = [super init];
  if (self != nil) {
    sharedLog = shared;
    lines = new LogLines(directory);
    [page addSubview:makeText(kLevels)];
    for (size_t i = 0; i < std::size(kLevelBoxes); ++i) {
      boxes[i] = makeCheckBox(kLevelBoxes[i].element, self, @selector(levelChosen:));
      [page addSubview:boxes[i]];
    }
    table = [[[TextTable alloc] initWithColumns:kColumns samples:kSamples
                                          count:std::size(kColumns)] autorelease];
    [page addSubview:table];
  }
  return self;
}

- (void)dealloc {
  delete lines;
  [super dealloc];
}

- (NSInteger)element {
  return kLogTab;
}

- (NSButton*)boxFor:(uint32_t)mask {
  size_t i = 0;
  while (kLevelBoxes[i].mask != mask) {
    ++i;
  }
  return boxes[i];
}

- (BOOL)hasLine:(const char*)text of:(const char*)program {
  return lines->has(text, program);
}

- (void)showLines {
  NSMutableArray* rows = [NSMutableArray array];
  for (const LogLine& line : lines->all()) {
    NSString* program = [NSString stringWithUTF8String:line.program];
    NSString* text = [NSString stringWithCString:line.text.c_str() encoding:NSISOLatin1StringEncoding];
    [rows addObject:[NSArray arrayWithObjects:program, text, nil]];
  }
  [table setRows:rows];
  [table showLastRow];
}

// The word belongs to every process: what any of them sets shows here.
- (void)refresh {
  const uint32_t level = ZotOsdGetLogLevel(*sharedLog);
  for (size_t i = 0; i < std::size(kLevelBoxes); ++i) {
    const NSInteger state = (level & kLevelBoxes[i].mask) != 0 ? NSOnState : NSOffState;
    if ([boxes[i] state] != state) {
      [boxes[i] setState:state];
    }
  }
  if (lines->update()) {
    [self showLines];
  }
}

- (void)levelChosen:(id)sender {
  for (size_t i = 0; i < std::size(kLevelBoxes); ++i) {
    if (boxes[i] == sender) {
      const auto change = [sender state] == NSOnState ? ZotOsvSetLogLevel : ZotOsvResLogLevel;
      change(*sharedLog, kLevelBoxes[i].mask);
    }
  }
}

- (void)showTexts:(Texts*)texts {
  [super showTexts:texts];
  [table showTexts:texts];
}

- (NSSize)smallestSize {
  CGFloat row = -2 * kGap;
  for (size_t i = 0; i + 1 < std::size(kLevelBoxes); ++i) {
    row += sizeOf(boxes[i]).width + 2 * kGap;
  }
  const CGFloat width = std::max(
      {row, sizeOf(boxes[4]).width, sizeOf([page viewWithTag:kLevels]).width, [table smallestWidth]});
  const CGFloat above = sizeOf([page viewWithTag:kLevels]).height + 2 * sizeOf(boxes[0]).height;
  return NSMakeSize(width + 2 * kMargin, 2 * kMargin + above + 3 * kGap + kTableHeight);
}

- (void)layOut:(NSSize)size {
  CGFloat y = place([page viewWithTag:kLevels], kMargin, kMargin) + kGap;
  CGFloat x = kMargin, below = y;
  for (size_t i = 0; i + 1 < std::size(kLevelBoxes); ++i) {
    below = place(boxes[i], x, y);
    x = NSMaxX([boxes[i] frame]) + 2 * kGap;
  }
  y = place(boxes[4], kMargin, below + kGap / 2) + kGap;
  [table setFrame:NSMakeRect(kMargin, y, size.width - 2 * kMargin, size.height - y - kMargin)];
}

@end
