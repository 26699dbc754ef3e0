#include "FrontEnd.h"

#include <cstdio>
#include <cstdlib>

#import "FieldValues.h"
#include "Message.h"
#import "mifobject/ZOTMifBuffer.h"

namespace {

void closeMessage(ZOTMifBuffer* buffer, NSMutableData* message) {
  [buffer getDataIntoBuffer:message];
  [buffer addInt:[NSNumber numberWithUnsignedInt:checkSum(bytesOf(message))] forOid:kCheck];
  [buffer addEndKz];
  [buffer getDataIntoBuffer:message];
}

// NO when the message has no such byte, or not so many.
BOOL damageMessage(NSMutableData* message, long damage) {
  const long length = static_cast<long>([message length]);
  if (damage >= length || damage < -length) {
    return NO;
  }
  if (damage < 0) {
    [message setLength:static_cast<NSUInteger>(length + damage)];
  } else {
    static_cast<unsigned char*>([message mutableBytes])[damage] ^= 0xFF;
  }
  return YES;
}

int showAnswer(Channel& service) {
  const auto answer = service.receive();
  if (!answer) {
    std::fprintf(stderr, "front end: the service gave no answer\n");
    return EXIT_FAILURE;
  }
  const std::string damage = damageOf(*answer);
  if (!damage.empty()) {
    std::fprintf(stderr, "front end: the answer is damaged: %s\n", damage.c_str());
    return EXIT_FAILURE;
  }
  printMessage("front end: the answer", *answer);

  ZOTMifBuffer* buffer = [[[ZOTMifBuffer alloc] init] autorelease];
  [buffer setData:[NSData dataWithBytes:answer->data() length:answer->size()]];
  printReadings(buffer);
  NSMutableString* text = [NSMutableString string];
  if (![buffer getString:text forOid:kAnswer]) {
    std::fprintf(stderr, "front end: the service said nothing\n");
    return EXIT_FAILURE;
  }
  std::printf("front end: the service says: %s\n", [text UTF8String]);
  return EXIT_SUCCESS;
}

int exchange(Channel& service, const std::vector<Setting>& settings, const Sending& sending) {
  ZOTMifBuffer* buffer = [[[ZOTMifBuffer alloc] init] autorelease];
  for (const Setting& setting : settings) {
    if (!addSetting(buffer, setting)) {
      std::fprintf(stderr, "front end: %.*s cannot be \"%s\"\n", static_cast<int>(setting.field->name.size()),
                   setting.field->name.data(), setting.value.c_str());
      return EXIT_FAILURE;
    }
  }
  NSMutableData* message = [NSMutableData data];
  closeMessage(buffer, message);
  printMessage("front end: the settings", bytesOf(message));
  if (sending.damage && !damageMessage(message, *sending.damage)) {
    std::fprintf(stderr, "front end: the message has only %lu bytes to damage\n",
                 static_cast<unsigned long>([message length]));
    return EXIT_FAILURE;
  }
  // Not atomically: that replaces what stands there, be it a link or a device.
  if (!sending.copy.empty() &&
      ![message writeToFile:[NSString stringWithUTF8String:sending.copy.c_str()] atomically:NO]) {
    std::fprintf(stderr, "front end: %s could not be written\n", sending.copy.c_str());
    return EXIT_FAILURE;
  }
  if (!service.send(bytesOf(message))) {
    std::fprintf(stderr, "front end: the service is gone\n");
    return EXIT_FAILURE;
  }
  return showAnswer(service);
}

}  // namespace

int runFrontEnd(Channel& service, const std::vector<Setting>& settings, const Sending& sending) {
  NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
  const int status = exchange(service, settings, sending);
  [pool release];
  return status;
}
