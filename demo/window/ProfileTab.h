// The tab in which the user fills in a profile.
#import "Controls.h"
#import "Profile.h"

@interface ProfileTab : TabPage <Tab, NSTextFieldDelegate> {
 @private
  Profile* profile;
  id owner;
  SEL changed;
  NSTextField* fields[kEntryCount];
  NSTextField* hints[kOidKey - kOidName + 1];
  BOOL told[kOidKey - kOidName + 1];  // a field's fault shows
  NSButton* options[kOptionCount];
}

// Sends changed to owner, which it does not retain, after every change.
- (id)initWithProfile:(Profile*)shown owner:(id)target changed:(SEL)action;
- (void)dealloc;

// Shows what the model holds.
- (void)showProfile;

// Tells every fault at its field, and puts the cursor into the first of these; NO when
// there is none.  refused is the OID of a field that the service refused, or 0.
- (BOOL)tellFaults:(unsigned short)refused;

- (NSTextField*)fieldOf:(Entry)entry;
- (NSTextField*)hintOf:(unsigned short)oid;
// The first and the last control in reading order.
- (NSView*)firstControl;
- (NSView*)lastControl;

@end
