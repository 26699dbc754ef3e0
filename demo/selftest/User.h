// What a user does at the window, and what he sees of it.
#include <functional>

#import "Controls.h"
#import "Profile.h"
#import "ServiceCall.h"
#import "SettingsWindow.h"

// What is typed into the entries of a good profile.
extern const char* const kTyped[kEntryCount];

NSString* text(const char* utf8);

// Lets the window live until condition() holds; false when that takes too long.
bool waitUntil(const std::function<bool()>& condition);

void type(SettingsWindow* settings, Entry entry, NSString* typed);
void press(NSWindow* window, NSString* key);
void click(NSView* view);  // by the mouse
void chooseLanguage(SettingsWindow* settings, int number);
NSButton* button(SettingsWindow* settings, int element);

// Whether the window soon tells this outcome.
bool comesTo(SettingsWindow* settings, Outcome outcome);
