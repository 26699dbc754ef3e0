// The parts of the self-test, in the order in which they are run.
#include <string>

#include "Report.h"
#import "SettingsWindow.h"

// With a service: from the keyboard to the records shown, to the stored file, to the log.
void checkTyping(Report& report, SettingsWindow* settings);
void checkApply(Report& report, SettingsWindow* settings, const std::string& directory);
void checkFaults(Report& report, SettingsWindow* settings);

// Every text in every language: it is the right one, and it fits.  texts is the directory
// of the language files.
void checkLanguages(Report& report, SettingsWindow* settings, NSString* texts);

// What other processes do to the shared block shows.
void checkLevel(Report& report, SettingsWindow* settings);
void checkSystem(Report& report, SettingsWindow* settings);

// Without a service, and with peers that answer it badly.
void checkLostService(Report& report, SettingsWindow* settings, const std::string& directory);
