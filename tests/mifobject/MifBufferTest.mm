#import "mifobject/ZOTMifBuffer.h"

#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <string>

#include "mif/Mif32.h"
#include "support/FailingHeap.h"
#include "tests/mif/MifBytes.h"
#include "tests/mifobject/ObjectFixture.h"

namespace {

NSString* latin1Text(const char* bytes) {
  return [NSString stringWithCString:bytes encoding:NSISOLatin1StringEncoding];
}

NSData* data(const std::string& bytes) {
  return [NSData dataWithBytes:bytes.data() length:bytes.size()];
}

class MifBuffer : public ObjectFixture {
 protected:
  std::string contents() {
    NSMutableData* all = [NSMutableData dataWithBytes:"old" length:3];
    [buffer getDataIntoBuffer:all];
    EXPECT_EQ([buffer getDataLen], static_cast<int>([all length]));
    return std::string(static_cast<const char*>([all bytes]), [all length]);
  }
};

TEST_F(MifBuffer, IsOneRecordBufferToTheRunTime) {
  unsigned int count = 0;
  Ivar* ivars = class_copyIvarList([ZOTMifBuffer class], &count);
  ASSERT_EQ(1u, count);
  EXPECT_STREQ("mif32", ivar_getName(ivars[0]));
  EXPECT_STREQ("^{Mif32=*IIcc}", ivar_getTypeEncoding(ivars[0]));
  free(ivars);
}

TEST_F(MifBuffer, IsNilWithoutMemoryForItsRecords) {
  const FailingHeap heap;
  EXPECT_EQ(nil, [[ZOTMifBuffer alloc] init]);
}

TEST_F(MifBuffer, AddsUnderOidsModulo65536) {
  EXPECT_EQ("", contents());
  [buffer addInt:[NSNumber numberWithInt:-2] forOid:65541];
  [buffer addInt64:[NSNumber numberWithUnsignedLongLong:5] forOid:6];
  [buffer addInt64:[NSNumber numberWithUnsignedLongLong:0x100000000] forOid:6 - 65536];
  [buffer addString:latin1Text("Stra\xDF" "e") forOid:7];
  [buffer addBin:data(std::string("\0x", 2)) forOid:8];
  [buffer addBin:data(std::string(65537, 'z')) forOid:9];
  const std::string records = rec(5, host(0xFFFFFFFE, 4)) + rec(6, host(5, 8).substr(0, 4)) +
                              rec(6, host(0x100000000, 8)) + rec(7, "Stra\xDF" "e") +
                              rec(8, std::string("\0x", 2)) + rec(9, "z");
  EXPECT_EQ(records, contents());
  [buffer addString:@"" forOid:-1];
  EXPECT_EQ(records + kEndKz, contents()) << "-1 is the end marker's OID";
  [buffer addEndKz];
  EXPECT_EQ(records + kEndKz, contents());
  EXPECT_TRUE([buffer delEndKz]);
  EXPECT_FALSE([buffer delEndKz]);
  EXPECT_TRUE([buffer delFirstOccurenceOfOid:65542]);
  EXPECT_FALSE([buffer delFirstOccurenceOfOid:10]);
  [buffer clearBuffer];
  EXPECT_EQ("", contents());
}

TEST_F(MifBuffer, RefusesNilAndUnrepresentableText) {
  NSString* euro = [NSString stringWithUTF8String:"10 \xE2\x82\xAC"];
  [buffer addInt:nil forOid:1];
  [buffer addInt64:nil forOid:1];
  [buffer addString:nil forOid:1];
  [buffer addString:euro forOid:1];
  [buffer addBin:nil forOid:1];
  [buffer setData:nil];
  [buffer getDataIntoBuffer:nil];
  EXPECT_FALSE([buffer updateInt:nil forOid:1]);
  EXPECT_FALSE([buffer updateInt64:nil forOid:1]);
  EXPECT_FALSE([buffer updateString:nil forOid:1]);
  EXPECT_FALSE([buffer updateString:euro forOid:1]);
  EXPECT_FALSE([buffer updateBin:nil forOid:1]);
  EXPECT_FALSE([buffer getBinData:nil forOid:1]);
  EXPECT_EQ(0, [buffer getDataLen]);

  const unichar zeroInside[] = {'a', 0, 'b'};
  [buffer addString:[NSString stringWithCharacters:zeroInside length:3] forOid:1];
  EXPECT_EQ(rec(1, "a"), contents()) << "an embedded zero ends the text";
}

TEST_F(MifBuffer, ReadsTheFirstOccurrenceAndLeavesTheCallersObjectsOnNo) {
  [buffer setData:data(rec(1, host(7, 4)) + rec(1, host(8, 4)) + rec(2, "\xE4\xF6") + rec(3, "") +
                       rec(4, std::string(511, 'x')) + rec(5, std::string(512, 'y')))];
  NSNumber* number = nil;
  EXPECT_TRUE([buffer getInt:&number forOid:65537]);
  EXPECT_EQ(7u, [number unsignedIntValue]);
  EXPECT_TRUE([buffer getInt64:&number forOid:1]);
  EXPECT_EQ(host(7, 4) + host(0, 4), host([number unsignedLongLongValue], 8));
  NSNumber* const before = number;
  EXPECT_FALSE([buffer getInt:&number forOid:9]);
  EXPECT_FALSE([buffer getInt64:&number forOid:9]);
  EXPECT_EQ(before, number);

  NSMutableString* text = [NSMutableString stringWithString:latin1Text("old")];
  EXPECT_TRUE([buffer getString:text forOid:2]);
  EXPECT_TRUE([text isEqualToString:latin1Text("\xE4\xF6")]);
  EXPECT_TRUE([buffer getString:text forOid:4]);
  EXPECT_EQ(511u, [text length]);
  EXPECT_FALSE([buffer getString:text forOid:5]) << "no room for the terminator";
  EXPECT_FALSE([buffer getString:text forOid:9]);
  EXPECT_EQ(511u, [text length]);
  EXPECT_TRUE([buffer getString:nil forOid:2]);

  NSMutableData* value = [NSMutableData dataWithBytes:"old" length:3];
  EXPECT_FALSE([buffer getBinData:value forOid:9]);
  EXPECT_EQ(3u, [value length]);
  EXPECT_TRUE([buffer getBinData:value forOid:5]);
  EXPECT_TRUE([value isEqualToData:data(std::string(512, 'y'))]);
  EXPECT_TRUE([buffer getBinData:value forOid:3]) << "an empty value exists";
  EXPECT_EQ(0u, [value length]);
}

TEST_F(MifBuffer, UpdatesSayNoWhenTheyAppend) {
  [buffer addEndKz];
  EXPECT_FALSE([buffer updateInt:[NSNumber numberWithInt:1] forOid:1]);
  EXPECT_FALSE([buffer updateInt64:[NSNumber numberWithInt:2] forOid:2]);
  EXPECT_FALSE([buffer updateString:latin1Text("three") forOid:3]);
  EXPECT_FALSE([buffer updateBin:data("four") forOid:4]);
  EXPECT_TRUE([buffer updateInt:[NSNumber numberWithInt:10] forOid:1]);
  EXPECT_TRUE([buffer updateInt64:[NSNumber numberWithUnsignedLongLong:0x200000000] forOid:2]);
  EXPECT_TRUE([buffer updateString:latin1Text("") forOid:3]);
  EXPECT_TRUE([buffer updateBin:data(std::string(65537, 'q')) forOid:4]);
  EXPECT_EQ(rec(1, host(10, 4)) + rec(2, host(0x200000000, 8)) + rec(3, "") + rec(4, "q") + kEndKz, contents());
}

TEST_F(MifBuffer, CutsLengthsAndShowsNoBytesOutsideTheBlock) {
  [buffer setData:data(std::string(70000, 'd'))];
  EXPECT_EQ(4464, [buffer getDataLen]);
  [buffer allocWithLen:65536 + 4];
  EXPECT_EQ(0, [buffer getDataLen]);
  [buffer setLen:65536 + 9];
  EXPECT_EQ(std::string(9, '\0'), contents());
}

}  // namespace
