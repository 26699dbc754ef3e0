// The window: four tabs, the language, what became of the last message, the buttons.
#import "Controls.h"
#import "Profile.h"

#include <string>

#include "SharedLog.h"

@class LogTab;
@class ProfileTab;
@class RecordsTab;
@class ServiceCall;
@class SystemTab;

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
  NSTimer* timer;
  SharedLog* sharedLog;
  uint32_t outcome;
  uint32_t underWay;  // the Request that the call asks; 0: none
  uint32_t waiting;   // the one to send after it
  BOOL touched;       // something was typed
}

// directory is where the service runs; the log outlives the window.
- (id)initWithTexts:(Texts*)shownTexts
           language:(int)number
          directory:(const std::string&)directory
                log:(SharedLog*)shared;
- (void)dealloc;

// Shows the window with the stored profile, if the service has one.
- (void)open;

// Ends what is under way.  The window can't be used afterwards.
- (void)close;

- (NSWindow*)window;
- (Profile*)profile;
- (Texts*)texts;
- (SharedLog*)log;
- (NSArray*)tabs;
- (NSTabView*)tabView;
- (ProfileTab*)profileTab;
- (RecordsTab*)recordsTab;
- (LogTab*)logTab;
- (SystemTab*)systemTab;
- (NSPopUpButton*)languages;
- (NSTextField*)status;
- (void)selectTab:(NSUInteger)index;

// Relabels everything at once; what was typed stays.  0 follows the user's preference.
- (void)showLanguage:(int)number;

@end
