#import "SelfTest.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdarg>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "Connection.h"
#import "LogTab.h"
#import "Look.h"
#include "OnlyWindow.h"
#import "ProfileTab.h"
#import "RecordsTab.h"
#import "SystemTab.h"
#import "Texts.h"
#include "mif/MifRecord.h"
#import "multilang/ZOTMultiLang.h"
#include "os/ZotOsFile.h"

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

constexpr double kPatience = 8;  // seconds
constexpr int kLanguages[] = {2, 1, 4, 3, 11, 0};

// What is typed, and what is shown of it.
constexpr const char* kTyped[kEntryCount] = {"B\u00FCro S\u00FCd",
                                             "192.0.2.1",
                                             "10.8.0.10",
                                             "10.8.0.200",
                                             "00:1a:2B:3c:4D:5e",
                                             "40000",
                                             "40999",
                                             "Nachtwache am Tor",
                                             "0F.1E.2D.3C.4B.5A.69.78.87.96.A5.B4.C3.D2.E1.F0"};
constexpr const char* kShown[] = {"B\u00FCro S\u00FCd",
                                  "192.0.2.1",
                                  "10.8.0.10 - 10.8.0.200",
                                  "00.1A.2B.3C.4D.5E",
                                  "40000 - 40999",
                                  "*****************",
                                  "0F.1E.2D.3C.4B.5A.69.78.87.96.A5.B4.C3.D2.E1.F0",
                                  "0x5"};

struct Report {
  FILE* terminal;
  int checks = 0, failures = 0;

  bool check(bool good, const char* format, ...) __attribute__((format(printf, 3, 4))) {
    ++checks;
    if (!good) {
      ++failures;
      va_list arguments;
      va_start(arguments, format);
      std::fprintf(terminal, "selftest: ");
      std::vfprintf(terminal, format, arguments);
      std::fprintf(terminal, "\n");
      va_end(arguments);
    }
    return good;
  }
};

NSString* text(const char* utf8) {
  return [NSString stringWithUTF8String:utf8];
}

// Lets the window live until condition() holds; false when that takes too long.
template <typename Condition>
bool pump(Condition condition) {
  NSDate* end = [NSDate dateWithTimeIntervalSinceNow:kPatience];
  while (!condition()) {
    if ([end timeIntervalSinceNow] < 0) {
      return false;
    }
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSEvent* event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                        untilDate:[NSDate dateWithTimeIntervalSinceNow:0.02]
                                           inMode:NSDefaultRunLoopMode
                                          dequeue:YES];
    if (event != nil) {
      [NSApp sendEvent:event];
    }
    [pool release];
  }
  return true;
}

// ---- What a user does ----

void type(SettingsWindow* settings, Entry entry, NSString* typed) {
  NSTextField* field = [[settings profileTab] fieldOf:entry];
  [[settings window] makeFirstResponder:field];
  NSText* editor = [field currentEditor];
  [editor selectAll:nil];
  if ([typed length] != 0) {
    [(NSTextView*)editor insertText:typed];
  } else {
    [(NSTextView*)editor deleteBackward:nil];
  }
}

void press(NSWindow* window, NSString* key) {
  NSEvent* event = [NSEvent keyEventWithType:NSKeyDown
                                    location:NSZeroPoint
                               modifierFlags:0
                                   timestamp:0
                                windowNumber:[window windowNumber]
                                     context:nil
                                  characters:key
                 charactersIgnoringModifiers:key
                                   isARepeat:NO
                                     keyCode:0];
  [NSApp postEvent:event atStart:NO];
  pump([&] { return [NSApp currentEvent] == event; });
}

// By the mouse.
void click(NSView* view) {
  NSWindow* window = [view window];
  const NSRect bounds = [view bounds];
  const NSPoint place = [view convertPoint:NSMakePoint(NSMidX(bounds), NSMidY(bounds)) toView:nil];
  NSEvent* event = nil;
  for (const NSEventType kind : {NSLeftMouseDown, NSLeftMouseUp}) {
    event = [NSEvent mouseEventWithType:kind
                               location:place
                          modifierFlags:0
                              timestamp:0
                           windowNumber:[window windowNumber]
                                context:nil
                            eventNumber:0
                             clickCount:1
                               pressure:0];
    [NSApp postEvent:event atStart:NO];
  }
  pump([&] { return [NSApp currentEvent] == event; });
}

void chooseLanguage(SettingsWindow* settings, int number) {
  NSPopUpButton* languages = [settings languages];
  [languages selectItemAtIndex:[languages indexOfItemWithTag:number]];
  [NSApp sendAction:[languages action] to:[languages target] from:languages];
}

