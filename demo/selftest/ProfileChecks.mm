#include <unistd.h>

#include <fstream>
#include <iterator>

#import "Checks.h"
#import "LogTab.h"
#import "Look.h"
#import "ProfileTab.h"
#import "RecordsTab.h"
#import "Texts.h"
#import "User.h"
#include "mif/MifRecord.h"

@interface PressProbe : NSObject {
 @public
  int presses;
}
- (void)pressed:(id)sender;
@end

@implementation PressProbe
- (void)pressed:(id)sender {
  ++presses;
}
@end

namespace {

// What is shown of the profile that is typed.
constexpr const char* kShown[] = {"B\u00FCro S\u00FCd",
                                  "192.0.2.1",
                                  "10.8.0.10 - 10.8.0.200",
                                  "00.1A.2B.3C.4D.5E",
                                  "40000 - 40999",
                                  "*****************",
                                  "0F.1E.2D.3C.4B.5A.69.78.87.96.A5.B4.C3.D2.E1.F0",
                                  "0x5"};

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The fields of a message, without its first record.
std::string fieldsOf(const void* bytes, size_t size) {
  const MifRecords records(static_cast<const unsigned char*>(bytes), size);
  const auto first = records.begin();
  const auto skipped =
      first == records.end() ? size : static_cast<size_t>(first->valueOffset() + first->length);
  return {static_cast<const char*>(bytes) + skipped, size - skipped};
}

}  // namespace

void checkTyping(Report& report, SettingsWindow* settings) {
  ProfileTab* tab = [settings profileTab];
  for (int entry = 0; entry < kEntryCount; ++entry) {
    type(settings, static_cast<Entry>(entry), text(kTyped[entry]));
  }
  for (NSUInteger i = 0; i < kOptionCount; ++i) {
    NSButton* option = [[tab view] viewWithTag:kFirstOption + static_cast<NSInteger>(i)];
    if ([option state] != ((5u >> i & 1) != 0 ? NSOnState : NSOffState)) {
      click(option);
    }
  }
  // Tab goes from field to field.
  [[settings window] makeFirstResponder:[tab fieldOf:kName]];
  for (int entry = kGateway; entry < kEntryCount; ++entry) {
    press([settings window], @"\t");
    NSTextField* field = [tab fieldOf:static_cast<Entry>(entry)];
    report.check([field currentEditor] != nil, "Tab does not reach field %d", entry);
  }
  NSArray* records = [[[settings recordsTab] table] rows];
  if (!report.check([records count] == std::size(kShown) + 2, "%lu records show",
                    static_cast<unsigned long>([records count]))) {
    return;
  }
  for (NSUInteger i = 0; i < std::size(kShown); ++i) {
    NSString* value = [[records objectAtIndex:i + 1] lastObject];
    report.check([value isEqual:text(kShown[i])], "record %lu shows \"%s\"", static_cast<unsigned long>(i),
                 [value UTF8String]);
  }
  NSString* hex = [[[settings recordsTab] hexView] string];
  report.check([hex hasPrefix:@"0000  01 00 04 00 02 00 00 00 14 00 08 00 42 FC 72 6F"],
               "the hex view starts \"%s\"", [[hex substringToIndex:60] UTF8String]);
}

