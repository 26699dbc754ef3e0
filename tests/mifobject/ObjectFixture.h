// A buffer object of its own for each test, and its records as plain bytes.
#ifndef TESTS_OBJECT_FIXTURE_H
#define TESTS_OBJECT_FIXTURE_H

#import "mifobject/ZOTMifBuffer.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "tests/mif/MifBytes.h"

using Texts = std::initializer_list<NSString*>;

// The lowest-address bytes of the numbers, in the order given.
inline std::string fieldBytes(std::initializer_list<int> numbers) {
  std::string bytes;
  for (const int number : numbers) {
    bytes += host(static_cast<unsigned int>(number), 4)[0];
  }
  return bytes;
}

class ObjectFixture : public testing::Test {
 protected:
  ObjectFixture() : pool([[NSAutoreleasePool alloc] init]), buffer([[ZOTMifBuffer alloc] init]) {}

  ~ObjectFixture() override {
    [buffer release];
    [pool drain];
  }

  void add(int oid, const std::string& value) {
    [buffer addBin:[NSData dataWithBytes:value.data() length:value.size()] forOid:oid];
  }

  // The value of the first record with this OID, or "absent".
  std::string valueOf(int oid) {
    NSMutableData* data = [NSMutableData data];
    if (![buffer getBinData:data forOid:oid]) {
      return "absent";
    }
    return {static_cast<const char*>([data bytes]), [data length]};
  }

  NSAutoreleasePool* pool;
  ZOTMifBuffer* buffer;
};

#endif
