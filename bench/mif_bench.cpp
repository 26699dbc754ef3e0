// Records beside msgpack and protobuf, which carry the same fields in about as many bytes.
// msgpack comes twice: as the C library, msgpack-c, which hands every item to its buffer
// through a function pointer, and as C++ headers, which the compiler sees through.
#include "mif/Mif32.h"

#include <msgpack.h>

#include <msgpack.hpp>
#include <string>
#include <string_view>

#include "Row.h"
#include "ipaddr/ZotIpAddr.h"
#include "mif/MifRecord.h"
#include "mif/zotmif.h"
#include "settings.pb.h"

namespace {

// ---- Ten typed fields ----

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

// The two msgpacks with one set of names.
class PackerC {
 public:
  explicit PackerC(msgpack_sbuffer& buffer) { msgpack_packer_init(&packer_, &buffer, msgpack_sbuffer_write); }
  void map(uint32_t size) { msgpack_pack_map(&packer_, size); }
  PackerC& key(uint16_t number) {
    msgpack_pack_uint16(&packer_, number);
    return *this;
  }
  void number(uint32_t value) { msgpack_pack_uint32(&packer_, value); }
  void wide(uint64_t value) { msgpack_pack_uint64(&packer_, value); }
  void text(const char* value) { msgpack_pack_str_with_body(&packer_, value, std::strlen(value)); }
  void bytes(const unsigned char* value, uint32_t size) { msgpack_pack_bin_with_body(&packer_, value, size); }

 private:
  msgpack_packer packer_;
};

class PackerCxx {
 public:
  explicit PackerCxx(msgpack::sbuffer& buffer) : packer_(buffer) {}
  void map(uint32_t size) { packer_.pack_map(size); }
  PackerCxx& key(uint16_t number) {
    packer_.pack_uint16(number);
    return *this;
  }
  void number(uint32_t value) { packer_.pack_uint32(value); }
  void wide(uint64_t value) { packer_.pack_uint64(value); }
  void text(const char* value) {
    const auto size = static_cast<uint32_t>(std::strlen(value));
    packer_.pack_str(size).pack_str_body(value, size);
  }
  void bytes(const unsigned char* value, uint32_t size) {
    packer_.pack_bin(size).pack_bin_body(reinterpret_cast<const char*>(value), size);
  }

