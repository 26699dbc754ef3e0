// A front end and a service exchange one settings message and its answer.
#include <getopt.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

#include "FrontEnd.h"
#include "Service.h"
#include "Settings.h"
#include "os/ZotOsFile.h"

namespace {

constexpr int kUsageStatus = 2;
constexpr int kCrashStatus = 3;

constexpr char kUsage[] =
    "usage: exchange [--damage N] [--write FILE] [NAME=VALUE ...]\n"
    "       exchange --help\n"
    "\n"
    "Sends settings to a service in another process, which rounds the interval up to whole\n"
    "minutes, takes the token out and answers.  Shows both messages as a table of records and\n"
    "in hex, and what each side reads in them.\n"
    "\n"
    "  --damage N    on the way, invert the byte at offset N; below 0: cut -N bytes off the end\n"
    "  --write FILE  save the message as it is sent, for zot-mif dump --fields fields.txt FILE\n"
    "\n"
    "Without a NAME=VALUE the settings come from the settings.txt beside the program: one\n"
    "NAME = VALUE a line; blank lines and those that begin with '#' do not count.\n"
    "\n"
    "  interval     seconds, 0 to 4294967295\n"
    "  quota        bytes, 0 to 18446744073709551615\n"
    "  profile      text that ISO 8859-1 can hold\n"
    "  fingerprint  bytes in hex, separated by blanks\n"
    "  token        text, as profile\n"
    "  addresses    IPv4 address, or FROM-TO\n"
    "  adapter      MAC address, groups separated by '.' or ':'\n"
    "  channels     0 to 255, or FROM-TO\n"
    "  password     text, as profile; stored scrambled\n"
    "  key          16 hex groups, separated by '.' or ':'\n"
    "\n"
    "Exit status: 0 after an answer, 1 when a value was refused or a message damaged or lost,\n"
    "2 for a wrong command line or settings file, 3 when the service crashed.\n";

struct Options {
  Sending sending;
  std::vector<Setting> settings;
};

std::optional<long> parseDamage(const char* text) {
  char* end = nullptr;
  errno = 0;
  const long number = std::strtol(text, &end, 10);
  return end != text && *end == '\0' && errno == 0 ? std::optional(number) : std::nullopt;
}

std::optional<std::vector<Setting>> shippedSettings(std::string* error) {
  char directory[1024];
  uint32_t failure = 0;
  if (ZotOsGetModulePath(directory, sizeof directory, &failure) == 0) {
    *error = std::string("own directory: ") + std::strerror(static_cast<int>(failure));
    return std::nullopt;
  }
  return readSettings(std::string(directory) + "/settings.txt", error);
}

std::optional<std::vector<Setting>> gatherSettings(char** first, char** last, std::string* error) {
  if (first == last) {
    return shippedSettings(error);
  }
  std::vector<Setting> settings;
  for (; first != last; ++first) {
    const std::optional<Setting> setting = parseSetting(*first, error);
    if (!setting) {
      return std::nullopt;
    }
    settings.push_back(*setting);
  }
  return settings;
}

// Ends the program when there is nothing to run.
Options parseCommandLine(int argc, char** argv) {
  const option longOptions[] = {{"damage", required_argument, nullptr, 'd'},
                                {"help", no_argument, nullptr, 'h'},
                                {"write", required_argument, nullptr, 'w'},
                                {}};
  Options options;
  for (int found; (found = getopt_long(argc, argv, "", longOptions, nullptr)) != -1;) {
    if (found == 'h') {
      std::fputs(kUsage, stdout);
      std::exit(EXIT_SUCCESS);
    }
    if (found == 'w') {
      options.sending.copy = optarg;
      continue;
    }
    options.sending.damage = found == 'd' ? parseDamage(optarg) : std::nullopt;
    if (!options.sending.damage) {
      std::fprintf(stderr, "%s%s", found == 'd' ? "exchange: --damage takes a number\n\n" : "", kUsage);
      std::exit(kUsageStatus);
    }
  }
  std::string error;
  std::optional<std::vector<Setting>> settings = gatherSettings(argv + optind, argv + argc, &error);
  if (!settings) {
    std::fprintf(stderr, "exchange: %s\n\n%s", error.c_str(), kUsage);
    std::exit(kUsageStatus);
  }
  options.settings = std::move(*settings);
  return options;
}

}  // namespace

int main(int argc, char** argv) {
  const Options options = parseCommandLine(argc, argv);
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) {
    std::perror("exchange: socketpair");
    return EXIT_FAILURE;
  }
  const pid_t service = fork();
  if (service < 0) {
    std::perror("exchange: fork");
    return EXIT_FAILURE;
  }
  if (service == 0) {
    close(ends[0]);
    Channel frontEnd(ends[1]);
    return runService(frontEnd);
  }
  close(ends[1]);
  int status = EXIT_FAILURE;
  {
    Channel toService(ends[0]);
    status = runFrontEnd(toService, options.settings, options.sending);
  }
  int serviceStatus = 0;
  waitpid(service, &serviceStatus, 0);
  if (WIFSIGNALED(serviceStatus)) {
    std::fprintf(stderr, "exchange: signal %d ended the service\n", WTERMSIG(serviceStatus));
    return kCrashStatus;
  }
  return status != EXIT_SUCCESS ? status : WEXITSTATUS(serviceStatus);
}
