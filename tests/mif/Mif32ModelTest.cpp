// The scripts of the fuzz target on every host, also where there is no fuzzer; it ends
// the process where Mif32 and its model part.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

TEST(Mif32Model, AgreesOverRandomScripts) {
  std::mt19937 random(20260115);
  for (int round = 0; round < 300; ++round) {
    std::vector<uint8_t> script(600);
    std::generate(script.begin(), script.end(), [&] { return static_cast<uint8_t>(random() & 0xFF); });
    EXPECT_EQ(0, LLVMFuzzerTestOneInput(script.data(), script.size())) << round;
  }
}

}  // namespace
