// The timestamp in front of a line.
#include <sys/time.h>

#include <cstdlib>
#include <cstring>
#include <ctime>

#include "log/CLibraryLockInternal.h"
#include "log/LogInternal.h"
#include "os/zot_string.h"

namespace {

// What the local time of one second depends on: the process's zone, as its environment
// names it and as the C library holds it.
class Zone {
 public:
  // The zone of now, noted behind the conversion that it served.
  void note() {
    const char* const name = std::getenv("TZ");
    named_ = name != nullptr;
    // A name without room here is never taken for the same.
    known_ = !named_ || std::strlen(name) < sizeof name_;
    if (named_ && known_) {
      std::strcpy(name_, name);
    }
    library_ = Library{};
  }

  bool unchanged() const {
    const char* const name = std::getenv("TZ");
    return known_ && named_ == (name != nullptr) && (!named_ || std::strcmp(name_, name) == 0) &&
           library_ == Library{};
  }

 private:
  struct Library {  // at the moment it is made
    const char* standard = tzname[0];
    const char* summer = tzname[1];
    long offset = timezone;
    int hasSummer = daylight;
    bool operator==(const Library&) const = default;
  };

  bool known_ = false;
  bool named_ = false;
  char name_[64] = {};
  Library library_{nullptr, nullptr, 0, 0};
};

// The text of the second in which its thread last asked for the time.  Asking the zone
// costs several times what all the rest of a line does, and takes a lock.
struct Stamp {
  char text[32] = {};
  char* milliseconds = nullptr;  // three digits within text
  time_t second = 0;
  Zone zone;
};

// Without a destructor: a new thread needs no memory for it.
constinit thread_local Stamp stamp;

bool localTime(time_t second, tm& local) {
  const CLibraryLock lock;  // nor is the thread cancelled while the zone is read from its file
  tzset();
  if (localtime_r(&second, &local) == nullptr) {
    return false;
  }
  stamp.zone.note();
  return true;
}

// Returns false, with the text as it was, when the second has no local time.
bool renew(time_t second) {
  tm local{};
  if (!localTime(second, local)) {
    return false;
  }
  // The year 2000 prints as "100" and January as "00"; callers rely on both.
  const int year = local.tm_year > 100 ? local.tm_year - 100 : local.tm_year;
  const int written = sprintf_zot(stamp.text, sizeof stamp.text, "%02d-%02d-%02d %02d:%02d:%02d,000", year,
                                  local.tm_mon, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
  stamp.milliseconds = stamp.text + written - 3;
  stamp.second = second;
  return true;
}

}  // namespace

const char* cpszGetTime() {
  timeval now{};
  if (gettimeofday(&now, nullptr) != 0) {
    return stamp.text;
  }
  const bool same = now.tv_sec == stamp.second && stamp.zone.unchanged();
  if (!same && !renew(now.tv_sec)) {
    return stamp.text;
  }
  const long milliseconds = static_cast<long>(now.tv_usec / 1000);
  stamp.milliseconds[0] = static_cast<char>('0' + milliseconds / 100);
  stamp.milliseconds[1] = static_cast<char>('0' + milliseconds / 10 % 10);
  stamp.milliseconds[2] = static_cast<char>('0' + milliseconds % 10);
  return stamp.text;
}
