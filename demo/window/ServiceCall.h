// A message to the service and its answer, exchanged by a worker thread.
#import <Foundation/Foundation.h>

#include <string>

#include "ProfileFormat.h"

@interface ServiceCall : NSObject {
 @private
  id owner;
  SEL done;
  uint32_t state;             // of the worker
  struct Exchange* exchange;  // C++ objects need an owner outside of Objective-C
}

// Sends done to owner, which it does not retain, on the main thread after every call.
- (id)initWithSocket:(const std::string&)socketPath owner:(id)target done:(SEL)action;
// Not while a call is under way.
- (void)dealloc;

// NO while a call is under way, or when no thread can be had.
- (BOOL)send:(NSData*)bytes;
- (BOOL)isUnderWay;

// Gives up a call that is under way; done is not sent any more.
- (void)stop;

// Of the last call: what became of it, and the answer, empty when it made no sense.
- (Outcome)outcome;
- (NSData*)answer;

@end
