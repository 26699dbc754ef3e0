// Reads a fuzzer's bytes as the numbers and texts of a script of operations; when they
// are used up, everything is 0 or empty.
#ifndef FUZZ_SCRIPT_H
#define FUZZ_SCRIPT_H

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

class Script {
 public:
  Script(const uint8_t* data, size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}

  bool more() const { return !rest_.empty(); }

  template <typename Number>
  Number number() {
    Number number = 0;
    const std::string bytes = text(sizeof number);
    std::memcpy(&number, bytes.data(), bytes.size());
    return number;
  }

  uint32_t below(uint32_t limit) { return number<uint16_t>() % limit; }

  // At most length bytes.
  std::string text(size_t length) {
    const std::string_view head = rest_.substr(0, length);
    rest_.remove_prefix(head.size());
    return std::string(head);
  }

  std::string rest() { return text(rest_.size()); }

 private:
  std::string_view rest_;
};

// Ends the run where the library does not do what is expected.
inline void require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "not as expected: %s\n", what);
    std::abort();
  }
}

// Bytes in a heap block of exactly their size, so that the address sanitizer sees any
// access past the end.
class Block {
 public:
  explicit Block(std::string_view bytes) : size_(bytes.size()), bytes_(new unsigned char[size_]) {
    std::copy(bytes.begin(), bytes.end(), bytes_.get());
  }

  unsigned char* get() const { return bytes_.get(); }
  char* chars() const { return reinterpret_cast<char*>(bytes_.get()); }
  uint32_t size() const { return static_cast<uint32_t>(size_); }
  std::string str() const { return {chars(), size_}; }

 private:
  size_t size_;
  std::unique_ptr<unsigned char[]> bytes_;
};

template <typename Number>
std::string hostBytes(Number number) {
  std::string bytes(sizeof number, '\0');
  std::memcpy(bytes.data(), &number, sizeof number);
  return bytes;
}

template <typename Number>
Number hostNumber(std::string_view bytes) {
  Number number = 0;
  std::memcpy(&number, bytes.data(), std::min(bytes.size(), sizeof number));
  return number;
}

#endif
