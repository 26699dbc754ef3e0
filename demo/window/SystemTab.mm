#import "SystemTab.h"

#include <sys/sem.h>

#include <algorithm>
#include <cstring>

#import "Texts.h"
#include "os/ZotOsSync.h"

namespace {

// The block as programs may rely on it; its offsets never change.
struct SharedBlock {
  uint32_t words[5];
  struct {
    int32_t semId;  // -1: free
    uint32_t count;
  } slots[60];
};
static_assert(sizeof(SharedBlock) == 500);

constexpr int kWordColumns[] = {kWordColumn, kValueColumn, kMeaningColumn};
constexpr int kSlotColumns[] = {kSlotColumn, kIdentifierColumn, kReferencesColumn, kValueColumn,
                                kObjectColumn};
constexpr const char* kWordSamples[] = {"000", "0x00000000", "References to named semaphores, and more"};
constexpr const char* kSlotSamples[] = {"00", "0000000000", "00", "00",
                                        "Event: a profile was applied, and more"};
constexpr CGFloat kWordsHeight = 120;  // the header and five rows
constexpr CGFloat kSlotsHeight = 130;

int objectOf(int32_t semId) {
  if (semId == semget(static_cast<key_t>(kWindowMutexKey), 0, 0)) {
    return kWindowMutex;
  }
  return semId == semget(static_cast<key_t>(kAppliedEventKey), 0, 0) ? kAppliedEvent : kForeignObject;
}

NSString* number(long long value) {
  return [NSString stringWithFormat:@"%lld", value];
}

}  // namespace

@implementation SystemTab

- (id)initWithLog:(SharedLog*)shared {
  self = [super init];
  if (self != nil) {
    sharedLog = shared;
    words = [[[TextTable alloc] initWithColumns:kWordColumns
                                        samples:kWordSamples
                                          count:std::size(kWordColumns)] autorelease];
    slots = [[[TextTable alloc] initWithColumns:kSlotColumns
                                        samples:kSlotSamples
                                          count:std::size(kSlotColumns)] autorelease];
    [page addSubview:makeText(kWords)];
    [page addSubview:words];
    [page addSubview:makeText(kSlots)];
    [page addSubview:slots];
  }
  return self;
}

- (NSInteger)element {
  return kSystemTab;
}

- (TextTable*)words {
  return words;
}

- (TextTable*)slots {
  return slots;
}

- (void)refresh {
  if (sharedLog->block() == nullptr) {
    return;
  }
  SharedBlock block;
  std::memcpy(&block, sharedLog->block(), sizeof block);
  NSMutableArray* freshWords = [NSMutableArray array];
  for (int i = 0; i < 5; ++i) {
    NSString* value = i == 0 ? [NSString stringWithFormat:@"0x%08X", block.words[i]] : number(block.words[i]);
    [freshWords
        addObject:[NSArray arrayWithObjects:number(i), value, [shownTexts textOf:kFirstWord + i], nil]];
  }
  NSMutableArray* freshSlots = [NSMutableArray array];
  for (uint32_t i = 0; i < std::min<uint32_t>(block.words[4], std::size(block.slots)); ++i) {
    const auto& slot = block.slots[i];
    if (slot.semId != -1) {
      [freshSlots addObject:[NSArray arrayWithObjects:number(i), number(slot.semId), number(slot.count),
                                                      number(ZotOsSemaphoreVal(slot.semId)),
                                                      [shownTexts textOf:objectOf(slot.semId)], nil]];
    }
  }
  if (![freshWords isEqual:[words rows]]) {
    [words setRows:freshWords];
  }
  if (![freshSlots isEqual:[slots rows]]) {
    [slots setRows:freshSlots];
  }
}

- (void)showTexts:(Texts*)texts {
  [super showTexts:texts];
  [words showTexts:texts];
  [slots showTexts:texts];
  [self refresh];
}

- (NSSize)smallestSize {
  const NSSize above = sizeOf([page viewWithTag:kWords]), between = sizeOf([page viewWithTag:kSlots]);
  const CGFloat width = std::max({[words smallestWidth], [slots smallestWidth], above.width, between.width});
  return NSMakeSize(width + 2 * kMargin,
                    2 * kMargin + above.height + between.height + kWordsHeight + kSlotsHeight + 3 * kGap);
}

- (void)layOut:(NSSize)size {
  const CGFloat width = size.width - 2 * kMargin;
  CGFloat y = place([page viewWithTag:kWords], kMargin, kMargin) + kGap;
  [words setFrame:NSMakeRect(kMargin, y, width, kWordsHeight)];
  y = place([page viewWithTag:kSlots], kMargin, y + kWordsHeight + kGap) + kGap;
  [slots setFrame:NSMakeRect(kMargin, y, width, size.height - y - kMargin)];
}

@end
