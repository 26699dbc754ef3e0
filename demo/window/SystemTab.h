// The tab that shows the block which all processes of the client share, live.
#import "Controls.h"
#include "SharedLog.h"

@interface SystemTab : NSObject <Tab, NSTableViewDataSource, NSTableViewDelegate> {
 @private
  SharedLog* sharedLog;
  Texts* shownTexts;
  NSMutableArray* words;  // rows, each an array of texts by column
  NSMutableArray* slots;
  Page* page;
  NSScrollView* wordTable;
  NSScrollView* slotTable;
}

- (id)initWithLog:(SharedLog*)shared;
- (void)dealloc;

// The rows that show, as arrays of texts in the order of the columns.
- (NSArray*)words;
- (NSArray*)slots;

@end
