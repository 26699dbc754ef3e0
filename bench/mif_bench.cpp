// Building and searching records; the peer is a byte vector written by hand.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "mif/Mif32.h"
#include "mif/MifRecord.h"

namespace {

unsigned short oidOf(int64_t i) {
  return static_cast<unsigned short>(i % 1000);
}

void reportPerRecord(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_AppendMif32(benchmark::State& state) {
  for (auto _ : state) {
    Mif32 mif;
    for (int64_t i = 0; i < state.range(0); ++i) {
      mif.AddInt(oidOf(i), static_cast<unsigned int>(i));
    }
    benchmark::DoNotOptimize(mif.GetData());
  }
  reportPerRecord(state);
}

void BM_AppendVector(benchmark::State& state) {
  for (auto _ : state) {
    std::vector<unsigned char> bytes;
    for (int64_t i = 0; i < state.range(0); ++i) {
      unsigned char record[8];
      mifStore<unsigned short>(record, oidOf(i));
      mifStore<unsigned short>(record + 2, 4);
      mifStore<unsigned int>(record + 4, static_cast<unsigned int>(i));
      bytes.insert(bytes.end(), record, record + sizeof record);
    }
    benchmark::DoNotOptimize(bytes.data());
  }
  reportPerRecord(state);
}

// The last of many records, found by its OID.
void BM_SeekMif32(benchmark::State& state) {
  Mif32 mif;
  for (int64_t i = 1; i < state.range(0); ++i) {
    mif.AddInt(1, 0);
  }
  mif.AddInt(2, 7);
  for (auto _ : state) {
    unsigned int value = 0;
    mif.GetInt(2, &value, 1);
    benchmark::DoNotOptimize(value);
  }
  reportPerRecord(state);
}

// The same walk over an index of structures, as a program would keep that parsed once.
void BM_SeekStructVector(benchmark::State& state) {
  struct Parsed {
    unsigned short oid;
    unsigned short length;
    unsigned int value;
  };
  std::vector<Parsed> records(static_cast<size_t>(state.range(0)), Parsed{1, 4, 0});
  records.back() = {2, 4, 7};
  for (auto _ : state) {
    unsigned int value = 0;
    for (const Parsed& record : records) {
      if (record.oid == 2) {
        value = record.value;
        break;
      }
    }
    benchmark::DoNotOptimize(value);
  }
  reportPerRecord(state);
}

BENCHMARK(BM_AppendMif32)->Arg(10)->Arg(1000)->Arg(100000)->Arg(1000000);
BENCHMARK(BM_AppendVector)->Arg(10)->Arg(1000)->Arg(100000)->Arg(1000000);
BENCHMARK(BM_SeekMif32)->Arg(10)->Arg(1000);
BENCHMARK(BM_SeekStructVector)->Arg(10)->Arg(1000);

}  // namespace
