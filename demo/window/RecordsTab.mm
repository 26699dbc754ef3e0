#import "RecordsTab.h"

#include <algorithm>
#include <cmath>

#import "Look.h"
#import "Texts.h"
#include "mif/MifRecord.h"

namespace {

constexpr int kColumns[] = {kOffsetColumn, kOidColumn, kLengthColumn, kFieldColumn, kValueColumn};
constexpr const char* kSamples[] = {"00000", "65535", "00000", "Nazwa profilu, Nazwa",
                                    "00.11.22.33.44.55.66.77.88.99.AA.BB.CC.DD.EE.FF"};
constexpr NSUInteger kBytesInLine = 16;
constexpr NSUInteger kHexColumn = 6;                                   // behind "0000  "
constexpr NSUInteger kTextColumn = kHexColumn + 3 * kBytesInLine + 1;  // behind the bytes
constexpr NSUInteger kLineLength = kTextColumn + kBytesInLine + 1;     // with the newline
constexpr CGFloat kTableHeight = 222;                                  // the header and ten rows
constexpr NSUInteger kHexLines = 8;

NSString* number(uint64_t value) {
  return [NSString stringWithFormat:@"%llu", static_cast<unsigned long long>(value)];
}

// Lines of equal length, so that a byte's place follows from its offset.
NSString* hexText(Bytes bytes) {
  NSMutableString* text = [NSMutableString string];
  for (size_t line = 0; line < bytes.size(); line += kBytesInLine) {
    [text appendFormat:@"%04lX  ", static_cast<unsigned long>(line)];
    for (size_t i = line; i < line + kBytesInLine; ++i) {
      [text appendString:i < bytes.size() ? [NSString stringWithFormat:@"%02X ", bytes[i]] : @"   "];
    }
    [text appendString:@" "];
    for (size_t i = line; i < line + kBytesInLine; ++i) {
      const unsigned char byte = i < bytes.size() ? bytes[i] : ' ';
      [text appendFormat:@"%c", byte >= 0x20 && byte < 0x7F ? byte : '.'];
    }
    [text appendString:@"\n"];
  }
  return text;
}

}  // namespace

@implementation RecordsTab

- (id)initWithProfile:(Profile*)shown {
  self = [super init];
  if (self != nil) {
    profile = [shown retain];
    [page addSubview:makeText(kMessage)];
    table = [[[TextTable alloc] initWithColumns:kColumns samples:kSamples
                                          count:std::size(kColumns)] autorelease];
    [table setTarget:self selected:@selector(showHex)];
    [page addSubview:table];
    [page addSubview:makeText(kBytes)];
    hexFrame = makeHexFrame();
    hex = [hexFrame documentView];
    [page addSubview:hexFrame];
  }
  return self;
}

- (void)dealloc {
  [table setTarget:nil selected:nullptr];
  [message release];
  [profile release];
  [super dealloc];
}

- (NSInteger)element {
  return kRecordsTab;
}

- (NSTextView*)hexView {
  return hex;
}

- (TextTable*)table {
  return table;
}

// A field's name is its label, without the colon that stands before the field.
- (NSString*)nameOf:(unsigned short)oid {
  NSString* label = [shownTexts textOf:oid == kOidRequest ? static_cast<int>(kRequest) : oid];
  return [label stringByTrimmingCharactersInSet:[NSCharacterSet characterSetWithCharactersInString:@": "]];
}

- (void)showRecords {
  NSMutableArray* rows = [NSMutableArray array];
  const MifRecords records(static_cast<const unsigned char*>([message bytes]), [message length]);
  auto record = records.begin();
  for (; record != records.end(); ++record) {
    NSString* value = record->oid == kOidRequest ? number(mifLoad<uint32_t>(record->value))
                                                 : readableField(message, record->oid);
    [rows addObject:[NSArray arrayWithObjects:number(record->offset), number(record->oid),
                                              number(record->length), [self nameOf:record->oid], value, nil]];
  }
  [rows addObject:[NSArray arrayWithObjects:number(record.offset()), number(kMifEndMarker), @"",
                                            [shownTexts textOf:kEndMarker], @"", nil]];
  [table setRows:rows];
}

