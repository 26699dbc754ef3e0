// What all benchmarks share: how one side of a row is measured.
//
// A row compares one piece of work; its sides are "ours" and one or more peers, and
// each is a benchmark called ROW/SIDE.  Both sides do the same observable work, and
// the comment above a row says what is compared.
//
// With ZOT_BENCH_COUNT in the environment nothing is timed: a few operations warm up,
// and then a fixed number runs between two marks.  Allocations are counted there when
// CountAllocations is preloaded, instructions when Callgrind runs the program.
#ifndef ZOT_BENCH_ROW_H
#define ZOT_BENCH_ROW_H

#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <valgrind/callgrind.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

inline bool countingOnly() {
  static const bool counting = std::getenv("ZOT_BENCH_COUNT") != nullptr;
  return counting;
}

// Allocations of this process so far; 0 while nobody counts them.
inline uint64_t allocationsSoFar() {
  using Counter = uint64_t (*)();
  static const auto counter = reinterpret_cast<Counter>(dlsym(RTLD_DEFAULT, "benchAllocations"));
  return counter != nullptr ? counter() : 0;
}

// Counts in so many rounds of so many operations each; every round is prepared uncounted.
template <typename Prepare, typename Operation>
void countOperations(benchmark::State& state, int rounds, int operations, Prepare prepare,
                     Operation operation) {
  prepare();
  operation();  // once uncounted: what only a first call needs
  uint64_t allocations = 0;
  for (int round = 0; round < rounds; ++round) {
    prepare();
    const uint64_t before = allocationsSoFar();
    CALLGRIND_TOGGLE_COLLECT;
    for (int i = 0; i < operations; ++i) {
      operation();
    }
    CALLGRIND_TOGGLE_COLLECT;
    allocations += allocationsSoFar() - before;
  }
  CALLGRIND_DUMP_STATS;
  for (auto _ : state) {
  }
  const double counted = rounds * operations;
  state.counters["operations"] = counted;
  state.counters["allocations"] = static_cast<double>(allocations) / counted;
}

// Measures operation().
template <typename Operation>
void measure(benchmark::State& state, Operation operation) {
  if (countingOnly()) {
    countOperations(
        state, 1, 64, [] {}, operation);
    return;
  }
  for (auto _ : state) {
    operation();
  }
}

// Measures operation() alone, with an untimed prepare() before each; for operations
// that take far longer than stopping the clock does.
template <typename Prepare, typename Operation>
void measure(benchmark::State& state, Prepare prepare, Operation operation) {
  if (countingOnly()) {
    countOperations(state, 2, 1, prepare, operation);
    return;
  }
  for (auto _ : state) {
    state.PauseTiming();
    prepare();
    state.ResumeTiming();
    operation();
  }
}

// Ends a benchmark program whose two sides do not give the same result.
inline void require(bool same, const char* what) {
  if (!same) {
    std::fprintf(stderr, "bench: not the same result: %s\n", what);
    std::abort();
  }
}

#endif
