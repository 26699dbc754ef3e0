#include <string>
#include <utility>

#include "tests/mifobject/ObjectFixture.h"

namespace {

using std::string_literals::operator""s;

std::string sent;

}  // namespace

// Notes what it is sent; its IPv4 split refuses what it has split.
@interface WatchingBuffer : ZOTMifBuffer
@end

@implementation WatchingBuffer

- (BOOL)splitIpStr:(NSString*)text IntoNumbersArray:(NSMutableArray*)numbers {
  sent += "ip ";
  [super splitIpStr:text IntoNumbersArray:numbers];
  return NO;
}

- (BOOL)splitMacStr:(NSString*)text IntoNumbersArray:(NSMutableArray*)numbers {
  sent += "mac ";
  return [super splitMacStr:text IntoNumbersArray:numbers];
}

- (BOOL)splitCryptKeyStr:(NSString*)text IntoNumbersArray:(NSMutableArray*)numbers {
  sent += "key ";
  return [super splitCryptKeyStr:text IntoNumbersArray:numbers];
}

- (void)addBin:(NSData*)data forOid:(int)oid {
  sent += data != nil ? "add " : "nil ";
  [super addBin:data forOid:oid];
}

- (BOOL)updateBin:(NSData*)data forOid:(int)oid {
  sent += data != nil ? "update " : "nil ";
  return [super updateBin:data forOid:oid];
}

@end

namespace {

class RangeFields : public ObjectFixture {
 protected:
  std::pair<std::string, std::string> texts() const { return {[first UTF8String], [second UTF8String]}; }

