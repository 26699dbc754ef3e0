// The tab that shows the message which Apply would send, record by record and in hex.
#import "Controls.h"
#include "Profile.h"

@interface RecordsTab : TabPage <Tab> {
 @private
  Profile* profile;
  NSData* message;
  TextTable* table;
  NSScrollView* hexFrame;
  NSTextView* hex;
}

- (id)initWithProfile:(Profile*)shown;
- (void)dealloc;

- (TextTable*)table;
- (NSTextView*)hexView;

@end
