// A service of the self-test's own, which ends with this object or with the program.
#ifndef DEMO_SELFTEST_SERVICE_PROCESS_H
#define DEMO_SELFTEST_SERVICE_PROCESS_H

#include <sys/types.h>

#include <string>

class ServiceProcess {
 public:
  // Starts it, and waits until it answers.
  explicit ServiceProcess(const std::string& directory);
  ~ServiceProcess();
  ServiceProcess(const ServiceProcess&) = delete;
  ServiceProcess& operator=(const ServiceProcess&) = delete;

 private:
  pid_t pid_;
};

#endif
