#import "zotmacguiutils.h"

// A number, an address through one of the class's categories, and both read again.
int main(void) {
  NSAutoreleasePool* pool = [NSAutoreleasePool new];
  ZOTMifBuffer* buffer = [[ZOTMifBuffer new] autorelease];
  NSMutableString* address = [NSMutableString string];
  NSNumber* number = nil;
  BOOL added = [buffer addIPRangeFrom:@"10.0.0.1" to:@"10.0.0.9" forOid:7];
  [buffer addInt:[NSNumber numberWithInt:300] forOid:8];
  BOOL read = [buffer getInt:&number forOid:8] && [buffer getIpRangeStr:address end:[NSMutableString string] forOid:7];
  int result = added && read && [number intValue] == 300 && [address isEqualToString:@"10.0.0.1"] ? 0 : 1;
  [pool release];
  return result;
}
