#import "ServiceCall.h"

#include "Connection.h"
#include "os/ZotOsSystem.h"
#include "os/ZotOsThread.h"

struct Exchange {
  std::string path;
  Message message;
  Message answer;
  Outcome outcome;
};

namespace {

constexpr std::chrono::milliseconds kPatience{3000};
constexpr int kStopPolls = 40;  // of 100 ms: longer than a call lasts

Outcome outcomeOf(const Message& answer) {
  const uint32_t outcome = isSound(answer) ? integerIn(answer, kOidOutcome) : 0;
  return outcome >= kApplied && outcome <= kRead ? static_cast<Outcome>(outcome) : kNonsense;
}

Outcome run(Exchange* exchange, const uint32_t* state) {
  const Deadline deadline(kPatience, state);
  Connection service = Connection::connectTo(exchange->path, deadline);
  if (!service.isOpen()) {
    return kNoService;
  }
  auto received = service.send(exchange->message, deadline) ? service.receive(deadline) : std::nullopt;
  if (!received || received->empty()) {
    return kNoAnswer;
  }
  exchange->answer = std::move(*received);
  return outcomeOf(exchange->answer);
}

}  // namespace

@interface ServiceCall (Worker)
// Returns the state word, which stays until it is 0.
- (uint32_t*)work;
- (void)finish;
@end

namespace {

void* runCall(void* call) {
  // Foundation has to know a thread that it did not make.
  GSRegisterCurrentThread();
  uint32_t* state = [(ServiceCall*)call work];
  GSUnregisterCurrentThread();
  // The last that is done: whoever waits for it may then end the program.
  __atomic_store_n(state, 0, __ATOMIC_RELEASE);
  return nullptr;
}

}  // namespace

@implementation ServiceCall

- (id)initWithSocket:(const std::string&)socketPath owner:(id)target done:(SEL)action {
  self = [super init];
  if (self != nil) {
    owner = target;
    done = action;
    exchange = new Exchange{socketPath, {}, {}, kNoAnswer};
  }
  return self;
}

- (void)dealloc {
  delete exchange;
  [super dealloc];
}

- (BOOL)isUnderWay {
  return __atomic_load_n(&state, __ATOMIC_ACQUIRE) != 0;
}

- (BOOL)send:(NSData*)bytes {
  if ([self isUnderWay]) {
    return NO;
  }
  const auto* first = static_cast<const unsigned char*>([bytes bytes]);
  exchange->message.assign(first, first + [bytes length]);
  exchange->answer.clear();
  return ZotOsThreadStart(nullptr, &state, runCall, self) != 0;
}

- (void)stop {
  owner = nil;
  ZotOsThreadStop(nullptr, &state, kStopPolls, nullptr, 0, "call of the service");
}

- (Outcome)outcome {
  return exchange->outcome;
}

- (NSData*)answer {
  const size_t size = exchange->outcome == kNonsense ? 0 : exchange->answer.size();
  return [NSData dataWithBytes:exchange->answer.data() length:size];
}

@end

@implementation ServiceCall (Worker)

- (uint32_t*)work {
  NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
  exchange->outcome = run(exchange, &state);
  // This keeps the object until finish has run.
  [self performSelectorOnMainThread:@selector(finish) withObject:nil waitUntilDone:NO];
  [pool release];
  return &state;
}

- (void)finish {
  // The worker is on its last steps.
  while ([self isUnderWay]) {
    ZotOsSleep(1);
  }
  [owner performSelector:done];
}

@end
