#import <Foundation/Foundation.h>
#import "mifobject/ZOTMifBuffer.h"

int main(void) {
  NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
  ZOTMifBuffer *message = [[ZOTMifBuffer alloc] init];
  NSMutableData *bytes = [NSMutableData data];
  [message addInt:[NSNumber numberWithInt:300] forOid:1];
  [message addString:@"office" forOid:2];
  [message addEndKz];
  [message getDataIntoBuffer:bytes];  // what goes over the wire

  NSNumber *interval = nil;
  NSMutableString *profile = [NSMutableString string];
  [message setData:bytes];
  if ([message getInt:&interval forOid:1] && [message getString:profile forOid:2]) {
    printf("%s: every %u seconds\n", [profile UTF8String], [interval unsignedIntValue]);
  }
  [message release];
  [pool release];
  return 0;
}
