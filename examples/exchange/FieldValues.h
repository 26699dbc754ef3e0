// Settings and readings of fields as Foundation values, through ZOTMifBuffer.
#ifndef EXCHANGE_FIELD_VALUES_H
#define EXCHANGE_FIELD_VALUES_H

#include "Message.h"
#include "Settings.h"
#import "mifobject/ZOTMifBuffer.h"

inline Bytes bytesOf(NSData* data) {
  return {static_cast<const unsigned char*>([data bytes]), [data length]};
}

// NO when the value is not what the field holds.
BOOL addSetting(ZOTMifBuffer* buffer, const Setting& setting);

// Prints the text of every address, range, password and key.
void printReadings(ZOTMifBuffer* buffer);

#endif