NSButton* button(SettingsWindow* settings, int element) {
  return [[[settings window] contentView] viewWithTag:element];
}

// ---- The service ----

class ServiceProcess {
 public:
  explicit ServiceProcess(const std::string& directory) {
    char own[4096] = "";
    ZotOsGetModulePath(own, sizeof own, nullptr);
    const std::string program = std::string(own) + "/service";
    pid_ = fork();
    if (pid_ == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      execl(program.c_str(), "service", "--directory", directory.c_str(), nullptr);
      _exit(127);
    }
    const std::string path = directory + "/service.sock";
    pump([&] { return Connection::connectTo(path, Deadline(std::chrono::milliseconds(100))).isOpen(); });
  }
  ~ServiceProcess() {
    kill(pid_, SIGTERM);
    waitpid(pid_, nullptr, 0);
  }
  ServiceProcess(const ServiceProcess&) = delete;
  ServiceProcess& operator=(const ServiceProcess&) = delete;

 private:
  pid_t pid_;
};

// A peer that takes one message and answers what it is told.
void answerOnce(Connection& listener, Bytes answer) {
  const Deadline deadline(std::chrono::seconds(5));
  Connection peer = listener.accept(deadline);
  peer.receive(deadline);
  peer.send(answer, deadline);
}

// ---- Texts ----

NSString* textIn(ZOTMultiLang* texts, NSInteger element, NSInteger subElement) {
  return [texts prgTextForElemNr:[NSNumber numberWithInteger:element]
                       subElemNr:[NSNumber numberWithInteger:subElement]
                     withDefault:@"?"];
}

bool fits(Report& report, int language, NSView* view, NSString* shown, CGFloat needed, CGFloat room) {
  return report.check(needed <= room, "language %d: \"%s\" needs a width of %.0f and has %.0f (element %ld)",
                      language, [shown UTF8String], needed, room, static_cast<long>([view tag]));
}

// Labels, buttons, check boxes and hints; what the user fills may be longer than its field.
void checkFit(Report& report, int language, NSView* parent) {
  NSEnumerator* views = [[parent subviews] objectEnumerator];
  for (NSControl* view; (view = [views nextObject]) != nil;) {
    if (![view isKindOfClass:[NSControl class]] || [[view cell] isBezeled]) {
      continue;
    }
    fits(report, language, view, [[view cell] title], [[view cell] cellSize].width, NSWidth([view frame]));
    report.check(NSContainsRect(NSInsetRect([parent bounds], -1, -1), [view frame]),
                 "language %d: \"%s\" leaves its page", language, [[[view cell] title] UTF8String]);
  }
}

void checkColumns(Report& report, int language, ZOTMultiLang* expected, NSView* page) {
  NSEnumerator* views = [[page subviews] objectEnumerator];
  for (TextTable* view; (view = [views nextObject]) != nil;) {
    if (![view isKindOfClass:[TextTable class]]) {
      continue;
    }
    NSEnumerator* columns = [[view columns] objectEnumerator];
    for (NSTableColumn* column; (column = [columns nextObject]) != nil;) {
      NSString* title = [[column headerCell] stringValue];
      NSString* right = textIn(expected, [[column identifier] integerValue], 0);
      report.check([title isEqual:right], "language %d: a column reads \"%s\" and not \"%s\"", language,
                   [title UTF8String], [right UTF8String]);
      fits(report, language, view, title, [[column headerCell] cellSize].width, [column width]);
    }
  }
}

void checkCells(Report& report, int language, TextTable* table) {
  for (NSUInteger i = 0; i < [[table rows] count]; ++i) {
    NSArray* row = [[table rows] objectAtIndex:i];
    for (NSUInteger j = 0; j < [row count]; ++j) {
      NSTableColumn* column = [[table columns] objectAtIndex:j];
      NSCell* cell = [[[column dataCell] copy] autorelease];
      [cell setStringValue:[row objectAtIndex:j]];
      fits(report, language, table, [cell stringValue], [cell cellSize].width, [column width]);
    }
  }
}

void checkTitles(Report& report, int language, ZOTMultiLang* expected, NSView* parent) {
  NSEnumerator* views = [[parent subviews] objectEnumerator];
  for (NSControl* view; (view = [views nextObject]) != nil;) {
    if ([view tag] > 0 && [view isKindOfClass:[NSControl class]]) {
      NSString* title = [[view cell] title];
      NSString* right = textIn(expected, [view tag], 0);
      report.check([title isEqual:right], "language %d: element %ld reads \"%s\" and not \"%s\"", language,
                   static_cast<long>([view tag]), [title UTF8String], [right UTF8String]);
    }
  }
}