 private:
  msgpack::packer<msgpack::sbuffer> packer_;
};

struct BufferC : msgpack_sbuffer {
  using Packer = PackerC;
  BufferC() { msgpack_sbuffer_init(this); }
  ~BufferC() { msgpack_sbuffer_destroy(this); }
  BufferC(const BufferC&) = delete;
  BufferC& operator=(const BufferC&) = delete;
  void clear() { msgpack_sbuffer_clear(this); }
  const char* bytes() const { return data; }
  size_t length() const { return size; }
};

struct BufferCxx : msgpack::sbuffer {
  using Packer = PackerCxx;
  const char* bytes() const { return data(); }
  size_t length() const { return size(); }
};

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

// Ten fields into the bytes of a message, everything made for this one message and
// freed after it.
void encodeNew(benchmark::State& state) {
  Settings from;
  measure(state, [&] {
    benchmark::DoNotOptimize(from);
    Mif32 mif;
    encode(mif, from);
    benchmark::DoNotOptimize(mif.GetData());
  });
}

template <typename Buffer>
void encodeNewMsgpack(benchmark::State& state) {
  Settings from;
  measure(state, [&] {
    benchmark::DoNotOptimize(from);
    Buffer buffer;
    encode(buffer, from);
    benchmark::DoNotOptimize(buffer.bytes());
  });
}

void encodeNewProtobuf(benchmark::State& state) {
  Settings from;
  measure(state, [&] {
    benchmark::DoNotOptimize(from);
    bench::Settings message;
    fill(message, from);
    std::string bytes;
    message.SerializeToString(&bytes);
    benchmark::DoNotOptimize(bytes.data());
  });
}

BENCHMARK(encodeNew)->Name("encode_new/ours");
BENCHMARK(encodeNewMsgpack<BufferC>)->Name("encode_new/msgpack_c");
BENCHMARK(encodeNewMsgpack<BufferCxx>)->Name("encode_new/msgpack_cxx");
BENCHMARK(encodeNewProtobuf)->Name("encode_new/protobuf");

// The same into a buffer, or a message and a text, that the messages before used.
void encodeAgain(benchmark::State& state) {
  Settings from;
  Mif32 mif;
  measure(state, [&] {
    benchmark::DoNotOptimize(from);
    mif.ClearBuffer();
    encode(mif, from);
    benchmark::DoNotOptimize(mif.GetData());
  });
}

template <typename Buffer>
void encodeAgainMsgpack(benchmark::State& state) {
  Settings from;
  Buffer buffer;
  measure(state, [&] {
    benchmark::DoNotOptimize(from);
    buffer.clear();
    encode(buffer, from);
    benchmark::DoNotOptimize(buffer.bytes());
  });
}

void encodeAgainProtobuf(benchmark::State& state) {
  Settings from;
  bench::Settings message;
  std::string bytes;
  measure(state, [&] {
    benchmark::DoNotOptimize(from);
    message.Clear();
    fill(message, from);
    message.SerializeToString(&bytes);
    benchmark::DoNotOptimize(bytes.data());
  });
}

BENCHMARK(encodeAgain)->Name("encode_again/ours");
BENCHMARK(encodeAgainMsgpack<BufferC>)->Name("encode_again/msgpack_c");
BENCHMARK(encodeAgainMsgpack<BufferCxx>)->Name("encode_again/msgpack_cxx");
BENCHMARK(encodeAgainProtobuf)->Name("encode_again/protobuf");

// The ten fields out of received bytes, in the order in which they were written, each
// text as a terminated one, each address as an address; protobuf keeps texts and
// addresses as its message's strings, and the message is used again.
struct Received {
  unsigned int mode, timeout, changed, flags;
  unsigned long long received;
  char user[64], host[64];
  const unsigned char* key;
  unsigned int keySize;
  ZotIpAddr gateway, server;
};

void decode(benchmark::State& state) {
  Settings from;
  Mif32 mif;
  encode(mif, from);
  const unsigned char* bytes = mif.GetData();
  const unsigned int size = mif.GetLen();
  Received to{};
  measure(state, [&] {
    benchmark::DoNotOptimize(bytes);
    zotmifGetInt(bytes, size, kMode, &to.mode, 1);
    zotmifGetInt(bytes, size, kTimeout, &to.timeout, 1);
    zotmifGetInt64(bytes, size, kReceived, &to.received, 1);
    zotmifGetStr(bytes, size, kUser, to.user, sizeof to.user, 1);
    zotmifGetStr(bytes, size, kHost, to.host, sizeof to.host, 1);
    zotmifGetBinDataPtr(bytes, size, kKey, &to.key, &to.keySize, 1);
    zotmifGetInt(bytes, size, kChanged, &to.changed, 1);
    zotmifGetIpAddr(bytes, size, kGateway, &to.gateway, 1);
    zotmifGetIpAddr(bytes, size, kServer, &to.server, 1);
    zotmifGetInt(bytes, size, kFlags, &to.flags, 1);
    benchmark::DoNotOptimize(to);
  });
  require(to.received == from.received && to.server == from.server && std::strcmp(to.host, from.host) == 0,
          "decode");
}

void decodeProtobuf(benchmark::State& state) {
  Settings from;
  bench::Settings message;
  fill(message, from);
  const std::string bytes = message.SerializeAsString();
  measure(state, [&] {
    message.ParseFromString(bytes);
    benchmark::DoNotOptimize(message.mode());
    benchmark::DoNotOptimize(message.timeout());
    benchmark::DoNotOptimize(message.received());
    benchmark::DoNotOptimize(message.user().c_str());
    benchmark::DoNotOptimize(message.host().c_str());
    benchmark::DoNotOptimize(message.key().data());
    benchmark::DoNotOptimize(message.changed());
    benchmark::DoNotOptimize(message.gateway().data());
    benchmark::DoNotOptimize(message.server().data());
    benchmark::DoNotOptimize(message.flags());
  });
}

BENCHMARK(decode)->Name("decode/ours");
BENCHMARK(decodeProtobuf)->Name("decode/protobuf");

// ---- Many records of one number each ----

constexpr int kRecords = 1000;

// Spread over all 32 bits, so that msgpack cannot shorten most of them.
uint32_t valueOf(uint32_t i) {
  return i * 2654435761U;
}

// The last record's OID stands nowhere else.
unsigned short oidOf(uint32_t i, uint32_t records) {
  return i + 1 == records ? 40000 : static_cast<unsigned short>(i % 30000);
}

void build(Mif32& mif, uint32_t records) {
  for (uint32_t i = 0; i < records; ++i) {
    mif.AddInt(oidOf(i, records), valueOf(i));
  }
}

template <typename Buffer>
void build(Buffer& buffer, uint32_t records) {
  typename Buffer::Packer packer(buffer);
  packer.map(records);
  for (uint32_t i = 0; i < records; ++i) {
    packer.key(oidOf(i, records)).number(valueOf(i));
  }
}

// From nothing to the bytes of all records.
void buildRecords(benchmark::State& state) {
  const auto records = static_cast<uint32_t>(state.range(0));
  measure(state, [&] {
    Mif32 mif;
    build(mif, records);
    benchmark::DoNotOptimize(mif.GetData());
  });
}

template <typename Buffer>
void buildRecordsMsgpack(benchmark::State& state) {
  const auto records = static_cast<uint32_t>(state.range(0));
  measure(state, [&] {
    Buffer buffer;
    build(buffer, records);
    benchmark::DoNotOptimize(buffer.bytes());
  });
}

// The last record by its OID, in the bytes as they are.  msgpack-c makes objects of the
// whole message first; the C++ headers have a visitor, which makes none and stops at
// the value.
struct FindByKey : msgpack::null_visitor {
  uint64_t wanted = 40000;
  uint64_t value = 0;
  bool inKey = false;
  bool wantedKey = false;

