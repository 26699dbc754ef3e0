// Address texts beside the C library's converters, one address after the other out of
// sixteen, so that no branch predictor knows them by heart.
#include <arpa/inet.h>

#include <array>
#include <cstring>

#include "Row.h"
#include "ipaddr/zot_inet.h"

namespace {

constexpr std::array kTexts4 = {"192.168.100.200", "10.0.0.1",    "172.16.254.3", "8.8.8.8",
                                "255.255.255.255", "1.2.3.4",     "203.0.113.77", "198.51.100.254",
                                "127.0.0.1",       "100.64.12.9", "192.0.2.130",  "10.20.30.40",
                                "169.254.7.66",    "224.0.0.251", "5.199.8.21",   "93.184.216.34"};

constexpr std::array kTexts6 = {"2001:db8:85a3::8a2e:370:7334",
                                "fe80::1",
                                "2001:db8::1",
                                "2001:db8:0:1:1:1:1:1",
                                "::1",
                                "fd12:3456:789a:1::1",
                                "2606:4700:4700::1111",
                                "ff02::1:ff00:42",
                                "2001:db8:1:2:3:4:5:6",
                                "fe80::a00:27ff:fe4e:66a1",
                                "::ffff:192.0.2.128",
                                "2a00:1450:4001:81b::200e",
                                "64:ff9b::c000:221",
                                "2001:0:ce49:7601:e866:efff:62c3:fffe",
                                "fdc8:bf8b:e62c:abcd:1111:2222:3333:4444",
                                "2620:fe::9"};
static_assert(kTexts4.size() == 16 && kTexts6.size() == 16);

// Text to bytes.
template <typename Parse>
void parse(benchmark::State& state, const std::array<const char*, 16>& texts, Parse parser) {
  unsigned char bytes[16];
  size_t i = 0;
  measure(state, [&] {
    benchmark::DoNotOptimize(parser(texts[i++ % 16], bytes));
    benchmark::DoNotOptimize(bytes);
  });
}

// Bytes to text.
template <typename Print>
void print(benchmark::State& state, int family, const std::array<const char*, 16>& texts, Print printer) {
  unsigned char bytes[16][16];
  for (size_t i = 0; i < 16; ++i) {
    inet_pton(family, texts[i], bytes[i]);
  }
  char text[INET6_ADDRSTRLEN];
  size_t i = 0;
  measure(state, [&] {
    benchmark::DoNotOptimize(printer(bytes[i++ % 16], text));
    benchmark::DoNotOptimize(text);
  });
  require(std::strcmp(printer(bytes[0], text), texts[0]) == 0, "print");
}

void parse4(benchmark::State& state) {
  parse(state, kTexts4, zot_inet_pton4);
}

void parse4Platform(benchmark::State& state) {
  parse(state, kTexts4, [](const char* text, unsigned char* to) { return inet_pton(AF_INET, text, to); });
}

void parse6(benchmark::State& state) {
  parse(state, kTexts6, zot_inet_pton6);
}

void parse6Platform(benchmark::State& state) {
  parse(state, kTexts6, [](const char* text, unsigned char* to) { return inet_pton(AF_INET6, text, to); });
}

void print4(benchmark::State& state) {
  print(state, AF_INET, kTexts4,
        [](const unsigned char* from, char* to) { return zot_inet_ntop4(from, to, INET6_ADDRSTRLEN); });
}

void print4Platform(benchmark::State& state) {
  print(state, AF_INET, kTexts4,
        [](const unsigned char* from, char* to) { return inet_ntop(AF_INET, from, to, INET6_ADDRSTRLEN); });
}

void print6(benchmark::State& state) {
  print(state, AF_INET6, kTexts6,
        [](const unsigned char* from, char* to) { return zot_inet_ntop6(from, to, INET6_ADDRSTRLEN); });
}

void print6Platform(benchmark::State& state) {
  print(state, AF_INET6, kTexts6,
        [](const unsigned char* from, char* to) { return inet_ntop(AF_INET6, from, to, INET6_ADDRSTRLEN); });
}

BENCHMARK(parse4)->Name("parse4/ours");
BENCHMARK(parse4Platform)->Name("parse4/inet_pton");
BENCHMARK(parse6)->Name("parse6/ours");
BENCHMARK(parse6Platform)->Name("parse6/inet_pton");
BENCHMARK(print4)->Name("print4/ours");
BENCHMARK(print4Platform)->Name("print4/inet_ntop");
BENCHMARK(print6)->Name("print6/ours");
BENCHMARK(print6Platform)->Name("print6/inet_ntop");

}  // namespace
