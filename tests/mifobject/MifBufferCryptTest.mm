#include <string>

#include "support/FailingHeap.h"
#include "support/WatchedFrees.h"
#include "tests/mifobject/ObjectFixture.h"

namespace {

using std::string_literals::operator""s;

class CryptFields : public ObjectFixture {
 protected:
  std::string passwordOf(int oid) {
    NSMutableString* text = [NSMutableString stringWithString:@"unchanged"];
    const BOOL read = [buffer getCryptStr:text forOid:oid];
    EXPECT_EQ(read, ![text isEqualToString:@"unchanged"]);
    return [text UTF8String];
  }
};

TEST_F(CryptFields, PasswordsAreStoredScrambled) {
  EXPECT_EQ(YES, [buffer addCryptStr:@"secret" forOid:1]);
  EXPECT_EQ(";\xFE*\xFE/\xFE>\xFE*\xFE#", valueOf(1));
  EXPECT_EQ("secret", passwordOf(65536 + 1));
  EXPECT_EQ(YES, [buffer updateCryptStr:@"Gr\u00fc\u00dfe" forOid:1]);
  EXPECT_EQ("\xFE/\xFE=\x90\xB3\xFE*", valueOf(1));
  EXPECT_EQ("Gr\xC3\xBC\xC3\x9F" "e", passwordOf(1));
  EXPECT_EQ(NO, [buffer updateCryptStr:@"hO" forOid:2]) << "appended, so not replaced";
  EXPECT_EQ("  ", valueOf(2));

  NSString* const euro = @"\u20ac";
  EXPECT_EQ(NO, [buffer addCryptStr:euro forOid:3]);
  EXPECT_EQ(NO, [buffer updateCryptStr:euro forOid:1]);
  EXPECT_EQ(NO, [buffer addCryptStr:nil forOid:3]);
  EXPECT_EQ(NO, [buffer updateCryptStr:nil forOid:1]);
  {
    const FailingHeap heap;
    EXPECT_EQ(NO, [buffer addCryptStr:@"other" forOid:3]);
  }
  EXPECT_EQ("absent", valueOf(3));
  EXPECT_EQ("\xFE/\xFE=\x90\xB3\xFE*", valueOf(1));
}

TEST_F(CryptFields, LeaveNoPasswordInFreedMemory) {
  for (const char* form : {"hush hush", " \xFE:\xFE?\xFE$O\xFE?U!\xFE-"}) {
    WatchedFrees frees(form);
    EXPECT_EQ(YES, [buffer addCryptStr:@"hush hush" forOid:1]);
    EXPECT_EQ(YES, [buffer updateCryptStr:@"hush hush" forOid:1]);
    EXPECT_NE(0u, frees.freed);
    EXPECT_EQ(0u, frees.found);
    EXPECT_NE(std::string::npos, valueOf(1).find("\xFE"));
    EXPECT_EQ("hush hush", passwordOf(1));
  }
}

TEST_F(CryptFields, SomePasswordsReadBackChangedOrNotAtAll) {
  EXPECT_EQ(YES, [buffer addCryptStr:@"\u00b6A" forOid:1]);
  EXPECT_EQ("F", passwordOf(1)) << "a bare marker takes the next byte along";
  EXPECT_EQ(YES, [buffer addCryptStr:@"" forOid:2]);
  EXPECT_EQ("", valueOf(2));
  EXPECT_EQ("unchanged", passwordOf(2));
  EXPECT_EQ("unchanged", passwordOf(3));
  EXPECT_EQ(NO, [buffer getCryptStr:nil forOid:1]);

  // The key's own characters are all escaped but for the last of each 20.
  NSString* const key = @"Hollow Reed Tanners.";
  NSString* const worst = [@"" stringByPaddingToLength:300 withString:key startingAtIndex:0];
  EXPECT_EQ(YES, [buffer addCryptStr:worst forOid:4]);
  EXPECT_EQ(15u * 39, valueOf(4).size());
  EXPECT_EQ("unchanged", passwordOf(4)) << "more than 511 bytes";
}

TEST_F(CryptFields, KeysHaveSixteenGroups) {
  NSString* const fifteen = @"0:11.22:33.44:55:66.77.88:99:aA.Bb:cc:DD.ee";
  EXPECT_EQ(YES, [buffer addCryptKey:[fifteen stringByAppendingString:@":ff"] forOid:1]);
  EXPECT_EQ(fieldBytes({0, 17, 34, 51, 68, 85, 102, 119, 136, 153, 170, 187, 204, 221, 238, 255}),
            valueOf(1));
  EXPECT_EQ(NO, [buffer addCryptKey:fifteen forOid:3]);
  EXPECT_EQ(NO, [buffer addCryptKey:[fifteen stringByAppendingString:@":ff:"] forOid:3]);
  EXPECT_EQ(NO, [buffer addCryptKey:nil forOid:3]);
  EXPECT_EQ("absent", valueOf(3));

  NSMutableString* text = [NSMutableString string];
  add(16, "\x00\x11\x22\x33\x44\x55\x66\x77\x88\x99\xAA\xBB\xCC\xDD\xEE\xFF"s);
  add(17, valueOf(16) + "x");
  EXPECT_EQ(YES, [buffer getCryptKeyStr:text forOid:16]);
  EXPECT_EQ(NO, [buffer getCryptKeyStr:text forOid:17]);
  EXPECT_EQ(NO, [buffer getCryptKeyStr:nil forOid:16]);
  EXPECT_STREQ("00.11.22.33.44.55.66.77.88.99.AA.BB.CC.DD.EE.FF", [text UTF8String]);
}

}  // namespace
