// A window in which a user would enter how to reach the network.  All its controls
// are built in code; their tags are the element numbers of their texts.
#import <AppKit/AppKit.h>

@class ZOTMultiLang;

@interface ConnectWindow : NSObject {
 @private
  ZOTMultiLang* texts;
  NSWindow* window;
  NSPopUpButton* languages;
  NSTextField* serverHint;
}

// texts has loaded the dialog's form; the number is that of its language.
- (id)initWithTexts:(ZOTMultiLang*)loadedTexts languageNumber:(int)number;
- (void)dealloc;

- (NSWindow*)window;

// The dialog's form number in the language files.
+ (int)formNumber;

@end
