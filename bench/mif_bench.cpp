// Records beside msgpack and protobuf, which carry the same fields in about as many bytes.
//
// All of it is one source with everything in its unnamed namespace, as it was whenever it was
// measured: how much GCC inlines of the peers' headers, and with it what they cost, depends on
// how much stands beside them.
#include "mif/Mif32.h"

#include <cstring>
#include <string>

#include "MsgpackBuffers.h"
#include "Row.h"
#include "TenFields.h"
#include "ipaddr/ZotIpAddr.h"
#include "mif/MifRecord.h"
#include "mif/zotmif.h"
#include "settings.pb.h"

namespace {

// ---- Ten typed fields ----

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
BENCHMARK(encodeNewMsgpack<MsgpackC>)->Name("encode_new/msgpack_c");
BENCHMARK(encodeNewMsgpack<MsgpackCxx>)->Name("encode_new/msgpack_cxx");
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
BENCHMARK(encodeAgainMsgpack<MsgpackC>)->Name("encode_again/msgpack_c");
BENCHMARK(encodeAgainMsgpack<MsgpackCxx>)->Name("encode_again/msgpack_cxx");
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

// Knows a map's keys from its values.
struct MapVisitor : msgpack::null_visitor {
  bool inKey = false;

  bool start_map_key() { return inKey = true; }
  bool end_map_key() {
    inKey = false;
    return true;
  }
};

// The last record by its OID, in the bytes as they are.  msgpack-c makes objects of the
// whole message first; the C++ headers have a visitor, which makes none and stops at
// the value.
struct FindByKey : MapVisitor {
  uint64_t wanted = 40000;
  uint64_t value = 0;
  bool wantedKey = false;

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
  MsgpackCxx buffer;
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
void unpackPairs(const MsgpackC& buffer, Visit visit) {
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
  MsgpackC buffer;
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
BENCHMARK(buildRecordsMsgpack<MsgpackC>)->Name("build/msgpack_c")->Arg(kRecords);
BENCHMARK(buildRecordsMsgpack<MsgpackCxx>)->Name("build/msgpack_cxx")->Arg(kRecords);
BENCHMARK(findLast)->Name("find_last/ours")->Arg(kRecords);
BENCHMARK(findLastMsgpackC)->Name("find_last/msgpack_c")->Arg(kRecords);
BENCHMARK(findLastMsgpack)->Name("find_last/msgpack_cxx")->Arg(kRecords);

// Every record in order, its number added to a sum.
struct SumValues : MapVisitor {
  uint64_t sum = 0;

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
  MsgpackCxx buffer;
  build(buffer, kRecords);
  measure(state, [&] {
    SumValues adder;
    msgpack::parse(buffer.data(), buffer.size(), adder);
    benchmark::DoNotOptimize(adder.sum);
  });
}

void visitAllMsgpackC(benchmark::State& state) {
  MsgpackC buffer;
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
BENCHMARK(buildRecordsMsgpack<MsgpackC>)->Name("growth_build/msgpack_c")->Apply(sizes);
BENCHMARK(findLast)->Name("growth_find/ours")->Apply(sizes);
BENCHMARK(findLastMsgpackC)->Name("growth_find/msgpack_c")->Apply(sizes);

}  // namespace
