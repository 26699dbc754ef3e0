// The tab that shows the block which all processes of the client share, live.
#import "Controls.h"
#include "SharedLog.h"

@interface SystemTab : TabPage <Tab> {
 @private
  SharedLog* sharedLog;
  TextTable* words;
  TextTable* slots;
}

- (id)initWithLog:(SharedLog*)shared;

- (TextTable*)words;
- (TextTable*)slots;

@end
