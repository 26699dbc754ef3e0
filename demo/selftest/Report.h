// What the self-test found.
#ifndef DEMO_SELFTEST_REPORT_H
#define DEMO_SELFTEST_REPORT_H

#include <cstdarg>
#include <cstdio>

struct Report {
  FILE* terminal;
  int checks = 0, failures = 0;

  bool check(bool good, const char* format, ...) __attribute__((format(printf, 3, 4))) {
    ++checks;
    if (!good) {
      ++failures;
      va_list arguments;
      va_start(arguments, format);
      std::fprintf(terminal, "selftest: ");
      std::vfprintf(terminal, format, arguments);
      std::fprintf(terminal, "\n");
      va_end(arguments);
    }
    return good;
  }
};

#endif
