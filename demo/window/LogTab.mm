#import "LogTab.h"

#include <algorithm>
#include <fstream>
#include <vector>

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
constexpr size_t kMostLines = 1000;
constexpr std::streamoff kMostBytes = 1 << 18;  // of one program at a time
constexpr size_t kStampLength = 21;
constexpr CGFloat kTableHeight = 200;
constexpr NSUInteger kPrograms = 2;

}  // namespace

struct LogLine {
  std::string stamp;  // when it was written; also of the dump lines that follow
  NSString* program;
  std::string text;
};

// One program's lines, from where they were read last.
struct LogFile {
  NSString* program;
  std::string path;
  std::streamoff at = 0;
  std::string rest = {};   // of a line that is not whole yet
  std::string stamp = {};  // of the last line

  void readTo(std::vector<LogLine>* lines) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const std::streamoff size = file ? static_cast<std::streamoff>(file.tellg()) : at;
    if (size < at) {
      at = 0;  // the program was started anew
      rest.clear();
    }
    at = std::max(at, size - kMostBytes);
    std::string fresh(static_cast<size_t>(size - at), '\0');
    file.seekg(at);
    file.read(fresh.data(), size - at);
    at += file.gcount();
    rest.append(fresh, 0, static_cast<size_t>(file.gcount()));
    for (size_t end; (end = rest.find('\n')) != std::string::npos; rest.erase(0, end + 1)) {
      if (end > kStampLength && rest.compare(kStampLength, 3, " - ") == 0) {
        stamp = rest.substr(0, kStampLength);
      }
      lines->push_back({stamp, program, rest.substr(0, end)});
    }
  }
};

@implementation LogTab

- (id)initWithLog:(SharedLog*)shared directory:(const std::string&)directory {
  self = [super init];
  if (self != nil) {
    sharedLog = shared;
    files = new LogFile[kPrograms]{{@"window", directory + "/window.log"},
                                   {@"service", directory + "/service.log"}};
    lines = new std::vector<LogLine>;
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
  delete[] files;
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

- (BOOL)hasLine:(const char*)text of:(NSString*)program {
  return std::any_of(lines->begin(), lines->end(), [&](const LogLine& line) {
    return [line.program isEqual:program] && line.text.find(text) != std::string::npos;
  });
}

- (void)showLines {
  NSMutableArray* rows = [NSMutableArray array];
  for (const LogLine& line : *lines) {
    NSString* text = [NSString stringWithCString:line.text.c_str() encoding:NSISOLatin1StringEncoding];
    [rows addObject:[NSArray arrayWithObjects:line.program, text, nil]];
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
  std::vector<LogLine> fresh;
  for (NSUInteger i = 0; i < kPrograms; ++i) {
    files[i].readTo(&fresh);
  }
  if (!fresh.empty()) {
    // Of both programs, in the order in which they were written.
    std::stable_sort(fresh.begin(), fresh.end(),
                     [](const LogLine& one, const LogLine& other) { return one.stamp < other.stamp; });
    lines->insert(lines->end(), fresh.begin(), fresh.end());
    if (lines->size() > kMostLines) {
      lines->erase(lines->begin(), lines->end() - kMostLines);
    }
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
