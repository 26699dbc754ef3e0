#include "ServiceProcess.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Connection.h"
#import "User.h"
#include "os/ZotOsFile.h"

ServiceProcess::ServiceProcess(const std::string& directory) {
  char own[4096] = "";
  ZotOsGetModulePath(own, sizeof own, nullptr);
  const std::string program = std::string(own) + "/service";
  pid_ = fork();
  if (pid_ == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    execl(program.c_str(), "service", "--directory", directory.c_str(), nullptr);
    _exit(127);
  }
  const std::string path = directory + "/service.sock";
  waitUntil([&] { return Connection::connectTo(path, Deadline(std::chrono::milliseconds(100))).isOpen(); });
}

ServiceProcess::~ServiceProcess() {
  kill(pid_, SIGTERM);
  waitpid(pid_, nullptr, 0);
}
