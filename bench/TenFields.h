// A message of ten typed fields, as ours and as msgpack and protobuf write it.
// Part of mif_bench.cpp, whose top says why it is in an unnamed namespace.
#ifndef ZOT_BENCH_TEN_FIELDS_H
#define ZOT_BENCH_TEN_FIELDS_H

#include <string>

#include "MsgpackBuffers.h"
#include "ipaddr/ZotIpAddr.h"
#include "mif/Mif32.h"
#include "settings.pb.h"

namespace {

enum Oid : unsigned short {
  kMode = 1,
  kTimeout,
  kReceived,
  kUser,
  kHost,
  kKey,
  kChanged,
  kGateway,
  kServer,
  kFlags
};

constexpr unsigned char kKeyBytes[16] = {9, 8, 7, 6, 5, 4, 3, 2, 1, 0, 11, 12, 13, 14, 15, 16};
constexpr unsigned char kGatewayBytes[4] = {192, 168, 100, 1};
constexpr unsigned char kServerBytes[16] = {0x20, 1, 0xd, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 7};

// What a program holds before it sends; all sides read from the same one.
struct Settings {
  unsigned int mode = 3;
  unsigned int timeout = 90'000;
  unsigned long long received = 0x1'2345'6789;
  const char* user = "charlotte";
  const char* host = "gateway-03.example.net";
  const unsigned char* key = kKeyBytes;
  long changed = 1'700'000'000;
  ZotIpAddr gateway{kGatewayBytes, sizeof kGatewayBytes};
  ZotIpAddr server{kServerBytes, sizeof kServerBytes};
  unsigned int flags = 0xC0000001;
};

void encode(Mif32& mif, Settings& from) {
  mif.AddInt(kMode, from.mode);
  mif.AddInt(kTimeout, from.timeout);
  mif.AddInt64(kReceived, from.received);
  mif.AddStr(kUser, from.user);
  mif.AddStr(kHost, from.host);
  mif.AddBin(kKey, from.key, sizeof kKeyBytes);
  mif.AddTime(kChanged, from.changed);
  mif.AddIpAddr(kGateway, &from.gateway);
  mif.AddIpAddr(kServer, &from.server);
  mif.AddInt(kFlags, from.flags);
}

// A map from number to value, which is how a reader finds fields by their OID.
template <typename Buffer>
void encode(Buffer& buffer, const Settings& from) {
  typename Buffer::Packer packer(buffer);
  packer.map(10);
  packer.key(kMode).number(from.mode);
  packer.key(kTimeout).number(from.timeout);
  packer.key(kReceived).wide(from.received);
  packer.key(kUser).text(from.user);
  packer.key(kHost).text(from.host);
  packer.key(kKey).bytes(from.key, sizeof kKeyBytes);
  packer.key(kChanged).wide(static_cast<uint64_t>(from.changed));
  packer.key(kGateway).bytes(kGatewayBytes, sizeof kGatewayBytes);
  packer.key(kServer).bytes(kServerBytes, sizeof kServerBytes);
  packer.key(kFlags).number(from.flags);
}

void assign(std::string* to, const unsigned char* bytes, size_t size) {
  to->assign(reinterpret_cast<const char*>(bytes), size);
}

// Assigned in place: set_host() and the like make a string that they throw away.
void fill(bench::Settings& message, const Settings& from) {
  message.set_mode(from.mode);
  message.set_timeout(from.timeout);
  message.set_received(from.received);
  message.mutable_user()->assign(from.user);
  message.mutable_host()->assign(from.host);
  assign(message.mutable_key(), from.key, sizeof kKeyBytes);
  message.set_changed(from.changed);
  assign(message.mutable_gateway(), kGatewayBytes, sizeof kGatewayBytes);
  assign(message.mutable_server(), kServerBytes, sizeof kServerBytes);
  message.set_flags(from.flags);
}

}  // namespace

#endif
