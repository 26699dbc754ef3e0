#include <gmock/gmock.h>
#include <sys/shm.h>

#include <cstddef>
#include <fstream>

#include "os/SharedControlBlock.h"
#include "os/ZotOsSync.h"
#include "os/ZotOsSystemInternal.h"
#include "support/CallScript.h"
#include "support/Child.h"
#include "support/FailingHeap.h"
#include "support/LogFixture.h"

namespace {

using namespace zot_test;
using Words = std::vector<uint32_t>;

static_assert(offsetof(ZotOsLog, LocSemCnt) == 0 && offsetof(ZotOsLog, level) == sizeof(void*) &&
              offsetof(ZotOsLog, localLevel) == 2 * sizeof(void*));

Words words(const ZotOsLog* log) {
  const auto* first = static_cast<const uint32_t*>(log->handle.address);
  return {first, first + 3};
}

std::string written(ZotOsLog* log, uint32_t mask) {
  return stampless([=] { ZotOsvLog(log, mask, "x"); });
}

TEST(LogObject, OfTheFirstProcessMakesTheBlock) {
  dZotOsUpTime = 0;
  ZotOsLog* log = ZotOspLogNew();
  ASSERT_NE(nullptr, log);
  EXPECT_NE(0, dZotOsUpTime);
  EXPECT_EQ(nullptr, pstLog.load()) << "only named semaphores set it";
  std::ifstream table("/proc/sysvipc/shm");
  std::string row;
  while (std::getline(table, row) && row.find("32777") == std::string::npos) {
  }
  EXPECT_THAT(row, testing::ContainsRegex("32777 +[0-9]+ +666 +500 ")) << "key, identifier, mode, bytes";
  EXPECT_EQ(log->handle.address, log->level);
  EXPECT_EQ((Words{0, 1, 0}), words(log));
  EXPECT_EQ(0x80000000u, log->localLevel);

  pstLog = log;
  ZotOsvSetLogLevel(log, kEveryLine);
  const int id = log->handle.shmId;
  EXPECT_EQ(filled("TRACE ZotOsMmfClose(ID): shm 1 attached processes\nTRACE ZotOsMmfClose(ID): close shm\n",
                   {{"ID", id}}),
            stampless([&] { ZotOsvLogDelete(&log); }));
  pstLog = nullptr;
  EXPECT_EQ(nullptr, log);
  ZotOsvLogDelete(&log);
  EXPECT_EQ(-1, shmget(0x8009, 0, 0));
}

TEST(LogObject, SharesItsLevelWithOtherProcesses) {
  ZotOsLog* log = ZotOspLogNew();
  static_cast<uint32_t*>(log->handle.address)[2] = 5;
  Child second([] {
    ZotOsLog* mine = ZotOspLogNew();
    EXPECT_EQ((Words{0, 2, 5}), words(mine)) << "only who made the block clears the third";
    ZotOsvSetLogLevel(mine, 0x20000001);
    EXPECT_TRUE(waitUntil([&] { return ZotOsdGetLogLevel(mine) == 0x40000001; }));
    EXPECT_EQ("", written(mine, 0x20000000));
    EXPECT_EQ("x\n", written(mine, 0x40000000));
    ZotOsvLogDelete(&mine);
    return 0;
  });
  EXPECT_TRUE(waitUntil([&] { return ZotOsdGetLogLevel(log) == 0x20000001; }));
  EXPECT_EQ("x\n", written(log, 0x20000000));
  ZotOsvSetLogLevel(log, 0x40000000);
  ZotOsvResLogLevel(log, 0x20000000);
  EXPECT_EQ(0, second.wait());
  EXPECT_EQ((Words{0x40000001, 1, 5}), words(log));
  ZotOsvLogDelete(&log);

  log = ZotOspLogNew();
  EXPECT_EQ(0u, ZotOsdGetLogLevel(log)) << "the last one took the level along";
  ZotOsvLogDelete(&log);
}

TEST(LogObject, LetsGoOfABlockThatItRemoved) {
  ZotOsMutexHandle* mutex = nullptr;
  ASSERT_EQ(1u, ZotOsMutexCreate(&mutex, 1));
  const uint32_t* const read = pstLog.load()->level;
  ZotOsvSetLogLevel(pstLog, 0x10);
  ASSERT_EQ(1u, ZotOsMutexClose(mutex));
  EXPECT_EQ(0u, *read) << "another thread may just be looking there";
  ZotOsLog* log = ZotOspLogNew();
  ZotOsvLogDelete(&log);
  ZotOsMmfHandle handle;
  uint32_t word = 0, *level = nullptr;
  ASSERT_EQ(1u, fnfOpenShm(&handle, &word, &level));
  fnvCloseShm(&handle);
  std::ifstream table("/proc/sysvipc/shm");
  const std::string rows{std::istreambuf_iterator<char>(table), {}};
  EXPECT_EQ(1, std::count(rows.begin(), rows.end(), '\n')) << rows;
}

TEST(LogObject, FindsRoomForABlockThatIsTooLarge) {
  shmid_ds status{};
  const int id = shmget(0x8009, 100000, IPC_CREAT | 0666);
  ZotOsMutexHandle* mutex = nullptr;
  ASSERT_EQ(1u, ZotOsMutexCreate(&mutex, 1));
  EXPECT_EQ(id, pstLog.load()->handle.shmId);
  EXPECT_EQ(1u, ZotOsMutexClose(mutex));
  EXPECT_EQ(-1, shmctl(id, IPC_STAT, &status)) << "removed and let go of";
}

TEST(LogObject, AttachesACallersHandleOrNothing) {
  ZotOsMmfHandle first, second;
  uint32_t word = 0, otherWord = 0;
  uint32_t *level = nullptr, *otherLevel = nullptr;
  ASSERT_EQ(1u, fnfOpenShm(&first, &word, &level));
  ASSERT_EQ(1u, fnfOpenShm(&second, &otherWord, &otherLevel));
  EXPECT_EQ(0x80000000u, word);
  *level = 0x1234;
  EXPECT_EQ(0x1234u, *otherLevel);
  EXPECT_EQ(2u, level[1]);
  fnvCloseShm(&second);
  fnvCloseShm(&second);
  EXPECT_EQ(1u, level[1]) << "closed twice, counted once";
  fnvCloseShm(&first);

  attaches = {EMFILE, EMFILE};
  EXPECT_EQ(0u, fnfOpenShm(&first, &word, &level));
  EXPECT_EQ(&word, level);
  fnvCloseShm(&first);
  EXPECT_EQ((Words{0, 0, 0}), (Words{fnfOpenShm(nullptr, &word, &level), fnfOpenShm(&first, nullptr, &level),
                                     fnfOpenShm(&first, &word, nullptr)}));
  EXPECT_EQ(nullptr, ZotOspLogNew());
  EXPECT_EQ(-1, shmget(0x8009, 0, 0)) << "who cannot attach removes it";
  const FailingHeap none;
  EXPECT_EQ(nullptr, ZotOspLogNew());
}

}  // namespace
