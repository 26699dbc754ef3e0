// The tab that shows the message which Apply would send, record by record and in hex.
#import "Controls.h"
#include "Profile.h"

@interface RecordsTab : NSObject <Tab, NSTableViewDataSource, NSTableViewDelegate> {
 @private
  Profile* profile;
  Texts* shownTexts;
  NSData* message;
  NSMutableArray* rows;  // dictionaries of texts by column, and the record's place
  Page* page;
  NSScrollView* table;
  NSScrollView* hexFrame;
  NSTextView* hex;
}

- (id)initWithProfile:(Profile*)shown;
- (void)dealloc;

// What a cell of the table shows; column is an Element.
- (NSString*)textInRow:(NSUInteger)row column:(int)column;
- (NSUInteger)rowCount;
- (NSTextView*)hexView;

@end
