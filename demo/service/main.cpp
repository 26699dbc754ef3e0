// The peer service of the settings window.
//
//   service --directory DIR           answers the window; its log lines go to
//                                     DIR/service.log
//   service --watch --directory DIR   prints a line for every profile applied
//
// Ends on SIGINT and SIGTERM.
#include <getopt.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "Service.h"

namespace {

constexpr int kUsageStatus = 2;

volatile sig_atomic_t stopped = 0;

void stop(int) {
  stopped = 1;
}

void stopOnSignals() {
  struct sigaction action {};
  action.sa_handler = stop;
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

}  // namespace

int main(int argc, char** argv) {
  const option known[] = {
      {"directory", required_argument, nullptr, 'd'}, {"watch", no_argument, nullptr, 'w'}, {}};
  std::string directory;
  bool watch = false, understood = true;
  for (int found; (found = getopt_long(argc, argv, "", known, nullptr)) != -1;) {
    directory = found == 'd' ? optarg : directory;
    watch = watch || found == 'w';
    understood = understood && found != '?';
  }
  if (!understood || directory.empty() || optind != argc) {
    std::fprintf(stderr, "usage: service [--watch] --directory DIR\n");
    return kUsageStatus;
  }
  if (watch) {
    return runWatch(directory);
  }
  stopOnSignals();
  return runService(directory, &stopped);
}
