#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "mif/Mif32.h"
#include "tests/mif/MifBytes.h"

namespace {

// What a buffer is, said in the simplest way.
struct Model {
  auto find(uint16_t oid, unsigned int occurrence) {
    const auto matches = [&](const auto& record) { return record.first == oid && --occurrence == 0; };
    return std::find_if(records.begin(), records.end(), matches);
  }

  std::string bytes() const {
    std::string all;
    for (const auto& [oid, value] : records) {
      all += rec(oid, value);
    }
    return marked ? all + kEndKz : all;
  }

  std::vector<std::pair<uint16_t, std::string>> records;
  bool marked = false;
};

TEST(Mif32Model, AgreesOverRandomOperations) {
  std::mt19937 random(20260115);
  const auto pick = [&](unsigned int below) { return static_cast<unsigned int>(random() % below); };
  for (int round = 0; round < 40; ++round) {
    Mif32 mif;
    Model model;
    std::vector<unsigned char> lent(70000);
    if (round % 2 == 1) {
      ASSERT_EQ(1u, mif.SetExternalMem(lent.data(), 70000, 0));
    }
    for (int step = 0; step < 300; ++step) {
      const auto oid = static_cast<unsigned short>(pick(6));
      const unsigned int occurrence = 1 + pick(3);
      const std::string value(pick(pick(8) == 0 ? 900 : 20), static_cast<char>('a' + pick(26)));
      const auto length = static_cast<unsigned short>(value.size());
      const auto found = model.find(oid, occurrence);
      const bool known = found != model.records.end();
      switch (pick(5)) {
        case 0:
          // Records behind the marker would be out of reach.
          EXPECT_EQ(model.marked, mif.DelEndKz());
          model.marked = false;
          EXPECT_EQ(1u, mif.AddBin(oid, bytesOf(value), length));
          model.records.emplace_back(oid, value);
          break;
        case 1:
          EXPECT_EQ(known, mif.UpdBin(oid, bytesOf(value), length, occurrence));
          (known ? *found : model.records.emplace_back()) = {oid, value};
          break;
        case 2: {
          const auto first = model.find(oid, 1);
          EXPECT_EQ(first != model.records.end(), mif.DelOid(oid));
          model.records.erase(first, first == model.records.end() ? first : first + 1);
          break;
        }
        case 3:
          EXPECT_EQ(1u, mif.AddEndKz());
          model.marked = true;
          break;
        default:
          unsigned char read[1024];
          unsigned int room = sizeof read;
          ASSERT_EQ(known, mif.GetBin(oid, read, &room, occurrence));
          EXPECT_EQ(known ? found->second : "", std::string(read, known ? read + room : read));
      }
      ASSERT_EQ(model.bytes(), contents(mif)) << "round " << round << ", step " << step;
    }
  }
}

}  // namespace
