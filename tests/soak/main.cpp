// soak SCENARIO SECONDS: one scenario of scripts/soak.
#include <cstring>

#include "tests/soak/Soak.h"

int main(int argc, char** argv) {
  struct Scenario {
    const char* name;
    void (*run)(double seconds);
  };
  static constexpr Scenario kScenarios[] = {
      {"keeper", [](double seconds) { soak::exclusion(seconds, true); }},
      {"no-keeper", [](double seconds) { soak::exclusion(seconds, false); }},
      {"kills", soak::kills},
      {"cycles", soak::cycles},
      {"readers", soak::readers},
      {"stranger", soak::stranger},
  };
  for (const Scenario& scenario : kScenarios) {
    if (argc == 3 && std::strcmp(argv[1], scenario.name) == 0) {
      scenario.run(std::atof(argv[2]));
      return 0;
    }
  }
  std::fprintf(stderr, "usage: soak SCENARIO SECONDS, where the scenario is one of\n");
  for (const Scenario& scenario : kScenarios) {
    std::fprintf(stderr, "  %s\n", scenario.name);
  }
  return 2;
}
