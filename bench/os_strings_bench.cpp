// The bounded string helpers beside libbsd's, which the C library of Debian 12 lacks.
#include <bsd/string.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "Row.h"
#include "os/zot_string.h"

namespace {

// A text of so many characters into a destination of so many bytes.
struct Copy {
  explicit Copy(const benchmark::State& state)
      : source(static_cast<size_t>(state.range(0)), 'x'), size(static_cast<unsigned int>(state.range(1))) {}
  std::string source;
  unsigned int size;
  char destination[2048] = {};
};

void copy(benchmark::State& state) {
  Copy text(state);
  measure(state, [&] {
    benchmark::DoNotOptimize(text);
    strcpy_zot(text.destination, text.size, text.source.c_str());
    benchmark::ClobberMemory();
  });
}

void copyBsd(benchmark::State& state) {
  Copy text(state);
  measure(state, [&] {
    benchmark::DoNotOptimize(text);
    strlcpy(text.destination, text.source.c_str(), text.size);
    benchmark::ClobberMemory();
  });
}

BENCHMARK(copy)->Name("copy_24/ours")->Args({24, 64});
BENCHMARK(copyBsd)->Name("copy_24/strlcpy")->Args({24, 64});
BENCHMARK(copy)->Name("copy_1000/ours")->Args({1000, 2048});
BENCHMARK(copyBsd)->Name("copy_1000/strlcpy")->Args({1000, 2048});
// Cut off: strlcpy reads the rest of the source, because it tells the length.
BENCHMARK(copy)->Name("copy_cut/ours")->Args({10'000, 64});
BENCHMARK(copyBsd)->Name("copy_cut/strlcpy")->Args({10'000, 64});

// 24 characters behind 40, as a file's name behind its directory.
void append(benchmark::State& state) {
  char text[128] = "/usr/local/share/a-directory-of-40-chars";
  const char* more = "/a-name-of-24-characters";
  measure(state, [&] {
    text[40] = '\0';
    benchmark::DoNotOptimize(more);
    strcat_zot(text, sizeof text, more);
    benchmark::ClobberMemory();
  });
  require(std::strlen(text) == 64, "append");
}

void appendBsd(benchmark::State& state) {
  char text[128] = "/usr/local/share/a-directory-of-40-chars";
  const char* more = "/a-name-of-24-characters";
  measure(state, [&] {
    text[40] = '\0';
    benchmark::DoNotOptimize(more);
    strlcat(text, more, sizeof text);
    benchmark::ClobberMemory();
  });
}

BENCHMARK(append)->Name("append/ours");
BENCHMARK(appendBsd)->Name("append/strlcat");

// A text and two numbers.
void format(benchmark::State& state) {
  char text[128];
  int number = 4711;
  measure(state, [&] {
    benchmark::DoNotOptimize(number);
    sprintf_zot(text, sizeof text, "%s (%d=0x%08X)", "semaphore", number, static_cast<unsigned int>(number));
    benchmark::ClobberMemory();
  });
}

void formatPlatform(benchmark::State& state) {
  char text[128];
  int number = 4711;
  measure(state, [&] {
    benchmark::DoNotOptimize(number);
    std::snprintf(text, sizeof text, "%s (%d=0x%08X)", "semaphore", number,
                  static_cast<unsigned int>(number));
    benchmark::ClobberMemory();
  });
}

BENCHMARK(format)->Name("format/ours");
BENCHMARK(formatPlatform)->Name("format/snprintf");

}  // namespace
