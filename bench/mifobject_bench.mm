// The object class beside a binary property list, Foundation's own compact form of a
// dictionary.
#import <Foundation/Foundation.h>

#include "Row.h"
#include "mifobject/ZOTMifBuffer.h"

namespace {

// An operation's autoreleased objects go with it, on both sides.
template <typename Operation>
void measureInPool(benchmark::State& state, Operation operation) {
  measure(state, [&] {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    operation();
    [pool release];
  });
}

// The values of ten fields, numbers, texts and bytes, and their keys in a property list.
struct Fields {
  NSNumber* numbers[4];
  NSNumber* wide;
  NSString* texts[3];
  NSData* bytes[2];
  NSString* keys[10];

  Fields() {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    for (int i = 0; i < 4; ++i) {
      numbers[i] = [[NSNumber alloc] initWithInt:90000 + i];
    }
    wide = [[NSNumber alloc] initWithLongLong:0x123456789LL];
    texts[0] = [[NSString alloc] initWithUTF8String:"charlotte"];
    texts[1] = [[NSString alloc] initWithUTF8String:"gateway-03.example.net"];
    texts[2] = [[NSString alloc] initWithUTF8String:"Building 7, second floor"];
    bytes[0] = [[NSData alloc] initWithBytes:"0123456789abcdef" length:16];
    bytes[1] = [[NSData alloc] initWithBytes:"\xC0\xA8\x64\x01" length:4];
    for (int i = 0; i < 10; ++i) {
      keys[i] = [[NSString alloc] initWithFormat:@"%d", i + 1];
    }
    [pool release];
  }
};

void add(ZOTMifBuffer* buffer, const Fields& from) {
  for (int i = 0; i < 4; ++i) {
    [buffer addInt:from.numbers[i] forOid:i + 1];
  }
  [buffer addInt64:from.wide forOid:5];
  for (int i = 0; i < 3; ++i) {
    [buffer addString:from.texts[i] forOid:i + 6];
  }
  [buffer addBin:from.bytes[0] forOid:9];
  [buffer addBin:from.bytes[1] forOid:10];
}

NSDictionary* dictionaryOf(const Fields& from) {
  NSMutableDictionary* dictionary = [NSMutableDictionary dictionaryWithCapacity:10];
  for (int i = 0; i < 4; ++i) {
    [dictionary setObject:from.numbers[i] forKey:from.keys[i]];
  }
  [dictionary setObject:from.wide forKey:from.keys[4]];
  for (int i = 0; i < 3; ++i) {
    [dictionary setObject:from.texts[i] forKey:from.keys[i + 5]];
  }
  [dictionary setObject:from.bytes[0] forKey:from.keys[8]];
  [dictionary setObject:from.bytes[1] forKey:from.keys[9]];
  return dictionary;
}

NSData* propertyListOf(NSDictionary* dictionary) {
  return [NSPropertyListSerialization dataFromPropertyList:dictionary
                                                    format:NSPropertyListBinaryFormat_v1_0
                                          errorDescription:NULL];
}

// Ten Foundation values into an object with all bytes of the message.
void encode(benchmark::State& state) {
  const Fields from;
  NSMutableData* bytes = [[NSMutableData alloc] init];
  measureInPool(state, [&] {
    ZOTMifBuffer* buffer = [[ZOTMifBuffer alloc] init];
    add(buffer, from);
    [buffer getDataIntoBuffer:bytes];
    [buffer release];
    benchmark::DoNotOptimize([bytes bytes]);
  });
  require([bytes length] > 100, "encode");
}

void encodePropertyList(benchmark::State& state) {
  const Fields from;
  measureInPool(state, [&] { benchmark::DoNotOptimize([propertyListOf(dictionaryOf(from)) bytes]); });
}

BENCHMARK(encode)->Name("object_encode/ours");
BENCHMARK(encodePropertyList)->Name("object_encode/property_list");

// Ten Foundation values out of the bytes.
void decode(benchmark::State& state) {
  const Fields from;
  NSMutableData* bytes = [[NSMutableData alloc] init];
  ZOTMifBuffer* source = [[ZOTMifBuffer alloc] init];
  add(source, from);
  [source getDataIntoBuffer:bytes];
  NSMutableString* texts[3];
  NSMutableData* values[2];
  for (NSMutableString*& text : texts) {
    text = [[NSMutableString alloc] init];
  }
  for (NSMutableData*& value : values) {
    value = [[NSMutableData alloc] init];
  }
  measureInPool(state, [&] {
    ZOTMifBuffer* buffer = [[ZOTMifBuffer alloc] init];
    [buffer setData:bytes];
    NSNumber* number = nil;
    for (int oid = 1; oid <= 4; ++oid) {
      [buffer getInt:&number forOid:oid];
      benchmark::DoNotOptimize(number);
    }
    [buffer getInt64:&number forOid:5];
    benchmark::DoNotOptimize(number);
    for (int i = 0; i < 3; ++i) {
      [buffer getString:texts[i] forOid:i + 6];
    }
    [buffer getBinData:values[0] forOid:9];
    [buffer getBinData:values[1] forOid:10];
    [buffer release];
  });
  require([texts[2] isEqualToString:from.texts[2]] && [values[0] isEqualToData:from.bytes[0]], "decode");
}

void decodePropertyList(benchmark::State& state) {
  const Fields from;
  NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
  NSData* bytes = [propertyListOf(dictionaryOf(from)) retain];
  [pool release];
  measureInPool(state, [&] {
    NSDictionary* dictionary = [NSPropertyListSerialization propertyListFromData:bytes
                                                                mutabilityOption:NSPropertyListImmutable
                                                                          format:NULL
                                                                errorDescription:NULL];
    for (NSString* key : from.keys) {
      benchmark::DoNotOptimize([dictionary objectForKey:key]);
    }
  });
}

BENCHMARK(decode)->Name("object_decode/ours");
BENCHMARK(decodePropertyList)->Name("object_decode/property_list");

}  // namespace
