// Every life again and again: with the n-th allocation and all behind it refused, with the
// n-th call of the system failing, for every n, and in a storm of signals.  Whatever fails, a
// result that says success is true, nothing stays open, in the system's tables or locked, and
// the same life works afterwards.  Lost memory is for the address sanitizer to see.
#include <string>

#include "FailingCalls.h"
#include "Lives.h"
#include "os/ThreadRegistryInternal.h"
#include "support/Child.h"
#include "support/FailingHeap.h"
#include "support/IpcLeftovers.h"
#include "support/TemporaryDirectory.h"

namespace {

using namespace zot_test;

class Fault : public TemporaryDirectory, public testing::WithParamInterface<Life> {
 protected:
  static void expectWhole(bool claimed, long descriptors) {
    EXPECT_STREQ(nullptr, brokenPromise());
    EXPECT_TRUE(!claimed || GetParam().holds == nullptr || GetParam().holds());
    EXPECT_EQ(descriptors, openDescriptors());
    EXPECT_TRUE(waitUntil([] { return ThreadRegistry::instance().size() == 0; }));
  }

  // Lives while the n-th step fails and then once more; false when there is no n-th.
  template <typename Failing>
  static bool survives(unsigned int n) {
    SCOPED_TRACE(n);
    prepareLife();
    const long descriptors = openDescriptors();
    bool claimed = false, refused = false;
    {
      const Failing failing(n);
      claimed = GetParam().live();
      refused = failing.refused();
    }
    EXPECT_TRUE(claimed || refused);
    expectWhole(claimed, descriptors);
    prepareLife();
    const bool works = GetParam().live();
    EXPECT_TRUE(works);
    expectWhole(works, descriptors);
    // A block that could not be examined stays, until the next life takes it along.
    EXPECT_EQ("", ipcLeftovers());
    return refused && !HasFailure();
  }
};

TEST_P(Fault, OfTheHeap) {
  for (unsigned int n = 0; survives<FailingHeap>(n); ++n) {
  }
}

TEST_P(Fault, OfTheSystem) {
  for (unsigned int n = 0; survives<FailingCall>(n); ++n) {
  }
}

INSTANTIATE_TEST_SUITE_P(Life, Fault, testing::ValuesIn(allLives()),
                         [](const auto& life) { return std::string(life.param.name); });

// What a process makes once and keeps can only be missing in one that has not lived yet.
class FirstLife : public Fault {};

TEST_P(FirstLife, GoesOnWithoutWhatIsMadeOnce) {
  for (bool (*const next)(unsigned int) : {survives<FailingHeap>, survives<FailingCall>}) {
    int code = 1;
    for (unsigned int n = 0; code == 1; ++n) {
      code = runInChild([=] { return next(n) ? 1 : 0; });
    }
    EXPECT_EQ(0, code);
  }
}

INSTANTIATE_TEST_SUITE_P(Life, FirstLife, testing::Values(allLives().front()),
                         [](const auto& life) { return std::string(life.param.name); });

class Signals : public Fault {};

TEST_P(Signals, InterruptOnlyForAMoment) {
  prepareLife();
  const long descriptors = openDescriptors();
  bool claimed = false;
  {
    const InterruptedCalls storm;
    claimed = GetParam().live();
  }
  EXPECT_TRUE(claimed);
  expectWhole(claimed, descriptors);
}

INSTANTIATE_TEST_SUITE_P(Life, Signals, testing::ValuesIn(interruptibleLives()),
                         [](const auto& life) { return std::string(life.param.name); });

}  // namespace
