#include "mifobject/PasswordScrambling.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace {

constexpr uint8_t kMarker = 0xFE;
constexpr unsigned kEscapeOffset = 0x20;

constexpr auto kKeyText = std::to_array("Hollow Reed Tanners.");
constexpr unsigned kKeyLength = kKeyText.size() - 1;
static_assert(kKeyLength == 20);

// DeCryptPasw_20's own key, measured on each call like any text.
char pswkey[] = "Hollow Reed Tanners.";

uint16_t shortLength(const void* text) {
  return static_cast<uint16_t>(std::strlen(static_cast<const char*>(text)));
}

// Plain char is unsigned on some hosts; the stored format needs the sign.
int widen(char byte) {
  return static_cast<signed char>(byte);
}

char* put(char* out, unsigned byte) {
  *out = static_cast<char>(byte);
  return out + 1;
}

// A result that kept a sign is 0xFF80 or above, so even one that ends in 0xFE goes
// out as a bare byte and the marker's own escape is never met; stored records
// depend on it.
char* putResult(char* out, uint16_t result) {
  if (result < kEscapeOffset) {
    return put(put(out, kMarker), result + kEscapeOffset);
  }
  return result == kMarker ? put(put(out, kMarker), kMarker) : put(out, result & 0xFFu);
}

// keyAt gives the key character of an input position; 0 passes a byte through.
template <typename KeyAt>
uint16_t scramble(const char* input, char* output, KeyAt keyAt) {
  const uint16_t count = shortLength(input);
  for (uint16_t at = 0; at < count; ++at) {
    output = putResult(output, static_cast<uint16_t>(widen(input[at]) ^ widen(keyAt(at))));
  }
  *output = '\0';
  return count;
}

// Resolves the escapes.  Reading the byte behind a marker is safe at the very end,
// where it is the terminator.
uint16_t unescape(uint8_t* output, const uint8_t* input, uint16_t capacity) {
  const uint16_t count = shortLength(input);
  size_t in = 0;  // an escape may end one byte behind the last of 65,535
  uint16_t out = 0;
  while (out < capacity && in < count) {
    uint8_t byte = input[in++];
    if (byte == kMarker) {
      const uint8_t code = input[in++];
      byte = code == kMarker ? kMarker : static_cast<uint8_t>(code - kEscapeOffset);
    }
    output[out++] = byte;
  }
  return out;
}

void applyKey(uint8_t& byte, char key) {
  byte = static_cast<uint8_t>(byte ^ static_cast<uint8_t>(key));
}

}  // namespace

unsigned short EncryptPasw(char* input, char* output) {
  return scramble(input, output, [](unsigned at) { return kKeyText[at % kKeyLength]; });
}

unsigned short DeCryptPasw(unsigned char* output, unsigned char* input, unsigned short capacity) {
  const uint16_t count = unescape(output, input, capacity);
  if (count == capacity) {
    return 0;
  }
  for (unsigned at = 0; at < count; ++at) {
    applyKey(output[at], kKeyText[at % kKeyLength]);
  }
  return count;
}

void EncryptPasw_20(char* input, char* output) {
  scramble(input, output, [](unsigned at) {
    const unsigned keyAt = at % kKeyLength;
    return keyAt == kKeyLength - 1 ? '\0' : kKeyText[keyAt];
  });
}

unsigned short DeCryptPasw_20(unsigned char* output, unsigned char* input, unsigned short capacity) {
  const uint16_t count = unescape(output, input, capacity);
  if (count == capacity) {
    return 0;
  }
  const size_t length = std::strlen(pswkey);
  size_t key = 0;
  for (unsigned at = 0; at < count; ++at, ++key) {
    // The last key character is a place to pass a byte through, never a key.
    if (key != length - 1) {
      key = key == length ? 0 : key;
      applyKey(output[at], pswkey[key]);
    }
  }
  output[count] = 0;
  return count;
}
