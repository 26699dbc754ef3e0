#include "os/ZotOsSystem.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/select.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "os/ZotOsSystemInternal.h"
#include "support/LogFixture.h"

static std::vector<std::pair<long, long>> sleeps;  // seconds and microseconds asked for

// The linker's --wrap option sends the calls here.  Only a wait without any
// descriptor is a sleep, and no test has to sit through it.
extern "C" int __real_select(int count, fd_set* in, fd_set* out, fd_set* bad, timeval* wait);
extern "C" int __wrap_select(int count, fd_set* in, fd_set* out, fd_set* bad, timeval* wait) {
  if (count != 0) {
    return __real_select(count, in, out, bad, wait);
  }
  sleeps.emplace_back(wait->tv_sec, wait->tv_usec);
  errno = EINTR;
  return wait->tv_usec == 7 ? -1 : 0;
}

namespace {

using namespace zot_test;

TEST(Sleep, DropsWhatIsLeftBesideWholeSeconds) {
  const struct {
    uint32_t milliseconds;
    std::pair<long, long> expected;
  } cases[] = {
      {0, {0, 0}},    {1, {0, 1000}},   {50, {0, 50000}}, {999, {0, 999000}},           {1000, {1, 0}},
      {1001, {1, 1}}, {1500, {1, 500}}, {2999, {2, 999}}, {4294967295, {4294967, 295}},
  };
  for (const auto& c : cases) {
    sleeps.clear();
    EXPECT_EQ(0, ZotOsSleep(c.milliseconds));
    EXPECT_EQ((std::vector{c.expected}), sleeps);
  }
  EXPECT_EQ(-1, ZotOsSleep(1007));
}

TEST(SystemState, GoesDownWithALineAndUpAgain) {
  EXPECT_EQ(1u, ZotOsGetSystemUp());
  const auto lines = logLines([] { ZotOsSetShutdown(); }, ZOT_LOG_ERROR | ZOT_LOG_STDOUT);
  EXPECT_EQ(std::vector<std::string>{"### ZotOsSetShutdown: shutd=1"}, lines);
  EXPECT_EQ(0u, ZotOsGetSystemUp());
  EXPECT_EQ(1, fShutdown);
  ZotOsSetSystemUp();
  EXPECT_EQ(1u, ZotOsGetSystemUp());
}

TEST(SystemState, InitialisationIsClaimedOnceEach) {
  bOpenSslInit = bSslInit = 0;
  EXPECT_EQ(0, ZotOsIsOpenSslInitialized());
  EXPECT_EQ(1, ZotOsIsOpenSslInitialized());
  EXPECT_EQ(1, bOpenSslInit);
  EXPECT_EQ(0, bSslInit);
  EXPECT_EQ(0, ZotOsIsSslInitialized());
  EXPECT_EQ(1, ZotOsIsSslInitialized());
}

TEST(Time, CountsFromTheFirstInitialisation) {
  dZotOsUpTime = 0;
  EXPECT_LE(ZotOsGetUpTime(), 1u);
  EXPECT_NEAR(static_cast<double>(std::time(nullptr)), dZotOsUpTime, 1);
  dZotOsUpTime = ZotOsGetTimeInSec() - 1000;
  ZotOsInit();
  EXPECT_NEAR(1000.0, ZotOsGetUpTime(), 1);
  dZotOsUpTime = ZotOsGetTimeInSec() + 1000;  // the clock was set back
  EXPECT_NEAR(-1000.0, static_cast<int32_t>(ZotOsGetUpTime()), 1);
  dZotOsUpTime = -2147483647;
  EXPECT_NEAR(static_cast<double>(std::time(nullptr)) + 2147483647.0, ZotOsGetUpTime(), 1);

  timeval now{};
  gettimeofday(&now, nullptr);
  const auto wrapped = static_cast<uint32_t>(static_cast<uint64_t>(now.tv_sec) * 1000 % 4294967296);
  EXPECT_LE(ZotOsGetTimeInmSec() - wrapped, 3000u);
}

TEST(Libraries, AreLoadedSearchedAndFreed) {
  EXPECT_EQ(nullptr, ZotOsDlLoad(nullptr));
  EXPECT_EQ(nullptr, ZotOsDlLoad(""));
  EXPECT_EQ(nullptr, ZotOsDlLoad("/no/such/library.so"));
  void* const library = ZotOsDlLoad("libm.so.6");
  ASSERT_NE(nullptr, library);
  EXPECT_NE(nullptr, ZotOsDlGetAddr(library, "cos"));
  EXPECT_EQ(nullptr, ZotOsDlGetAddr(library, "no such name"));
  EXPECT_EQ(nullptr, ZotOsDlGetAddr(library, ""));
  EXPECT_EQ(nullptr, ZotOsDlGetAddr(library, nullptr));
  EXPECT_EQ(nullptr, ZotOsDlGetAddr(nullptr, "cos"));
  EXPECT_EQ(1u, ZotOsDlFree(library));
  EXPECT_EQ(1u, ZotOsDlFree(nullptr));
}

TEST(ComputerName, IsCutWhenItDoesNotFit) {
  char whole[256];
  ASSERT_EQ(0, gethostname(whole, sizeof whole));
  const auto length = static_cast<uint32_t>(std::strlen(whole));
  char name[260];
  uint32_t size = length + 1;
  EXPECT_EQ(1u, ZotOsGetComputerName(name, &size));
  EXPECT_EQ(length, size);
  EXPECT_STREQ(whole, name);
  EXPECT_EQ(0u, ZotOsGetComputerName(name, &size));
  EXPECT_EQ(length, size);
  EXPECT_EQ(std::string(whole, length - 1), name);
  size = 0;
  EXPECT_EQ(0u, ZotOsGetComputerName(name, &size));
}

TEST(CloseHandle, TellsWhetherItWasOpen) {
  const int descriptor = open("/dev/null", O_RDONLY);
  EXPECT_EQ(1u, ZotOsCloseHdl(descriptor));
  EXPECT_EQ(0u, ZotOsCloseHdl(descriptor));
}

}  // namespace
