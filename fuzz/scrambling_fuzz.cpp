// Unscrambling of foreign text into outputs of exactly their capacity.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "mifobject/PasswordScrambling.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) {
    return 0;
  }
  const unsigned short capacity = data[0];
  std::string input(reinterpret_cast<const char*>(data + 1), size - 1);
  auto* scrambled = reinterpret_cast<unsigned char*>(input.data());
  std::vector<unsigned char> output(capacity);
  const unsigned short plain = DeCryptPasw(output.data(), scrambled, capacity);
  const unsigned short blocks = DeCryptPasw_20(output.data(), scrambled, capacity);
  if (plain != blocks || (capacity != 0 && plain >= capacity)) {
    std::abort();
  }
  std::vector<char> worstCase(2 * input.size() + 1);
  EncryptPasw(input.data(), worstCase.data());
  EncryptPasw_20(input.data(), worstCase.data());
  return 0;
}
