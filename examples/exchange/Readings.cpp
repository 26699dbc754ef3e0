#include "Readings.h"

#include <cstdio>
#include <optional>

#include "mif/zotmif.h"
#include "mifobject/PasswordScrambling.h"

namespace {

std::optional<std::string> rangeText(Bytes message, const Field& field, int asAddresses) {
  char text[256];
  const auto length = static_cast<unsigned int>(message.size());
  if (zotmifGetRangeValuesAsString(message.data(), length, field.oid, text, sizeof text, asAddresses) == 0) {
    return std::nullopt;
  }
  return text;
}

std::optional<std::string> groupsText(Bytes message, const Field& field, unsigned int count) {
  const unsigned char* value = nullptr;
  unsigned int length = 0;
  if (zotmifGetBinDataPtr(message.data(), static_cast<unsigned int>(message.size()), field.oid, &value,
                          &length, 1) == 0 ||
      length != count) {
    return std::nullopt;
  }
  std::string text;
  for (const unsigned char byte : Bytes(value, count)) {
    char group[4];
    std::snprintf(group, sizeof group, text.empty() ? "%02X" : ".%02X", byte);
    text += group;
  }
  return text;
}

std::optional<std::string> passwordText(Bytes message, const Field& field) {
  char stored[512];
  unsigned char password[512];
  if (zotmifGetStr(message.data(), static_cast<unsigned int>(message.size()), field.oid, stored,
                   sizeof stored, 1) == 0) {
    return std::nullopt;
  }
  const unsigned short length =
      DeCryptPasw_20(password, reinterpret_cast<unsigned char*>(stored), sizeof password);
  return quotedText({password, length});
}

std::optional<std::string> readingOf(Bytes message, const Field& field) {
  switch (field.kind) {
    case FieldKind::AddressRange:
      return rangeText(message, field, 1);
    case FieldKind::ByteRange:
      return rangeText(message, field, 0);
    case FieldKind::MacAddress:
      return groupsText(message, field, 6);
    case FieldKind::Key:
      return groupsText(message, field, 16);
    case FieldKind::Password:
      return passwordText(message, field);
    default:
      return std::nullopt;
  }
}

}  // namespace

void printReadings(Bytes message) {
  std::printf("service: read from the bytes\n");
  for (const Field& field : kFields) {
    const bool there = zotmifGetBinDataPtr(message.data(), static_cast<unsigned int>(message.size()),
                                           field.oid, nullptr, nullptr, 1) != 0;
    if (there && needsReading(field.kind)) {
      printReading(field, readingOf(message, field).value_or("(not in the form of this field)"));
    }
  }
  std::putchar('\n');
  std::fflush(stdout);
}
