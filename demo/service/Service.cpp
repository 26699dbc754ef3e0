#include "Service.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Connection.h"
#include "ProfileStore.h"
#include "mif/Mif32.h"
#include "mif/MifRecord.h"
#include "mif/zotmif.h"
#include "os/ZotOsSync.h"
#include "os/ZotOsThread.h"

namespace {

// One peer at a time: a slow one costs the next no more than this.
constexpr std::chrono::milliseconds kPatience{1000};
constexpr std::chrono::milliseconds kTick{250};

unsigned long long revisionOf(Bytes profile) {
  unsigned long long revision = 0;
  zotmifGetInt64(profile.data(), static_cast<uint32_t>(profile.size()), kOidRevision, &revision, 1);
  return revision;
}

// Appends a profile's fields, without what else its message carries.
void addFields(Mif32& message, Bytes profile) {
  for (const MifRecord& record : MifRecords(profile.data(), profile.size())) {
    if (record.oid >= kOidName) {
      message.Add(record.oid, record.value, record.length);
    }
  }
}

Message closed(Mif32& message) {
  message.AddEndKz();
  return {message.GetData(), message.GetData() + message.GetLen()};
}

Message answerOf(Outcome outcome, unsigned short faulty, Bytes profile) {
  Mif32 answer;
  answer.AddInt(kOidOutcome, outcome);
  if (faulty != 0) {
    answer.AddInt(kOidFaulty, faulty);
  }
  if (!profile.empty()) {
    answer.AddInt64(kOidRevision, revisionOf(profile));
    addFields(answer, profile);
  }
  return closed(answer);
}

class Service {
 public:
  Service(const std::string& directory, ZotOsLog* log) : store_(directory), log_(log) {
    ZotOsEventCreate(&applied_, kAppliedEventKey);
  }
  ~Service() {
    if (applied_ != nullptr) {
      ZotOsEventClose(applied_);
    }
  }
  Service(const Service&) = delete;
  Service& operator=(const Service&) = delete;

  void serve(Connection peer) {
    const Deadline deadline(kPatience);
    const auto message = peer.receive(deadline);
    if (!message) {
      ZotOsvLog(log_, ZOT_LOG_ERROR, "ERROR service: a peer sent no whole message (%d=%s pid=%d)", errno,
                std::strerror(errno), static_cast<int>(getpid()));
      return;
    }
    ZotOsvvLogData(log_, ZOT_LOG_DEBUG, message->data(), static_cast<long>(message->size()), 1,
                   "DEBUG service: received");
    const Message answer = answerTo(*message);
    const bool sent = peer.send(answer, deadline);
    ZotOsvLog(log_, sent ? ZOT_LOG_TRACE : ZOT_LOG_ERROR,
              "%s service: %zu bytes received, outcome %u, %zu bytes %s (pid=%d)", sent ? "TRACE" : "ERROR",
              message->size(), integerIn(answer, kOidOutcome), answer.size(), sent ? "answered" : "not taken",
              static_cast<int>(getpid()));
  }

 private:
  Message answerTo(Bytes message) {
    const uint32_t request = isSound(message) ? integerIn(message, kOidRequest) : 0;
    if (request == kRequestRead) {
      return answerOf(kRead, 0, store_.load());
    }
    if (request != kRequestApply && request != kRequestConnect) {
      return answerOf(kRefused, 0, {});
    }
    if (const unsigned short faulty = faultyFieldOf(message); faulty != 0) {
      return answerOf(kRefused, faulty, {});
    }
    Mif32 fresh;
    fresh.AddInt64(kOidRevision, revisionOf(store_.load()) + 1);
    addFields(fresh, message);
    const Message profile = closed(fresh);
    if (!store_.save(profile)) {
      ZotOsvLog(log_, ZOT_LOG_ERROR, "ERROR service: cannot store the profile (%d=%s pid=%d)", errno,
                std::strerror(errno), static_cast<int>(getpid()));
      return answerOf(kNotStored, 0, {});
    }
    if (applied_ != nullptr) {
      ZotOsEventSet(applied_);
    }
    return answerOf(request == kRequestConnect ? kConnected : kApplied, 0, profile);
  }

