// The tab that shows the block which all processes of the client share, live.
#import "Controls.h"
#include "SharedLog.h"

@interface SystemTab : NSObject <Tab> {
 @private
  SharedLog* sharedLog;
  Texts* shownTexts;
  Page* page;
  TextTable* words;
  TextTable* slots;
}

- (id)initWithLog:(SharedLog*)shared;
- (void)dealloc;

- (TextTable*)words;
- (TextTable*)slots;

@end
