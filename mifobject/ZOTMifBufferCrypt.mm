#import "mifobject/ZOTMifBuffer.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "mif/Mif32.h"
#include "mifobject/FieldBytesInternal.h"
#import "mifobject/GroupTextInternal.h"
#include "mifobject/PasswordScrambling.h"
#import "mifobject/ZOTMifBufferInternal.h"
#include "os/WipeInternal.h"

using zot::kKeyForm;

namespace {

// Passwords leave nothing behind in memory that this file had for them.
struct WipeAndFree {
  void operator()(char* block) const {
    zotWipe(block, size);
    std::free(block);
  }
  size_t size;
};
using SecretBlock = std::unique_ptr<char, WipeAndFree>;

SecretBlock secretBlock(size_t size) {
  return {static_cast<char*>(std::malloc(size)), {size}};
}

struct SecretBuffer {
  ~SecretBuffer() { zotWipe(bytes, sizeof bytes); }
  unsigned char bytes[512] = {};
};

// The password in ISO 8859-1; null for nil and for a text that cannot be had so.
SecretBlock plain(NSString* password) {
  if (![password canBeConvertedToEncoding:NSISOLatin1StringEncoding]) {
    return {};
  }
  const NSUInteger size = [password maximumLengthOfBytesUsingEncoding:NSISOLatin1StringEncoding] + 1;
  SecretBlock text = secretBlock(size);
  const BOOL converted =
      text != nullptr && [password getCString:text.get() maxLength:size encoding:NSISOLatin1StringEncoding];
  return converted ? std::move(text) : SecretBlock();
}

// The stored form of a password, null when there is none.
SecretBlock scrambled(NSString* password) {
  const SecretBlock text = plain(password);
  if (text == nullptr) {
    return {};
  }
  // Room for a text of which every byte is escaped.
  SecretBlock stored = secretBlock(2 * std::strlen(text.get()) + 1);
  if (stored != nullptr) {
    EncryptPasw_20(text.get(), stored.get());
  }
  return stored;
}

}  // namespace

@implementation ZOTMifBuffer (CryptFields)

- (BOOL)addCryptStr:(NSString*)password forOid:(int)oid {
  const SecretBlock stored = scrambled(password);
  return stored != nullptr && mif32->AddStr(oid16(oid), stored.get()) != 0;
}

- (BOOL)updateCryptStr:(NSString*)password forOid:(int)oid {
  const SecretBlock stored = scrambled(password);
  return stored != nullptr && mif32->UpdStr(oid16(oid), stored.get(), 1) != 0;
}

- (BOOL)getCryptStr:(NSMutableString*)password forOid:(int)oid {
  SecretBuffer stored;
  SecretBuffer text;
  if (password == nil ||
      mif32->GetStr(oid16(oid), reinterpret_cast<char*>(stored.bytes), sizeof stored.bytes, 1) == 0 ||
      DeCryptPasw_20(text.bytes, stored.bytes, sizeof text.bytes) == 0) {
    return NO;
  }
  [password setString:[stringClass() stringWithCString:reinterpret_cast<const char*>(text.bytes)
                                              encoding:NSISOLatin1StringEncoding]];
  return YES;
}

- (BOOL)addCryptKey:(NSString*)key forOid:(int)oid {
  std::array<uint8_t, kKeyForm.count> value;
  if (!zot::groupBytes(kKeyForm, self, key, value.data())) {
    return NO;
  }
  [self addBin:[dataClass() dataWithBytes:value.data() length:value.size()] forOid:oid];
  return YES;
}

- (BOOL)getCryptKeyStr:(NSMutableString*)key forOid:(int)oid {
  std::array<uint8_t, kKeyForm.count> value;
  if (key == nil || !zot::readWhole(*mif32, oid16(oid), value)) {
    return NO;
  }
  [key setString:zot::groupText(kKeyForm, value.data())];
  return YES;
}

- (BOOL)splitCryptKeyStr:(NSString*)text IntoNumbersArray:(NSMutableArray*)numbers {
  return zot::splitGroups(kKeyForm, text, numbers);
}

@end
