// Drives the window's controls by code and compares what window, service, stored file
// and log say.
#import "SettingsWindow.h"

// Prints what is wrong, and a line at the end; returns how many checks failed.  The
// window is open; texts is the directory of the language files, directory that of the
// profile, where this starts a service.
int runSelfTest(SettingsWindow* settings, NSString* texts, const std::string& directory, FILE* terminal);
