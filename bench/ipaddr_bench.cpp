// Address texts; the peer is the platform's converter.
#include <arpa/inet.h>
#include <benchmark/benchmark.h>

#include "ipaddr/zot_inet.h"

namespace {

constexpr const char* kTexts[] = {"192.168.100.200", "2001:db8:85a3::8a2e:370:7334"};

int parse(int family, const char* text, unsigned char* bytes) {
  return family == AF_INET ? zot_inet_pton4(text, bytes) : zot_inet_pton6(text, bytes);
}

const char* print(int family, const unsigned char* bytes, char* text) {
  return family == AF_INET ? zot_inet_ntop4(bytes, text, INET6_ADDRSTRLEN)
                           : zot_inet_ntop6(bytes, text, INET6_ADDRSTRLEN);
}

int familyOf(const benchmark::State& state) {
  return state.range(0) == 4 ? AF_INET : AF_INET6;
}

const char* textOf(const benchmark::State& state) {
  return kTexts[state.range(0) == 6];
}

void BM_Parse(benchmark::State& state) {
  unsigned char bytes[16];
  for (auto _ : state) {
    benchmark::DoNotOptimize(parse(familyOf(state), textOf(state), bytes));
  }
}

void BM_ParsePlatform(benchmark::State& state) {
  unsigned char bytes[16];
  for (auto _ : state) {
    benchmark::DoNotOptimize(inet_pton(familyOf(state), textOf(state), bytes));
  }
}

void BM_Print(benchmark::State& state) {
  unsigned char bytes[16] = {};
  char text[INET6_ADDRSTRLEN];
  parse(familyOf(state), textOf(state), bytes);
  for (auto _ : state) {
    benchmark::DoNotOptimize(print(familyOf(state), bytes, text));
  }
}

void BM_PrintPlatform(benchmark::State& state) {
  unsigned char bytes[16] = {};
  char text[INET6_ADDRSTRLEN];
  parse(familyOf(state), textOf(state), bytes);
  for (auto _ : state) {
    benchmark::DoNotOptimize(inet_ntop(familyOf(state), bytes, text, sizeof text));
  }
}

// The argument is the family.
BENCHMARK(BM_Parse)->Arg(4)->Arg(6);
BENCHMARK(BM_ParsePlatform)->Arg(4)->Arg(6);
BENCHMARK(BM_Print)->Arg(4)->Arg(6);
BENCHMARK(BM_PrintPlatform)->Arg(4)->Arg(6);

}  // namespace