  NSMutableString* first = [NSMutableString stringWithString:@"before"];
  NSMutableString* second = [NSMutableString stringWithString:@"before"];
};

TEST_F(RangeFields, OneIpIsParsedLooselyAndRefusedOnlyAsText) {
  EXPECT_EQ(YES, [buffer addIp:@"10.1" forOid:1]);
  EXPECT_EQ(fieldBytes({0, 0, 1, 10}), valueOf(1));
  EXPECT_EQ(YES, [buffer updateIp:@"1234.5.6.7.8" forOid:1]);
  EXPECT_EQ(fieldBytes({7, 6, 5, 12345}), valueOf(1));
  EXPECT_EQ(NO, [buffer updateIp:@"" forOid:2]) << "appended, so not replaced";
  EXPECT_EQ(fieldBytes({0, 0, 0, 0}), valueOf(2));

  EXPECT_EQ(YES, [buffer addIp:@"192.168.1.254 " forOid:4]);
  EXPECT_EQ(fieldBytes({254, 1, 168, 192}), valueOf(4)) << "what has no room is dropped";

  for (NSString* text : Texts{nil, @"1.2.3.\u00e4"}) {
    EXPECT_EQ(NO, [buffer addIp:text forOid:3]);
    EXPECT_EQ(NO, [buffer updateIp:text forOid:1]);
  }
  EXPECT_EQ("absent", valueOf(3));
  EXPECT_EQ(fieldBytes({7, 6, 5, 12345}), valueOf(1));
}

TEST_F(RangeFields, AddressRangesWantTheExactCountOfGroups) {
  const struct {
    bool mac;
    NSString* from;
    NSString* to;
    std::string value;  // empty when refused
  } cases[] = {
      {false, @"10.0.0.1", @"10.0.0.254", fieldBytes({1, 0, 0, 10, 254, 0, 0, 10})},
      {false, @"300. 7.-1x.", nil, fieldBytes({0, -1, 7, 300, 0, -1, 7, 300})},
      {false, @"10.0.0", @"10.0.0.1", ""},
      {false, @"10.0.0.1", @"10.0.0.1.2", ""},
      {false, @"1:2:3:4", nil, ""},
      {false, nil, @"10.0.0.1", ""},
      {true, @"1:2.3:4.5:6", @"7.8.9.a.0xB.1FF", fieldBytes({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 0x1FF})},
      // A group without digits repeats the one before it; the first one is 0.
      {true, @"x:1a:: 2B.x.FFFFFFFF", nil, fieldBytes({0, 26, 26, 43, 43, -1, 0, 26, 26, 43, 43, -1})},
      {true, @"00-11-22-33-44-55", nil, ""},
      {true, @"1:2:3:4:5:6", @"1:2:3:4:5:6:7", ""},
  };
  int oid = 0;
  for (const auto& c : cases) {
    SCOPED_TRACE(++oid);
    const BOOL taken = !c.value.empty();
    const int updated = 100 + oid;
    if (c.mac) {
      EXPECT_EQ(taken, [buffer addMacAddrRangeFrom:c.from to:c.to forOid:oid]);
      EXPECT_EQ(taken, [buffer updateMacAddrRangeFrom:c.from to:c.to forOid:updated]) << "appended";
    } else {
      EXPECT_EQ(taken, [buffer addIPRangeFrom:c.from to:c.to forOid:oid]);
      EXPECT_EQ(taken, [buffer updateIPRangeFrom:c.from to:c.to forOid:updated]) << "appended";
    }
    EXPECT_EQ(taken ? c.value : "absent", valueOf(oid));
    EXPECT_EQ(taken ? c.value : "absent", valueOf(updated));
  }
  [buffer updateIPRangeFrom:@"1.2.3.4" to:nil forOid:101];
  EXPECT_EQ(fieldBytes({4, 3, 2, 1, 4, 3, 2, 1}), valueOf(101)) << "replaced";
}

TEST_F(RangeFields, TextsGoThroughThePublicSelectorsAndRefusedValuesNowhere) {
  WatchingBuffer* const watching = [[[WatchingBuffer alloc] init] autorelease];
  NSString* const ip = @"1.2.3.4";
  NSString* const mac = @"1:2:3:4:5:6";
  const auto heard = [](BOOL answer) { return (answer ? "YES " : "NO ") + std::exchange(sent, ""); };
  EXPECT_EQ("YES ip add ", heard([watching addIPRangeFrom:ip to:nil forOid:1])) << "only the count is asked";
  EXPECT_EQ("NO ip ip ", heard([watching updateIPRangeFrom:ip to:ip forOid:1])) << "and here the answer, too";
  EXPECT_EQ("NO ip ", heard([watching addIPRangeFrom:@"1.2.3" to:ip forOid:1]));
  EXPECT_EQ("NO ", heard([watching updateIPRangeFrom:nil to:ip forOid:1]));
  EXPECT_EQ("YES mac mac update ", heard([watching updateMacAddrRangeFrom:mac to:mac forOid:1]));
  EXPECT_EQ("YES mac add ", heard([watching addMacAddr:mac forOid:1]));
  EXPECT_EQ("NO mac ", heard([watching addMacAddr:ip forOid:1]));
  EXPECT_EQ("NO key ", heard([watching addCryptKey:mac forOid:1]));
  EXPECT_EQ("NO ", heard([watching addIp:nil forOid:1]));
  EXPECT_EQ("NO ", heard([watching updateIp:@"\u00e4" forOid:1]));
  EXPECT_EQ("YES update ", heard([watching updateIp:@"" forOid:1])) << "the record added first";
}

TEST_F(RangeFields, OneMacAddressAndNumberRanges) {
  EXPECT_EQ(YES, [buffer addMacAddr:@"00.1A:2b.3c:4D.5e" forOid:1]);
  EXPECT_EQ(fieldBytes({0, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E}), valueOf(1));
  EXPECT_EQ(NO, [buffer addMacAddr:@"1:2:3:4:5:6:" forOid:9]);
  EXPECT_EQ(NO, [buffer addMacAddr:nil forOid:9]);

  NSNumber* const seven = [NSNumber numberWithInt:7];
  NSNumber* const large = [NSNumber numberWithInt:65536 + 0x1234];
  EXPECT_EQ(YES, [buffer addWordRangeFrom:seven to:large forOid:2]);
  EXPECT_EQ(host(7, 2) + host(0x1234, 2), valueOf(2));
  EXPECT_EQ(YES, [buffer addByteRangeFrom:seven to:large forOid:3]);
  EXPECT_EQ((std::string{host(7, 2)[0], host(0x1234, 2)[0]}), valueOf(3));
  EXPECT_EQ(NO, [buffer addWordRangeFrom:nil to:seven forOid:9]);
  EXPECT_EQ(NO, [buffer addWordRangeFrom:seven to:nil forOid:9]);
  EXPECT_EQ(NO, [buffer addByteRangeFrom:nil to:seven forOid:9]);
  EXPECT_EQ(NO, [buffer addByteRangeFrom:seven to:nil forOid:9]);
  EXPECT_EQ("absent", valueOf(9));
}

TEST_F(RangeFields, GettersWantTheExactLengthAndAllTargets) {
  const std::string bytes = "\x14\x01\xA8\xC0\xFE\x01\xA8\xC0\x05\xC8\x00\xFF!"s;
  NSNumber* from = nil;
  NSNumber* to = nil;
  for (int length = 0; length <= 13; ++length) {
    SCOPED_TRACE(length);
    add(length, bytes.substr(0, static_cast<size_t>(length)));
    EXPECT_TRUE(length == 2 || ![buffer getByteRangeNumber:&from end:&to forOid:length]);
    EXPECT_TRUE(length == 6 || ![buffer getMacAddr:first forOid:length]);
    EXPECT_TRUE(length == 8 || ![buffer getIpRangeStr:first end:second forOid:length]);
    EXPECT_TRUE(length == 12 || ![buffer getMacAddrRangeStr:first end:second forOid:length]);
  }
  EXPECT_EQ(NO, [buffer getByteRangeNumber:nullptr end:&to forOid:2]);
  EXPECT_EQ(NO, [buffer getByteRangeNumber:&from end:nullptr forOid:2]);
  EXPECT_EQ(NO, [buffer getMacAddr:nil forOid:6]);
  EXPECT_EQ(NO, [buffer getIpRangeStr:nil end:second forOid:8]);
  EXPECT_EQ(NO, [buffer getMacAddrRangeStr:first end:nil forOid:12]);
  EXPECT_EQ(NO, [buffer getIpStr:first forOid:99]);
  EXPECT_EQ((std::pair{"before"s, "before"s}), texts());
  EXPECT_TRUE(from == nil && to == nil);

  EXPECT_EQ(YES, [buffer getByteRangeNumber:&from end:&to forOid:2]);
  EXPECT_EQ(20u, [from unsignedIntValue]);
  EXPECT_EQ(1u, [to unsignedIntValue]);
  EXPECT_EQ(YES, [buffer getIpRangeStr:first end:second forOid:65536 + 8]);
  EXPECT_EQ((std::pair{"192.168.1.20"s, "192.168.1.254"s}), texts());
  EXPECT_EQ(YES, [buffer getMacAddrRangeStr:first end:second forOid:12]);
  EXPECT_EQ((std::pair{"14.01.A8.C0.FE.01"s, "A8.C0.05.C8.00.FF"s}), texts());
  EXPECT_EQ(YES, [buffer getMacAddr:second forOid:6]);
  EXPECT_EQ(YES, [buffer getIpStr:first forOid:8]) << "a longer value shows its first address";
  EXPECT_EQ((std::pair{"192.168.1.20"s, "14.01.A8.C0.FE.01"s}), texts());
  EXPECT_EQ(YES, [buffer getIpStr:first forOid:2]) << "missing bytes read as 0";
  EXPECT_EQ("0.0.1.20", texts().first);
  EXPECT_EQ(YES, [buffer getIpStr:nil forOid:2]);
}

TEST_F(RangeFields, SplitMethodsAppendAndLeaveTheRestAlone) {
  NSMutableArray* numbers = [NSMutableArray array];
  NSString* const key = @"::5:x:0x1F:6:7:8:9:A:B:C:D:E:F:FFFFFFFF";
  EXPECT_EQ(YES, [buffer splitIpStr:@"300.-2.x.1000000" IntoNumbersArray:numbers]);
  EXPECT_EQ(YES, [buffer splitMacStr:@"x:fF.3:G:1234567:7" IntoNumbersArray:numbers]);
  EXPECT_EQ(YES, [buffer splitCryptKeyStr:key IntoNumbersArray:numbers]);
  EXPECT_EQ(NO, [buffer splitMacStr:@"1.2.3.4" IntoNumbersArray:numbers]);
  EXPECT_EQ(NO, [buffer splitCryptKeyStr:@"1.2.3.4.5.6" IntoNumbersArray:numbers]);
  EXPECT_EQ(NO, [buffer splitMacStr:nil IntoNumbersArray:numbers]);
  EXPECT_EQ(NO, [buffer splitIpStr:@"1.2.3.4" IntoNumbersArray:nil]);
  EXPECT_STREQ("300 -2 0 1000000 0 255 3 3 19088743 7 0 0 5 5 31 6 7 8 9 10 11 12 13 14 15 4294967295",
               [[numbers componentsJoinedByString:@" "] UTF8String]);
}

}  // namespace