void checkApply(Report& report, SettingsWindow* settings, const std::string& directory) {
  [button(settings, kApply) performClick:nil];
  report.check(![button(settings, kApply) isEnabled], "Apply can be pressed twice");
  report.check(comesTo(settings, kApplied), "Apply: \"%s\"", [[[settings status] stringValue] UTF8String]);
  [[settings window] makeFirstResponder:[[settings profileTab] fieldOf:kGateway]];
  press([settings window], @"\r");
  report.check(comesTo(settings, kConnected), "Return: \"%s\"", [[[settings status] stringValue] UTF8String]);

  NSData* message = [[settings profile] messageFor:kRequestConnect];
  const std::string stored = readFile(directory + "/profile.mif");
  report.check(fieldsOf(stored.data(), stored.size()) == fieldsOf([message bytes], [message length]),
               "the stored file has other fields than the message");
  char line[80];
  std::snprintf(line, sizeof line, "TRACE service: %lu bytes received, outcome %d",
                static_cast<unsigned long>([message length]), kConnected);
  LogTab* log = [settings logTab];
  report.check(waitUntil([&] { return [log hasLine:line of:"service"]; }), "the log lacks \"%s\"", line);
  std::snprintf(line, sizeof line, "outcome %d (pid=%d)", kConnected, getpid());
  report.check(waitUntil([&] { return [log hasLine:line of:"window"]; }), "the log lacks \"%s\"", line);

  PressProbe* probe = [[[PressProbe alloc] init] autorelease];
  NSButton* cancel = button(settings, kCancel);
  const id target = [cancel target];
  const SEL action = [cancel action];
  [cancel setTarget:probe];
  [cancel setAction:@selector(pressed:)];
  [[settings window] makeFirstResponder:[[settings profileTab] fieldOf:kName]];
  press([settings window], @"\033");
  [cancel setTarget:target];
  [cancel setAction:action];
  report.check(probe->presses == 1, "Escape cancels %d times", probe->presses);
}

void checkFaults(Report& report, SettingsWindow* settings) {
  constexpr struct {
    Entry entry;
    unsigned short oid;
    const char* wrong;
    int element, subElement;
  } kWrong[] = {
      {kName, kOidName, "", kFaults, kFaultMissing},
      {kName, kOidName, "\u20AC", kFaults, kFaultCharacters},
      {kGateway, kOidGateway, "192.0.2.256", kOidGateway, kWrongForm},
      {kGateway, kOidGateway, "192.0.2", kOidGateway, kWrongForm},
      {kRangeFrom, kOidRange, "10.8.1.0", kFaults, kFaultOrder},
      {kRangeTo, kOidRange, "", kFaults, kFaultMissing},
      {kAdapter, kOidAdapter, "00:1A:2B:3C:4D", kOidAdapter, kWrongForm},
      {kAdapter, kOidAdapter, "00:1A:2B:3C:4D:5G", kOidAdapter, kWrongForm},
      {kPortFrom, kOidPorts, "0", kOidPorts, kWrongForm},
      {kPortTo, kOidPorts, "65536", kOidPorts, kWrongForm},
      {kPassword, kOidPassword, "\u0161", kFaults, kFaultCharacters},
      {kPassword, kOidPassword, "\u00B6", kOidPassword, kWrongForm},  // scrambles to an escape
      {kKey, kOidKey, "0F.1E", kOidKey, kWrongForm},
  };
  Texts* texts = [settings texts];
  for (const auto& wrong : kWrong) {
    type(settings, wrong.entry, text(wrong.wrong));
    click(button(settings, kApply));
    report.check(waitUntil([&] { return [[[settings window] firstResponder] isKindOfClass:[NSText class]]; }),
                 "\"%s\" in field %d: the cursor is nowhere", wrong.wrong, wrong.entry);
    NSString* told = [[[settings profileTab] hintOf:wrong.oid] stringValue];
    report.check([told isEqual:[texts textOf:wrong.element sub:wrong.subElement]] &&
                     [[[settings status] stringValue] isEqual:[texts textOf:kOutcomes sub:kFaultyFields]],
                 "\"%s\" in field %d: \"%s\"", wrong.wrong, wrong.entry, [told UTF8String]);
    type(settings, wrong.entry, text(kTyped[wrong.entry]));
    told = [[[settings profileTab] hintOf:wrong.oid] stringValue];
    report.check([told isEqual:[texts textOf:wrong.oid sub:kHint]], "field %d, mended, still tells \"%s\"",
                 wrong.entry, [told UTF8String]);
  }
}
