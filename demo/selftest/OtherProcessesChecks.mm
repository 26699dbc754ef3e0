#include <unistd.h>

#import "Checks.h"
#include "Connection.h"
#import "LogTab.h"
#import "Look.h"
#import "ProfileTab.h"
#import "RecordsTab.h"
#import "SystemTab.h"
#import "Texts.h"
#import "User.h"

namespace {

// A peer that takes one message and answers what it is told.
void answerOnce(Connection& listener, Bytes answer) {
  const Deadline deadline(std::chrono::seconds(5));
  Connection peer = listener.accept(deadline);
  peer.receive(deadline);
  peer.send(answer, deadline);
}

}  // namespace

void checkLevel(Report& report, SettingsWindow* settings) {
  std::puts("short");  // what else comes on standard output is shown, too
  std::fflush(stdout);
  report.check(waitUntil([&] { return [[settings logTab] hasLine:"short" of:"window"]; }),
               "a short line is lost");
  SharedLog other;
  for (const uint32_t mask : {ZOT_LOG_ERROR, ZOT_LOG_FATAL, ZOT_LOG_DEBUG}) {
    NSButton* box = [[settings logTab] boxFor:mask];
    ZotOsvSetLogLevel(other, mask);
    report.check(waitUntil([&] { return [box state] == NSOnState; }),
                 "level %08X, set elsewhere, does not show", mask);
    [box performClick:nil];
    report.check((ZotOsdGetLogLevel(other) & mask) == 0, "level %08X is not cleared by its box", mask);
  }
}

void checkSystem(Report& report, SettingsWindow* settings) {
  Texts* texts = [settings texts];
  for (const int object : {kWindowMutex, kAppliedEvent}) {
    report.check(waitUntil([&] {
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
  SettingsWindow* another = [[[SettingsWindow alloc] initWithTexts:[settings texts]
                                                          language:0
                                                         directory:directory
                                                               log:[settings log]] autorelease];
  [another open];
  report.check(comesTo(another, kNoService), "opened without a service: \"%s\"",
               [[[another status] stringValue] UTF8String]);
  [another close];
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
