// The window: four tabs, the language, what became of the last message, the buttons.
#import "Controls.h"
#import "Profile.h"

@class ProfileTab;

@interface SettingsWindow : NSObject <NSWindowDelegate> {
 @private
  Texts* texts;
  Profile* profile;
  NSMutableArray* tabs;
  NSWindow* window;
  NSTabView* tabView;
  NSPopUpButton* languages;
  NSTextField* status;
  int outcome;
}

- (id)initWithTexts:(Texts*)shownTexts language:(int)number;
- (void)dealloc;

- (NSWindow*)window;
- (NSArray*)tabs;
- (ProfileTab*)profileTab;
- (void)selectTab:(NSUInteger)index;

// Relabels everything at once; what was typed stays.  0 follows the user's preference.
- (void)showLanguage:(int)number;

@end
