// The two msgpacks with one set of names: as the C library, msgpack-c, which hands every
// item to its buffer through a function pointer, and as C++ headers, which the compiler
// sees through.
// Part of mif_bench.cpp, whose top says why it is in an unnamed namespace.
#ifndef ZOT_BENCH_MSGPACK_BUFFERS_H
#define ZOT_BENCH_MSGPACK_BUFFERS_H

#include <msgpack.h>

#include <cstdint>
#include <cstring>
#include <msgpack.hpp>

namespace {

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

struct MsgpackC : msgpack_sbuffer {
  using Packer = PackerC;
  MsgpackC() { msgpack_sbuffer_init(this); }
  ~MsgpackC() { msgpack_sbuffer_destroy(this); }
  MsgpackC(const MsgpackC&) = delete;
  MsgpackC& operator=(const MsgpackC&) = delete;
  void clear() { msgpack_sbuffer_clear(this); }
  const char* bytes() const { return data; }
  size_t length() const { return size; }
};

struct MsgpackCxx : msgpack::sbuffer {
  using Packer = PackerCxx;
  const char* bytes() const { return data(); }
  size_t length() const { return size(); }
};

}  // namespace

#endif
