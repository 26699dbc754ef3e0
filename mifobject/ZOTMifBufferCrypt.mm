#import "mifobject/ZOTMifBuffer.h"

#include <array>
#include <cstdlib>
#include <cstring>

#include "mif/Mif32.h"
#include "mifobject/FieldBytesInternal.h"
#import "mifobject/GroupTextInternal.h"
#include "mifobject/PasswordScrambling.h"
#import "mifobject/ZOTMifBufferInternal.h"
#include "os/MallocedInternal.h"

using zot::kKeyForm;

namespace {

using Block = Malloced<char>;

// The stored form of a password, null when there is none.
Block scrambled(NSString* password) {
  const char* text = latin1(password);
  if (text == nullptr) {
    return nullptr;
  }
  // Room for a text of which every byte is escaped.
  Block stored(static_cast<char*>(std::malloc(2 * std::strlen(text) + 1)));
  if (stored != nullptr) {
    EncryptPasw_20(const_cast<char*>(text), stored.get());
  }
  return stored;
}

}  // namespace

@implementation ZOTMifBuffer (CryptFields)

- (BOOL)addCryptStr:(NSString*)password forOid:(int)oid {
  const Block stored = scrambled(password);
  return stored != nullptr && mif32->AddStr(oid16(oid), stored.get()) != 0;
}

- (BOOL)updateCryptStr:(NSString*)password forOid:(int)oid {
  const Block stored = scrambled(password);
  return stored != nullptr && mif32->UpdStr(oid16(oid), stored.get(), 1) != 0;
}

- (BOOL)getCryptStr:(NSMutableString*)password forOid:(int)oid {
  unsigned char stored[512] = {};
  unsigned char text[512] = {};
  if (password == nil || mif32->GetStr(oid16(oid), reinterpret_cast<char*>(stored), sizeof stored, 1) == 0 ||
      DeCryptPasw_20(text, stored, sizeof text) == 0) {
    return NO;
  }
  [password setString:[NSString stringWithCString:reinterpret_cast<const char*>(text)
                                         encoding:NSISOLatin1StringEncoding]];
  return YES;
}

- (BOOL)addCryptKey:(NSString*)key forOid:(int)oid {
  std::array<uint8_t, kKeyForm.count> value;
  if (!zot::groupBytes(kKeyForm, key, value.data())) {
    return NO;
  }
  [self addBin:[NSData dataWithBytes:value.data() length:value.size()] forOid:oid];
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
