// The window: four tabs, the language, what became of the last message, the buttons.
#import "Controls.h"
#import "Profile.h"

#include <string>

@class ProfileTab;
@class ServiceCall;

@interface SettingsWindow : NSObject <NSWindowDelegate> {
 @private
  Texts* texts;
  Profile* profile;
  NSMutableArray* tabs;
  NSWindow* window;
  NSTabView* tabView;
  NSPopUpButton* languages;
  NSTextField* status;
  ServiceCall* call;
  int outcome;
  BOOL touched;  // something was typed
}

// socketPath is where the service listens.
- (id)initWithTexts:(Texts*)shownTexts language:(int)number service:(const std::string&)socketPath;
- (void)dealloc;

// Shows the window with the stored profile, if the service has one.
- (void)open;

// Ends what is under way.  The window can't be used afterwards.
- (void)close;

- (NSWindow*)window;
- (Profile*)profile;
- (NSArray*)tabs;
- (ProfileTab*)profileTab;
- (void)selectTab:(NSUInteger)index;

// Relabels everything at once; what was typed stays.  0 follows the user's preference.
- (void)showLanguage:(int)number;

@end
