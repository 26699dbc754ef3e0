// The messages that window and service exchange, as MIF records; a stored profile is
// the same.  Plain C++: the service knows no Foundation.
#ifndef DEMO_PROFILE_FORMAT_H
#define DEMO_PROFILE_FORMAT_H

#include <cstdint>
#include <span>
#include <vector>

using Bytes = std::span<const unsigned char>;
using Message = std::vector<unsigned char>;

enum Oid : unsigned short {
  kOidRequest = 1,    // integer: Request; the first record of what the window sends
  kOidOutcome = 2,    // integer: Outcome; the first record of an answer
  kOidFaulty = 3,     // integer: the OID of the field that was refused
  kOidRevision = 4,   // 64-bit integer: how often the profile was stored; in answer and file
  kOidName = 20,      // text, 1 to 63 bytes
  kOidGateway = 21,   // IPv4 address, last byte first
  kOidRange = 22,     // two IPv4 addresses, each last byte first
  kOidAdapter = 23,   // MAC address
  kOidPorts = 24,     // two 16-bit numbers
  kOidPassword = 25,  // scrambled text
  kOidKey = 26,       // 16 bytes
  kOidOptions = 27    // integer: bits
};

constexpr unsigned int kOptionCount = 3;
constexpr size_t kLongestName = 63;
constexpr size_t kLargestMessage = 4096;

enum Request : uint32_t {
  kRequestRead = 1,    // answer the stored profile
  kRequestApply = 2,   // store this one
  kRequestConnect = 3  // store this one and connect
};

// What became of a message; a window's own outcomes never travel.
enum Outcome : uint32_t {
  kApplied = 1,
  kConnected = 2,
  kRefused = 3,
  kNotStored = 4,
  kRead = 5,  // the stored profile follows, if there is one
  kSending = 10,
  kNoService = 11,
  kNoAnswer = 12,
  kNonsense = 13,
  kFaultyFields = 14,
  kSecondWindow = 15
};

// What is wrong with a field.  Its form is told in the field's own words.
enum Fault { kNoFault = 0, kFaultForm = 1, kFaultMissing = 2, kFaultOrder = 3, kFaultCharacters = 4 };

// Whole records up to an end marker that is the last two bytes, no OID twice.
bool isSound(Bytes message);

// The value of an integer record; nothing but 0 when there is none of four bytes.
uint32_t integerIn(Bytes message, Oid oid);

// The OID of the first field of a sound message that a profile may not have so, 0 when
// all is well.  OIDs below kOidName are not looked at.
unsigned short faultyFieldOf(Bytes message);

#endif
