#include <gtest/gtest.h>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <string>
#include <vector>

#include "log/LogLineInternal.h"
#include "os/SharedControlBlock.h"
#include "os/ZotOsSystemInternal.h"
#include "support/Child.h"
#include "support/FailingHeap.h"
#include "support/LogFixture.h"
#include "support/RefusedAttach.h"

namespace {

using namespace zot_test;

static_assert(offsetof(ZotOsLog, LocSemCnt) == 0 && offsetof(ZotOsLog, level) == sizeof(void*) &&
              offsetof(ZotOsLog, localLevel) == 2 * sizeof(void*));

SharedControlBlock& block(const ZotOsLog* log) {
  return *static_cast<SharedControlBlock*>(log->handle.address);
}

shmid_ds segment(int key) {
  shmid_ds status{};
  const int id = shmget(key, 0, 0);
  EXPECT_TRUE(id != -1 && shmctl(id, IPC_STAT, &status) == 0);
  return status;
}

TEST(LogObject, OfTheFirstProcessMakesTheBlock) {
  dZotOsUpTime = 0;
  ZotOsLog* log = ZotOspLogNew();
  ASSERT_NE(nullptr, log);
  EXPECT_NE(0, dZotOsUpTime);
  EXPECT_EQ(nullptr, pstLog) << "its caller stores it there";
  const auto status = segment(0x8009);
  EXPECT_EQ(500u, status.shm_segsz);
  EXPECT_EQ(0666, status.shm_perm.mode & 0777);

  const auto* words = static_cast<const uint32_t*>(log->handle.address);
  EXPECT_EQ(words, log->level);
  EXPECT_EQ((std::vector<uint32_t>{0, 1, 0}), std::vector<uint32_t>(words, words + 3));
  EXPECT_EQ(0u, log->LocSemCnt);
  EXPECT_EQ(0x80000000u, log->localLevel);
  EXPECT_EQ("", captured([&] { ZotOsvLog(log, 0xFFFFFFFF, "x"); }).out);
  ZotOsvLogDelete(&log);
  EXPECT_EQ(nullptr, log);
  ZotOsvLogDelete(&log);
  ZotOsvLogDelete(nullptr);
  EXPECT_EQ(-1, shmget(0x8009, 0, 0));
}

TEST(LogObject, SharesItsLevelWithOtherProcesses) {
  ZotOsLog* log = ZotOspLogNew();
  block(log).GlobSemCnt.store(5);
  Child second([] {
    ZotOsLog* mine = ZotOspLogNew();
    EXPECT_EQ(EEXIST, mine->handle.lastError);
    EXPECT_EQ(2u, block(mine).ProcCnt.load());
    EXPECT_EQ(5u, block(mine).GlobSemCnt.load()) << "only who made the block clears it";
    ZotOsvSetLogLevel(mine, 0x20000001);
    EXPECT_TRUE(waitUntil([&] { return ZotOsdGetLogLevel(mine) == 0x40000001; }));
    const auto out = captured([&] {
      ZotOsvLog(mine, 0x20000000, "TRACE off again");
      ZotOsvLog(mine, 0x40000000, "DEBUG on");
    });
    EXPECT_EQ(std::vector<std::string>{"DEBUG on"}, withoutStamps(out.out));
    ZotOsvLogDelete(&mine);
    return 0;
  });
  EXPECT_TRUE(waitUntil([&] { return ZotOsdGetLogLevel(log) == 0x20000001; }));
  const auto out = captured([&] { ZotOsvLog(log, 0x20000000, "TRACE on"); });
  EXPECT_EQ(std::vector<std::string>{"TRACE on"}, withoutStamps(out.out));
  ZotOsvSetLogLevel(log, 0x40000000);
  ZotOsvResLogLevel(log, 0x20000000);
  EXPECT_EQ(0, second.wait());
  EXPECT_EQ(1u, block(log).ProcCnt.load());
  ZotOsvLogDelete(&log);

  log = ZotOspLogNew();
  EXPECT_EQ(0u, ZotOsdGetLogLevel(log)) << "the last one took the level along";
  ZotOsvLogDelete(&log);
}

TEST(LogObject, StillWritesTheLinesOfItsEnd) {
  pstLog = ZotOspLogNew();
  ZotOsvSetLogLevel(pstLog, kEveryLine);
  const std::string id = std::to_string(pstLog->handle.shmId);
  const auto out = captured([] { ZotOsvLogDelete(&pstLog); });
  EXPECT_EQ((std::vector<std::string>{"TRACE ZotOsMmfClose(" + id + "): shm 1 attached processes",
                                      "TRACE ZotOsMmfClose(" + id + "): close shm"}),
            withoutStamps(out.out));
  EXPECT_EQ(nullptr, pstLog);
}

TEST(LogObject, IsNullWithoutMemoryOrBlock) {
  {
    const FailingHeap none;
    EXPECT_EQ(nullptr, ZotOspLogNew());
  }
  const RefusedAttach refused(ENOMEM);
  EXPECT_EQ(nullptr, ZotOspLogNew());
  EXPECT_EQ(-1, shmget(0x8009, 0, 0)) << "who cannot attach removes it";
}

TEST(LogObject, AttachesACallersHandle) {
  ZotOsMmfHandle first, second;
  uint32_t word = 0, otherWord = 0;
  uint32_t* level = nullptr;
  uint32_t* otherLevel = nullptr;
  ASSERT_EQ(1u, fnfOpenShm(&first, &word, &level));
  ASSERT_EQ(1u, fnfOpenShm(&second, &otherWord, &otherLevel));
  EXPECT_EQ(0x80000000u, word);
  EXPECT_EQ(first.address, level);
  *level = 0x1234;
  EXPECT_EQ(0x1234u, *otherLevel);
  EXPECT_EQ(2u, level[1]);
  fnvCloseShm(&second);
  EXPECT_EQ(1u, level[1]);
  fnvCloseShm(&second);
  EXPECT_EQ(1u, level[1]) << "closed twice, counted once";
  fnvCloseShm(&first);
  EXPECT_EQ(-1, first.shmId);

  const RefusedAttach refused(EMFILE);
  EXPECT_EQ(0u, fnfOpenShm(&first, &word, &level));
  EXPECT_EQ(&word, level);
  fnvCloseShm(&first);
}

}  // namespace
