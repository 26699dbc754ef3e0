#include "FrontEnd.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "Message.h"
#import "mifobject/ZOTMifBuffer.h"

namespace {

std::optional<unsigned long long> parseNumber(const std::string& text, unsigned long long largest) {
  char* end = nullptr;
  errno = 0;
  const unsigned long long number = std::strtoull(text.c_str(), &end, 10);
  const bool whole = !text.empty() && text[0] != '-' && *end == '\0' && errno == 0;
  return whole && number <= largest ? std::optional(number) : std::nullopt;
}

NSData* parseHex(const std::string& text) {
  NSMutableData* bytes = [NSMutableData data];
  NSScanner* scanner = [NSScanner scannerWithString:[NSString stringWithUTF8String:text.c_str()]];
  while (![scanner isAtEnd]) {
    unsigned int number = 0;
    if (![scanner scanHexInt:&number] || number > 0xFF) {
      return nil;
    }
    const auto byte = static_cast<unsigned char>(number);
    [bytes appendBytes:&byte length:1];
  }
  return bytes;
}

// NO when the value is not what the field holds.
BOOL addSetting(ZOTMifBuffer* buffer, const Setting& setting) {
  const int oid = setting.field->oid;
  switch (setting.field->kind) {
    case FieldKind::Integer:
    case FieldKind::Integer64: {
      const bool narrow = setting.field->kind == FieldKind::Integer;
      const auto number = parseNumber(setting.value, narrow ? 0xFFFFFFFF : ~0ull);
      if (!number) {
        return NO;
      }
      NSNumber* value = [NSNumber numberWithUnsignedLongLong:*number];
      narrow ? [buffer addInt:value forOid:oid] : [buffer addInt64:value forOid:oid];
      return YES;
    }
    case FieldKind::Text: {
      const int before = [buffer getDataLen];
      [buffer addString:[NSString stringWithUTF8String:setting.value.c_str()] forOid:oid];
      return [buffer getDataLen] != before;
    }
    case FieldKind::Binary: {
      NSData* value = parseHex(setting.value);
      [buffer addBin:value forOid:oid];
      return [value length] != 0;
    }
  }
  return NO;
}

Bytes bytesOf(NSData* data) {
  return {static_cast<const unsigned char*>([data bytes]), [data length]};
}

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
  NSMutableString* text = [NSMutableString string];
  if (![buffer getString:text forOid:kAnswer]) {
    std::fprintf(stderr, "front end: the service said nothing\n");
    return EXIT_FAILURE;
  }
  std::printf("front end: the service says: %s\n", [text UTF8String]);
  return EXIT_SUCCESS;
}

int exchange(Channel& service, const std::vector<Setting>& settings, std::optional<long> damage) {
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
  if (damage && !damageMessage(message, *damage)) {
    std::fprintf(stderr, "front end: the message has only %lu bytes to damage\n",
                 static_cast<unsigned long>([message length]));
    return EXIT_FAILURE;
  }
  if (!service.send(bytesOf(message))) {
    std::fprintf(stderr, "front end: the service is gone\n");
    return EXIT_FAILURE;
  }
  return showAnswer(service);
}

}  // namespace

int runFrontEnd(Channel& service, const std::vector<Setting>& settings, std::optional<long> damage) {
  NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
  const int status = exchange(service, settings, damage);
  [pool release];
  return status;
}