// Of the record in a row of the table, its header included.
- (NSRange)bytesOfRow:(NSInteger)row {
  NSArray* rows = [table rows];
  if (row < 0 || row >= static_cast<NSInteger>([rows count])) {
    return NSMakeRange(0, 0);
  }
  const auto start = [](NSArray* texts) {
    return static_cast<NSUInteger>([[texts objectAtIndex:0] integerValue]);
  };
  const auto index = static_cast<NSUInteger>(row);
  const NSUInteger from = start([rows objectAtIndex:index]);
  const NSUInteger to = index + 1 < [rows count] ? start([rows objectAtIndex:index + 1]) : [message length];
  return NSMakeRange(from, to - from);
}

- (void)showHex {
  const Bytes bytes(static_cast<const unsigned char*>([message bytes]), [message length]);
  NSDictionary* plain = [NSDictionary dictionaryWithObjectsAndKeys:[NSFont userFixedPitchFontOfSize:kHexSize],
                                                                   NSFontAttributeName, [NSColor textColor],
                                                                   NSForegroundColorAttributeName, nil];
  NSMutableAttributedString* text = [[[NSMutableAttributedString alloc] initWithString:hexText(bytes)
                                                                            attributes:plain] autorelease];
  const NSRange range = [self bytesOfRow:[table selectedRow]];
  for (NSUInteger i = range.location; i < NSMaxRange(range);) {
    // The part of the record that stands in one line.
    const NSUInteger column = i % kBytesInLine, line = i / kBytesInLine * kLineLength;
    const NSUInteger count = std::min(NSMaxRange(range) - i, kBytesInLine - column);
    [text addAttribute:NSBackgroundColorAttributeName
                 value:markColor()
                 range:NSMakeRange(line + kHexColumn + 3 * column, 3 * count - 1)];
    [text addAttribute:NSBackgroundColorAttributeName
                 value:markColor()
                 range:NSMakeRange(line + kTextColumn + column, count)];
    i += count;
  }
  [[hex textStorage] setAttributedString:text];
}

- (void)refresh {
  NSData* now = [profile messageFor:kRequestApply];
  if (![now isEqualToData:message]) {
    [message release];
    message = [now retain];
    [self showRecords];
    if ([table selectedRow] < 0) {
      [table selectRow:1];
    }
    [self showHex];
  }
}

- (void)showTexts:(Texts*)texts {
  [super showTexts:texts];
  [table showTexts:texts];
  [self showRecords];
}

- (NSSize)smallestSize {
  CGFloat width = [table smallestWidth];
  width = std::max({width, hexWidth(kLineLength), sizeOf([page viewWithTag:kMessage]).width,
                    sizeOf([page viewWithTag:kBytes]).width});
  const CGFloat labels =
      sizeOf([page viewWithTag:kMessage]).height + sizeOf([page viewWithTag:kBytes]).height;
  return NSMakeSize(width + 2 * kMargin,
                    2 * kMargin + labels + kTableHeight + 3 * kGap + hexHeight(kHexLines));
}

- (void)layOut:(NSSize)size {
  const CGFloat width = size.width - 2 * kMargin;
  CGFloat y = place([page viewWithTag:kMessage], kMargin, kMargin) + kGap;
  const CGFloat label = sizeOf([page viewWithTag:kBytes]).height;
  const CGFloat height = size.height - y - 2 * kGap - label - hexHeight(kHexLines) - kMargin;
  [table setFrame:NSMakeRect(kMargin, y, width, height)];
  y = place([page viewWithTag:kBytes], kMargin, y + height + kGap) + kGap;
  [hexFrame setFrame:NSMakeRect(kMargin, y, width, hexHeight(kHexLines))];
}

@end
