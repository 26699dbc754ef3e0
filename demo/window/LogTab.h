// The tab that shows the level which all processes share, and the lines of window and
// service as they come.
#import "Controls.h"
#include <string>

#include "SharedLog.h"

@interface LogTab : TabPage <Tab> {
 @private
  SharedLog* sharedLog;
  class LogLines* lines;
  NSButton* boxes[5];
  TextTable* table;
}

// directory is where both programs write their lines.
- (id)initWithLog:(SharedLog*)shared directory:(const std::string&)directory;
- (void)dealloc;

- (NSButton*)boxFor:(uint32_t)mask;
// YES when a line of this program has this text in it.
- (BOOL)hasLine:(const char*)text of:(const char*)program;

@end
