// The fields of a settings message and of its answer: OIDs, names, value kinds.
#ifndef EXCHANGE_FIELDS_H
#define EXCHANGE_FIELDS_H

#include <string_view>

enum class FieldKind { Integer, Integer64, Text, Binary, AddressRange, MacAddress, ByteRange, Password, Key };

// The bytes of the later kinds say little to people; each side reads them its own way.
constexpr bool needsReading(FieldKind kind) {
  return kind >= FieldKind::AddressRange;
}

struct Field {
  unsigned short oid;
  std::string_view name;
  FieldKind kind;
  bool setting;  // may be given by the user
};

constexpr unsigned short kInterval = 1;     // seconds between two connection checks
constexpr unsigned short kQuota = 2;        // bytes a month
constexpr unsigned short kProfile = 3;      // the profile's name
constexpr unsigned short kFingerprint = 4;  // of the gateway's certificate
constexpr unsigned short kToken = 5;        // proves the front end once; the service removes it
constexpr unsigned short kAddresses = 6;    // handed out by the gateway
constexpr unsigned short kAdapter = 7;      // the network adapter to use
constexpr unsigned short kChannels = 8;     // of the radio
constexpr unsigned short kPassword = 9;
constexpr unsigned short kKey = 10;
constexpr unsigned short kAnswer = 100;  // what the service has to say
constexpr unsigned short kCheck = 254;   // check sum of all bytes before this record

constexpr Field kFields[] = {
    {kInterval, "interval", FieldKind::Integer, true},
    {kQuota, "quota", FieldKind::Integer64, true},
    {kProfile, "profile", FieldKind::Text, true},
    {kFingerprint, "fingerprint", FieldKind::Binary, true},
    {kToken, "token", FieldKind::Text, true},
    {kAddresses, "addresses", FieldKind::AddressRange, true},
    {kAdapter, "adapter", FieldKind::MacAddress, true},
    {kChannels, "channels", FieldKind::ByteRange, true},
    {kPassword, "password", FieldKind::Password, true},
    {kKey, "key", FieldKind::Key, true},
    {kAnswer, "answer", FieldKind::Text, false},
    {kCheck, "check", FieldKind::Integer, false},
};

inline const Field* fieldByOid(unsigned short oid) {
  for (const Field& field : kFields) {
    if (field.oid == oid) {
      return &field;
    }
  }
  return nullptr;
}

#endif
