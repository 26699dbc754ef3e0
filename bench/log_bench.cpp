// Log calls beside spdlog as Debian builds it (formatting and sinks in its shared
// library), with a logger that any thread may use.
#include "log/ZotLog.h"

#include <fcntl.h>
#include <spdlog/fmt/bin_to_hex.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>
#include <unistd.h>

#include <array>
#include <cstdio>

#include "Row.h"

namespace {

uint32_t levelWord = 0;
ZotOsLog logObject = {0, &levelWord, 0, {}};

// Writes a line and hands it on before the call returns, as ours does.
spdlog::logger& peer() {
  static spdlog::logger logger("bench", std::make_shared<spdlog::sinks::stdout_sink_mt>());
  logger.set_pattern("%y-%m-%d %H:%M:%S,%e - %v");
  return logger;
}

// While one stands, standard output goes to /dev/null.
class Silence {
 public:
  Silence() : saved_(dup(STDOUT_FILENO)) {
    std::fflush(stdout);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
  }
  ~Silence() {
    std::fflush(stdout);
    dup2(saved_, STDOUT_FILENO);
    close(saved_);
  }
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;

 private:
  int saved_;
};

// A call with two arguments that the level switches off.
void levelOff(benchmark::State& state) {
  levelWord = ZOT_LOG_ERROR;
  int number = 7;
  measure(state, [&] {
    benchmark::DoNotOptimize(number);
    ZotOsvLog(&logObject, ZOT_LOG_DEBUG, "DEBUG bench: %d %s", number, "text");
  });
}

void levelOffSpdlog(benchmark::State& state) {
  spdlog::logger& logger = peer();
  logger.set_level(spdlog::level::err);
  int number = 7;
  measure(state, [&] {
    benchmark::DoNotOptimize(number);
    logger.debug("DEBUG bench: {} {}", number, "text");
  });
}

BENCHMARK(levelOff)->Name("log_off/ours");
BENCHMARK(levelOffSpdlog)->Name("log_off/spdlog");

// A line with its time, two arguments, written to standard output, which is /dev/null.
void line(benchmark::State& state) {
  const Silence silence;
  levelWord = ZOT_LOG_DEBUG | ZOT_LOG_STDOUT;
  int number = 7;
  measure(state, [&] {
    benchmark::DoNotOptimize(number);
    ZotOsvLog(&logObject, ZOT_LOG_DEBUG, "DEBUG bench: %d %s", number, "text");
  });
}

void lineSpdlog(benchmark::State& state) {
  const Silence silence;
  spdlog::logger& logger = peer();
  logger.set_level(spdlog::level::debug);
  int number = 7;
  measure(state, [&] {
    benchmark::DoNotOptimize(number);
    logger.debug("DEBUG bench: {} {}", number, "text");
  });
}

BENCHMARK(line)->Name("log_line/ours");
BENCHMARK(lineSpdlog)->Name("log_line/spdlog");

// A line, and 64 bytes behind it, 16 a line, in hexadecimal and as characters.
constexpr std::array<unsigned char, 64> dumped() {
  std::array<unsigned char, 64> bytes{};
  for (size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = static_cast<unsigned char>(i * 37);
  }
  return bytes;
}

void dump(benchmark::State& state) {
  const Silence silence;
  levelWord = ZOT_LOG_DEBUG | ZOT_LOG_STDOUT;
  const auto bytes = dumped();
  measure(state, [&] {
    ZotOsvLogData(&logObject, ZOT_LOG_DEBUG, "received", bytes.data(), static_cast<long>(bytes.size()), 1);
  });
}

void dumpSpdlog(benchmark::State& state) {
  const Silence silence;
  spdlog::logger& logger = peer();
  logger.set_level(spdlog::level::debug);
  const auto bytes = dumped();
  measure(state, [&] { logger.debug("{}{:a}", "received", spdlog::to_hex(bytes, 16)); });
}

BENCHMARK(dump)->Name("log_dump/ours");
BENCHMARK(dumpSpdlog)->Name("log_dump/spdlog");

}  // namespace