  ProfileStore store_;
  ZotOsLog* log_;
  ZotOsEventHandle* applied_ = nullptr;
};

struct Watch {
  ProfileStore store;
  ZotOsEventHandle* applied;
};

void* printApplied(void* context) {
  const auto* watch = static_cast<const Watch*>(context);
  uint32_t result = 0;
  while (ZotOsEventWait(watch->applied, ZOT_OS_INFINITE, &result) != 0 && result == kZotOsWaitSignalled) {
    const Message profile = watch->store.load();
    char name[kLongestName + 1] = "";
    zotmifGetStr(profile.data(), static_cast<uint32_t>(profile.size()), kOidName, name, sizeof name, 1);
    std::printf("applied: %s, revision %llu\n", name, revisionOf(profile));
    std::fflush(stdout);
  }
  return nullptr;
}

// The lock goes with its process, however that ends.  Complains when it can't be had.
bool isOnlyService(const std::string& directory) {
  const std::string path = directory + "/service.lock";
  const int lock = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (lock >= 0 && flock(lock, LOCK_EX | LOCK_NB) == 0) {
    return true;
  }
  if (errno == EWOULDBLOCK) {
    std::fprintf(stderr, "service: another one runs in %s\n", directory.c_str());
  } else {
    std::fprintf(stderr, "service: cannot write %s: %s\n", path.c_str(), std::strerror(errno));
  }
  return false;
}

}  // namespace

int runService(const std::string& directory, const volatile sig_atomic_t* stopped) {
  if (!isOnlyService(directory)) {
    return EXIT_FAILURE;
  }
  if (!logToFile(directory + "/service.log")) {
    std::fprintf(stderr, "service: cannot write %s/service.log: %s\n", directory.c_str(),
                 std::strerror(errno));
    return EXIT_FAILURE;
  }
  SharedLog log;
  Service service(directory, log);
  const std::string path = directory + "/service.sock";
  Connection listener = Connection::listenAt(path);
  if (!listener.isOpen()) {
    std::fprintf(stderr, "service: cannot listen at %s: %s\n", path.c_str(), std::strerror(errno));
    return EXIT_FAILURE;
  }
  ZotOsvLog(log, ZOT_LOG_TRACE, "TRACE service: started (pid=%d)", static_cast<int>(getpid()));
  while (*stopped == 0) {
    if (Connection peer = listener.accept(Deadline(kTick)); peer.isOpen()) {
      service.serve(std::move(peer));
    }
  }
  ZotOsvLog(log, ZOT_LOG_TRACE, "TRACE service: stopped (pid=%d)", static_cast<int>(getpid()));
  unlink(path.c_str());
  return EXIT_SUCCESS;
}

int runWatch(const std::string& directory) {
  // A wait on a named event has no end of its own: the thread that waits is cancelled.
  sigset_t ends;
  sigemptyset(&ends);
  sigaddset(&ends, SIGINT);
  sigaddset(&ends, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &ends, nullptr);
  Watch watch = {ProfileStore(directory), nullptr};
  uint32_t thread = 0, state = 0;
  if (ZotOsEventCreate(&watch.applied, kAppliedEventKey) == 0 ||
      ZotOsThreadStart(&thread, &state, printApplied, &watch) == 0) {
    std::fprintf(stderr, "service: cannot wait for the named event\n");
    return EXIT_FAILURE;
  }
  int signal = 0;
  sigwait(&ends, &signal);
  ZotOsThreadStop(&thread, &state, 0, nullptr, 0, "watch");
  ZotOsEventClose(watch.applied);
  return EXIT_SUCCESS;
}
