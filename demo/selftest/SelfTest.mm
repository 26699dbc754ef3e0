#import "SelfTest.h"

#include <filesystem>

#import "Checks.h"
#include "OnlyWindow.h"
#include "ServiceProcess.h"
#import "User.h"

int runSelfTest(SettingsWindow* settings, NSString* texts, const std::string& directory, FILE* terminal) {
  Report report = {terminal};
  ZotOsvSetLogLevel(*[settings log], ZOT_LOG_TRACE | ZOT_LOG_DEBUG | ZOT_LOG_STDOUT);
  const bool storedBefore = std::filesystem::exists(directory + "/profile.mif");
  {
    const ServiceProcess service(directory);
    [settings open];
    // Whatever ended the last run, it left a whole profile.
    report.check(!storedBefore || waitUntil([&] { return [[[settings profile] entry:kName] length] != 0; }),
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
