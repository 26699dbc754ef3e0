#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "mif/Mif32.h"
#include "tests/mif/MifBytes.h"

namespace {

// What a buffer is, said in the simplest way: a list of records and a marker.
struct Model {
  struct Record {
    uint16_t oid;
    std::string value;
  };

  Record* find(uint16_t oid, unsigned int occurrence) {
    for (Record& record : records) {
      if (record.oid == oid && --occurrence == 0) {
        return &record;
      }
    }
    return nullptr;
  }

  unsigned int update(uint16_t oid, const std::string& value, unsigned int occurrence) {
    Record* record = find(oid, occurrence);
    if (record == nullptr) {
      records.push_back({oid, value});
      return 0;
    }
    record->value = value;
    return 1;
  }

  std::string bytes() const {
    std::string all;
    for (const Record& record : records) {
      all += rec(record.oid, record.value);
    }
    return marked ? all + kEndKz : all;
  }

  std::vector<Record> records;
  bool marked = false;
};

TEST(Mif32Model, AgreesOverRandomOperations) {
  std::mt19937 random(20260115);
  const auto pick = [&](unsigned int below) { return static_cast<unsigned int>(random() % below); };
  for (int round = 0; round < 40; ++round) {
    Mif32 mif;
    Model model;
    std::vector<unsigned char> lent(round % 2 == 1 ? 70000 : 0);
    if (!lent.empty()) {
      ASSERT_EQ(1u, mif.SetExternalMem(lent.data(), 70000, 0));
    }
    for (int step = 0; step < 300; ++step) {
      const auto oid = static_cast<unsigned short>(pick(6));
      const unsigned int occurrence = 1 + pick(3);
      const std::string value(pick(pick(8) == 0 ? 900 : 20), static_cast<char>('a' + pick(26)));
      const auto length = static_cast<unsigned short>(value.size());
      const bool hadMarker = model.marked;
      switch (pick(7)) {
        case 0:
          // Records behind the marker would be out of reach.
          EXPECT_EQ(hadMarker ? 1u : 0u, mif.DelEndKz());
          model.marked = false;
          EXPECT_EQ(1u, mif.AddBin(oid, bytesOf(value), length));
          model.records.push_back({oid, value});
          break;
        case 1:
          EXPECT_EQ(model.update(oid, value, occurrence),
                    mif.UpdBin(oid, bytesOf(value), length, occurrence));
          break;
        case 2: {
          Model::Record* first = model.find(oid, 1);
          EXPECT_EQ(first != nullptr ? 1u : 0u, mif.DelOid(oid));
          if (first != nullptr) {
            model.records.erase(model.records.begin() + (first - model.records.data()));
          }
          break;
        }
        case 3:
          EXPECT_EQ(1u, mif.AddEndKz());
          model.marked = true;
          break;
        case 4: {
          const std::string snapshot = model.bytes();
          if (lent.empty() && !snapshot.empty()) {
            load(mif, snapshot);
          }
          break;
        }
        default: {
          unsigned char read[1024];
          unsigned int room = sizeof read;
          const Model::Record* record = model.find(oid, occurrence);
          ASSERT_EQ(record != nullptr ? 1u : 0u, mif.GetBin(oid, read, &room, occurrence));
          if (record != nullptr) {
            EXPECT_EQ(record->value, std::string(read, read + room));
          }
        }
      }
      ASSERT_EQ(model.bytes(), contents(mif)) << "round " << round << ", step " << step;
    }
  }
}

}  // namespace
