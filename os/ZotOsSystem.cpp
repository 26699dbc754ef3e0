#include "os/ZotOsSystem.h"

#include <dlfcn.h>
#include <sys/select.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>

#include "log/LogLineInternal.h"
#include "os/CancellationOff.h"
#include "os/ZotOsSystemInternal.h"

unsigned char bOpenSslInit = 0;
unsigned char bSslInit = 0;

std::atomic<int32_t> dZotOsUpTime{0};
std::atomic<uint8_t> fShutdown{0};

void ZotOsInit(void) {
  int32_t unset = 0;
  dZotOsUpTime.compare_exchange_strong(unset, ZotOsGetTimeInSec());
}

void ZotOsSetSystemUp(void) {
  fShutdown = 0;
}

void ZotOsSetShutdown(void) {
  fShutdown = 1;
  ZOT_LINE(ZOT_LOG_ERROR, "### ZotOsSetShutdown: shutd=%lu", 1ul);
}

uint32_t ZotOsGetSystemUp(void) {
  return fShutdown == 0 ? 1 : 0;
}

int32_t ZotOsIsOpenSslInitialized(void) {
  return std::atomic_ref(bOpenSslInit).exchange(1);
}

int32_t ZotOsIsSslInitialized(void) {
  return std::atomic_ref(bSslInit).exchange(1);
}

uint32_t ZotOsGetTimeInmSec(void) {
  timeval now{};
  gettimeofday(&now, nullptr);
  return static_cast<uint32_t>(now.tv_sec) * 1000u + static_cast<uint32_t>(now.tv_usec) / 1000u;
}

int32_t ZotOsGetTimeInSec(void) {
  return static_cast<int32_t>(std::time(nullptr));
}

uint32_t ZotOsGetUpTime(void) {
  ZotOsInit();
  // By way of 64 bits: a clock set back gives a negative difference, and one above
  // 2^31 does not fit a signed word; both keep their low 32 bits.
  return static_cast<uint32_t>(static_cast<int64_t>(std::difftime(std::time(nullptr), dZotOsUpTime)));
}

int32_t ZotOsSleep(uint32_t milliseconds) {
  timeval wait{};
  if (milliseconds < 1000) {
    wait.tv_usec = static_cast<suseconds_t>(milliseconds) * 1000;
  } else {
    wait.tv_sec = static_cast<time_t>(milliseconds / 1000);
    wait.tv_usec = static_cast<suseconds_t>(milliseconds % 1000);  // not scaled; callers rely on it
  }
  return select(0, nullptr, nullptr, nullptr, &wait);
}

uint32_t ZotOsCloseHdl(int32_t descriptor) {
  const CancellationOff uncancelled;
  return close(descriptor) == 0 ? 1 : 0;
}

void* ZotOsDlLoad(const char* path) {
  if (path == nullptr || *path == '\0') {
    return nullptr;
  }
  const CancellationOff uncancelled;
  return dlopen(path, RTLD_LAZY);
}

void* ZotOsDlGetAddr(void* library, const char* name) {
  if (library == nullptr || name == nullptr || *name == '\0') {
    return nullptr;
  }
  return dlsym(library, name);
}

uint32_t ZotOsDlFree(void* library) {
  const CancellationOff uncancelled;
  return library == nullptr || dlclose(library) == 0 ? 1 : 0;
}

uint32_t ZotOsGetComputerName(char* buffer, uint32_t* size) {
  if (buffer == nullptr || size == nullptr || *size == 0) {
    return 0;
  }
  if (gethostname(buffer, *size) == 0) {
    *size = static_cast<uint32_t>(std::strlen(buffer));
    return 1;
  }
  if (errno == EINVAL || errno == ENAMETOOLONG) {
    buffer[*size - 1] = '\0';
  }
  return 0;
}
