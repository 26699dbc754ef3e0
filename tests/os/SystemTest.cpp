#include "os/ZotOsSystem.h"

#include <sys/select.h>

#include <cstring>
#include <ctime>

#include "os/ZotOsSystemInternal.h"
#include "support/LogFixture.h"

using Pause = std::pair<long, long>;  // seconds and microseconds
static std::vector<Pause> pauses;

// The linker's --wrap option sends the calls here.  Only a wait without any
// descriptor is a sleep, and no test has to sit through it.
extern "C" int __real_select(int count, fd_set* in, fd_set* out, fd_set* bad, timeval* wait);
extern "C" int __wrap_select(int count, fd_set* in, fd_set* out, fd_set* bad, timeval* wait) {
  if (count != 0) {
    return __real_select(count, in, out, bad, wait);
  }
  pauses.emplace_back(wait->tv_sec, wait->tv_usec);
  return -static_cast<int>(pauses.size());
}

namespace {

using namespace zot_test;

TEST(Sleep, DropsWhatIsLeftBesideWholeSeconds) {
  int32_t call = 0;
  for (const uint32_t milliseconds : {50u, 999u, 1000u, 1001u, 2999u, 4294967295u}) {
    EXPECT_EQ(--call, ZotOsSleep(milliseconds)) << "the result is that of the wait";
  }
  EXPECT_EQ((std::vector<Pause>{{0, 50000}, {0, 999000}, {1, 0}, {1, 1}, {2, 999}, {4294967, 295}}), pauses);
}

TEST(SystemState, GoesDownAndUpAndIsClaimedOnceByEachLibrary) {
  EXPECT_EQ(1u, ZotOsGetSystemUp());
  EXPECT_EQ("### ZotOsSetShutdown: shutd=1\n", told([] { ZotOsSetShutdown(); }, kErrors));
  EXPECT_EQ(0u, ZotOsGetSystemUp());
  ZotOsSetSystemUp();
  EXPECT_EQ(1u, ZotOsGetSystemUp());

  EXPECT_EQ(0, ZotOsIsOpenSslInitialized());
  EXPECT_EQ(1, ZotOsIsOpenSslInitialized());
  EXPECT_EQ(0, bSslInit);
  EXPECT_EQ(0, ZotOsIsSslInitialized());
  EXPECT_EQ(2, bSslInit + bOpenSslInit);
}

TEST(Time, CountsFromTheFirstInitialisation) {
  const auto now = static_cast<double>(std::time(nullptr));
  dZotOsUpTime = 0;
  EXPECT_LE(ZotOsGetUpTime(), 2u);
  EXPECT_NEAR(now, dZotOsUpTime, 2);
  for (const int32_t ago : {1000, -1000}) {  // the clock may be set back
    dZotOsUpTime = ZotOsGetTimeInSec() - ago;
    ZotOsInit();
    EXPECT_NEAR(ago, static_cast<int32_t>(ZotOsGetUpTime()), 2);
  }
  dZotOsUpTime = -2147483647;
  EXPECT_NEAR(now + 2147483647.0, ZotOsGetUpTime(), 2);
  EXPECT_LE(ZotOsGetTimeInmSec() - static_cast<uint32_t>(static_cast<uint64_t>(now) * 1000), 3000u);
}

TEST(Handles, OfLibrariesAndDescriptors) {
  void* const library = ZotOsDlLoad("libm.so.6");
  EXPECT_NE(nullptr, ZotOsDlGetAddr(library, "cos"));
  for (void* const null : {ZotOsDlLoad(nullptr), ZotOsDlLoad(""), ZotOsDlGetAddr(library, nullptr),
                           ZotOsDlGetAddr(library, ""), ZotOsDlGetAddr(nullptr, "cos")}) {
    EXPECT_EQ(nullptr, null);
  }
  EXPECT_EQ(2u, ZotOsDlFree(library) + ZotOsDlFree(nullptr));
  const int descriptor = dup(STDIN_FILENO);
  EXPECT_EQ(1u, ZotOsCloseHdl(descriptor));
  EXPECT_EQ(0u, ZotOsCloseHdl(descriptor));
}

TEST(ComputerName, IsCutWhenItDoesNotFit) {
  char whole[256], name[260];
  ASSERT_EQ(0, gethostname(whole, sizeof whole));
  const auto length = static_cast<uint32_t>(std::strlen(whole));
  uint32_t size = length + 1;
  EXPECT_EQ(1u, ZotOsGetComputerName(name, &size));
  EXPECT_STREQ(whole, name);
  EXPECT_EQ(0u, ZotOsGetComputerName(name, &size)) << "without room for the terminator";
  EXPECT_EQ(length, size);
  EXPECT_EQ(std::string(whole, length - 1), name);
}

}  // namespace