  bool start_map_key() { return inKey = true; }
  bool end_map_key() {
    inKey = false;
    return true;
  }
  bool visit_positive_integer(uint64_t number) {
    if (inKey) {
      wantedKey = number == wanted;
      return true;
    }
    value = number;
    return !wantedKey;
  }
};

void findLast(benchmark::State& state) {
  Mif32 mif;
  build(mif, static_cast<uint32_t>(state.range(0)));
  unsigned int value = 0;
  measure(state, [&] {
    mif.GetInt(40000, &value, 1);
    benchmark::DoNotOptimize(value);
  });
  require(value == valueOf(static_cast<uint32_t>(state.range(0)) - 1), "find the last");
}

void findLastMsgpack(benchmark::State& state) {
  BufferCxx buffer;
  build(buffer, static_cast<uint32_t>(state.range(0)));
  uint64_t value = 0;
  measure(state, [&] {
    FindByKey finder;
    msgpack::parse(buffer.data(), buffer.size(), finder);
    value = finder.value;
    benchmark::DoNotOptimize(value);
  });
  require(value == valueOf(static_cast<uint32_t>(state.range(0)) - 1), "find the last with msgpack");
}

template <typename Visit>
void unpackPairs(const BufferC& buffer, Visit visit) {
  msgpack_unpacked message;
  msgpack_unpacked_init(&message);
  size_t offset = 0;
  msgpack_unpack_next(&message, buffer.bytes(), buffer.length(), &offset);
  const msgpack_object_map& map = message.data.via.map;
  for (uint32_t i = 0; i < map.size && visit(map.ptr[i]); ++i) {
  }
  msgpack_unpacked_destroy(&message);
}

void findLastMsgpackC(benchmark::State& state) {
  BufferC buffer;
  build(buffer, static_cast<uint32_t>(state.range(0)));
  uint64_t value = 0;
  measure(state, [&] {
    unpackPairs(buffer, [&](const msgpack_object_kv& pair) {
      value = pair.val.via.u64;
      return pair.key.via.u64 != 40000;
    });
    benchmark::DoNotOptimize(value);
  });
  require(value == valueOf(static_cast<uint32_t>(state.range(0)) - 1), "find the last with msgpack-c");
}

BENCHMARK(buildRecords)->Name("build/ours")->Arg(kRecords);
BENCHMARK(buildRecordsMsgpack<BufferC>)->Name("build/msgpack_c")->Arg(kRecords);
BENCHMARK(buildRecordsMsgpack<BufferCxx>)->Name("build/msgpack_cxx")->Arg(kRecords);
BENCHMARK(findLast)->Name("find_last/ours")->Arg(kRecords);
BENCHMARK(findLastMsgpackC)->Name("find_last/msgpack_c")->Arg(kRecords);
BENCHMARK(findLastMsgpack)->Name("find_last/msgpack_cxx")->Arg(kRecords);

// Every record in order, its number added to a sum.
struct SumValues : msgpack::null_visitor {
  uint64_t sum = 0;
  bool inKey = false;

  bool start_map_key() { return inKey = true; }
  bool end_map_key() {
    inKey = false;
    return true;
  }
  bool visit_positive_integer(uint64_t number) {
    sum += inKey ? 0 : number;
    return true;
  }
};

void visitAll(benchmark::State& state) {
  Mif32 mif;
  build(mif, kRecords);
  measure(state, [&] {
    uint64_t sum = 0;
    for (const MifRecord& record : MifRecords(mif.GetData(), mif.GetLen())) {
      sum += mifLoad<uint32_t>(record.value);
    }
    benchmark::DoNotOptimize(sum);
  });
}

void visitAllMsgpack(benchmark::State& state) {
  BufferCxx buffer;
  build(buffer, kRecords);
  measure(state, [&] {
    SumValues adder;
    msgpack::parse(buffer.data(), buffer.size(), adder);
    benchmark::DoNotOptimize(adder.sum);
  });
}

void visitAllMsgpackC(benchmark::State& state) {
  BufferC buffer;
  build(buffer, kRecords);
  measure(state, [&] {
    uint64_t sum = 0;
    unpackPairs(buffer, [&](const msgpack_object_kv& pair) {
      sum += pair.val.via.u64;
      return true;
    });
    benchmark::DoNotOptimize(sum);
  });
}

BENCHMARK(visitAll)->Name("visit_all/ours");
BENCHMARK(visitAllMsgpackC)->Name("visit_all/msgpack_c");
BENCHMARK(visitAllMsgpack)->Name("visit_all/msgpack_cxx");

// Growth: records of eight bytes, 8 bytes to a million.
void sizes(benchmark::internal::Benchmark* benchmark) {
  for (const int records : {1, 12, 125, 1250, 12'500, 125'000}) {
    benchmark->Arg(records);
  }
}

BENCHMARK(buildRecords)->Name("growth_build/ours")->Apply(sizes);
BENCHMARK(buildRecordsMsgpack<BufferC>)->Name("growth_build/msgpack_c")->Apply(sizes);
BENCHMARK(findLast)->Name("growth_find/ours")->Apply(sizes);
BENCHMARK(findLastMsgpackC)->Name("growth_find/msgpack_c")->Apply(sizes);

}  // namespace