struct Sentences {
  Report* report;
  SettingsWindow* settings;
  ZOTMultiLang* expected;
  int language;
};

// Every text that the program has is in the file, and those that come and go fit where
// they will stand.
void checkSentence(int element, int subElement, void* context) {
  const Sentences& all = *static_cast<const Sentences*>(context);
  NSString* sentence = textIn(all.expected, element, subElement);
  all.report->check(![sentence isEqual:@"?"], "language %d: no text %d/%d", all.language, element,
                    subElement);
  NSTextField* place = element == kOutcomes ? [all.settings status]
                       : element == kFaults ? [[all.settings profileTab] hintOf:kOidName]
                       : subElement == kHint || subElement == kWrongForm
                           ? [[all.settings profileTab] hintOf:kOidName]
                           : nil;
  if (place != nil) {
    NSTextFieldCell* cell = [[[place cell] copy] autorelease];
    [cell setStringValue:sentence];
    fits(*all.report, all.language, place, sentence, [cell cellSize].width, NSWidth([place frame]));
  }
}

void checkLanguages(Report& report, SettingsWindow* settings, NSString* directory) {
  ZOTMultiLang* expected = [[[ZOTMultiLang alloc] init] autorelease];
  [expected setBaseName:@"demo"];
  NSTextField* name = [[settings profileTab] fieldOf:kName];
  for (const int language : kLanguages) {
    chooseLanguage(settings, language);
    [[settings window] setContentSize:[[settings window] contentMinSize]];
    const int meant = language != 0 ? language : [[expected zotLanguageNumberFromPrefs] intValue];
    report.check([expected loadTextsForLanguageNr:meant withFilePath:directory formNumber:10],
                 "no language file for %d", meant);
    NSView* content = [[settings window] contentView];
    checkTitles(report, language, expected, content);
    checkFit(report, language, content);
    for (NSUInteger i = 0; i < [[settings tabs] count]; ++i) {
      id<Tab> tab = [[settings tabs] objectAtIndex:i];
      NSView* page = [tab view];
      [settings selectTab:i];
      NSString* label = textIn(expected, [tab element], 0);
      report.check([[[[settings tabView] selectedTabViewItem] label] isEqual:label],
                   "language %d: tab %lu is in another language", language, static_cast<unsigned long>(i));
      checkTitles(report, language, expected, page);
      checkFit(report, language, page);
      checkColumns(report, language, expected, page);
    }
    NSControl* beside = [content viewWithTag:kLanguage];
    fits(report, language, [settings tabView], [beside stringValue], widthOfTabs([settings tabView]),
         NSMinX([beside frame]) - NSMinX([[settings tabView] frame]));
    checkCells(report, language, [[settings systemTab] words]);
    checkCells(report, language, [[settings systemTab] slots]);
    Sentences sentences = {&report, settings, expected, language};
    forEachText(checkSentence, &sentences);
    report.check([[name stringValue] isEqual:text(kTyped[kName])], "language %d: what was typed is gone",
                 language);
    NSString* hint = textIn(expected, kOidGateway, kHint);
    report.check([[[[settings profileTab] hintOf:kOidGateway] stringValue] isEqual:hint],
                 "language %d: a hint is in another language", language);
    NSString* title = textIn(expected, kWindowTitle, 0);
    report.check([[[settings window] title] isEqual:title], "language %d: the window's title", language);
  }
  // The check itself sees a text that is cut.
  Report cut = {fopen("/dev/null", "w")};
  NSView* label = [[[settings profileTab] view] viewWithTag:kOidName];
  const NSRect frame = [label frame];
  [label setFrame:NSMakeRect(NSMinX(frame), NSMinY(frame), NSWidth(frame) - 5, NSHeight(frame))];
  checkFit(cut, 0, [[settings profileTab] view]);
  [label setFrame:frame];
  std::fclose(cut.terminal);
  report.check(cut.failures == 1, "a label that is cut goes unnoticed");
  chooseLanguage(settings, 2);
  [settings selectTab:0];
}

// ---- From the keyboard to the stored file ----

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
    report.check(pump([&] { return [[[settings window] firstResponder] isKindOfClass:[NSText class]]; }),
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

bool comesTo(SettingsWindow* settings, Outcome outcome) {
  return pump([&] {
    return [[[settings status] stringValue] isEqual:[[settings texts] textOf:kOutcomes sub:outcome]];
  });
}

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
  report.check(pump([&] { return [log hasLine:line of:@"service"]; }), "the log lacks \"%s\"", line);
  std::snprintf(line, sizeof line, "outcome %d (pid=%d)", kConnected, getpid());
  report.check(pump([&] { return [log hasLine:line of:@"window"]; }), "the log lacks \"%s\"", line);

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

// ---- What other processes do ----

void checkLevel(Report& report, SettingsWindow* settings) {
  std::puts("short");  // what else comes on standard output is shown, too
  std::fflush(stdout);
  report.check(pump([&] { return [[settings logTab] hasLine:"short" of:@"window"]; }),
               "a short line is lost");
  SharedLog other;
  for (const uint32_t mask : {ZOT_LOG_ERROR, ZOT_LOG_FATAL, ZOT_LOG_DEBUG}) {
    NSButton* box = [[settings logTab] boxFor:mask];
    ZotOsvSetLogLevel(other, mask);
    report.check(pump([&] { return [box state] == NSOnState; }), "level %08X, set elsewhere, does not show",
                 mask);
    [box performClick:nil];
    report.check((ZotOsdGetLogLevel(other) & mask) == 0, "level %08X is not cleared by its box", mask);
  }
}

void checkSystem(Report& report, SettingsWindow* settings) {
  Texts* texts = [settings texts];
  for (const int object : {kWindowMutex, kAppliedEvent}) {
    report.check(pump([&] {
                   NSArray* slots = [[[settings systemTab] slots] rows];
                   bool found = false;
                   for (NSUInteger i = 0; i < [slots count]; ++i) {
                     found = found || [[[slots objectAtIndex:i] lastObject] isEqual:[texts textOf:object]];
                   }
                   return found;
                 }),
                 "no slot shows \"%s\"", [[texts textOf:object] UTF8String]);
  }
}

void checkLostService(Report& report, SettingsWindow* settings, const std::string& directory) {
  const auto tells = [&](Outcome outcome, const char* when) {
    report.check(comesTo(settings, outcome), "%s: \"%s\"", when,
                 [[[settings status] stringValue] UTF8String]);
    NSString* name = [[[settings profileTab] fieldOf:kName] stringValue];
    report.check([name isEqual:text(kTyped[kName])], "%s: what was typed is gone", when);
  };
  [button(settings, kApply) performClick:nil];
  tells(kNoService, "without a service");
  Connection listener = Connection::listenAt(directory + "/service.sock");
  const struct {
    std::string answer;
    Outcome outcome;
    const char* when;
  } answers[] = {{"", kNoAnswer, "without an answer"},
                 {"hello", kNonsense, "with nonsense"},
                 {std::string("\x02\0\x04\0\x63\0\0\0\xff\xff", 10), kNonsense, "with an unknown outcome"},
                 {std::string("\x02\0\x04\0\x05\0\0\0\xff\xff", 10), kNonsense, "with another answer"},
                 {std::string("\x02\0\x04\0\x04\0\0\0\xff\xff", 10), kNotStored, "with a full disk"}};
  for (const auto& answer : answers) {
    [button(settings, kApply) performClick:nil];
    answerOnce(listener,
               {reinterpret_cast<const unsigned char*>(answer.answer.data()), answer.answer.size()});
    tells(answer.outcome, answer.when);
  }
  // A service that takes the message and says nothing: the window goes on meanwhile.
  [button(settings, kApply) performClick:nil];
  type(settings, kName, @"Meanwhile");
  report.check([[[[[settings recordsTab] table] rows] objectAtIndex:1] containsObject:@"Meanwhile"],
               "the window stands still while it waits");
  type(settings, kName, text(kTyped[kName]));
  tells(kNoAnswer, "with a service that says nothing");
  unlink((directory + "/service.sock").c_str());
}

}  // namespace

int runSelfTest(SettingsWindow* settings, NSString* texts, const std::string& directory, FILE* terminal) {
  Report report = {terminal};
  ZotOsvSetLogLevel(*[settings log], ZOT_LOG_TRACE | ZOT_LOG_DEBUG | ZOT_LOG_STDOUT);
  const bool storedBefore = std::filesystem::exists(directory + "/profile.mif");
  {
    const ServiceProcess service(directory);
    [settings open];
    // Whatever ended the last run, it left a whole profile.
    report.check(!storedBefore || pump([&] { return [[[settings profile] entry:kName] length] != 0; }),
                 "the stored profile is lost");
    checkTyping(report, settings);
    checkApply(report, settings, directory);
    checkFaults(report, settings);
    checkLanguages(report, settings, texts);
    checkLevel(report, settings);
    checkSystem(report, settings);
    report.check(!OnlyWindow(directory).isMine(), "a second window is let in");
  }
  checkLostService(report, settings, directory);
  std::fprintf(terminal, "selftest: %d checks, %d failed\n", report.checks, report.failures);
  return report.failures;
}
