// The window's peer service, as a process: what it refuses, and what a kill leaves.
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/shm.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <memory>
#include <random>
#include <string>

#include "Connection.h"
#include "SharedLog.h"
#include "mif/Mif32.h"
#include "mif/zotmif.h"
#include "support/Child.h"
#include "support/TemporaryDirectory.h"

namespace {

using namespace std::chrono_literals;
using zot_test::Child;

constexpr unsigned char kAddress[] = {1, 2, 0, 192}, kRange[] = {9, 0, 0, 10, 1, 0, 0, 10};

// A message with a name and a gateway, and one field more or instead when its OID is given.
Message profile(const std::string& name, unsigned short oid = 0, const std::string& value = {}) {
  Mif32 message;
  message.AddInt(kOidRequest, kRequestApply);
  message.AddStr(kOidName, name.c_str());
  message.AddBin(kOidGateway, kAddress, sizeof kAddress);
  if (oid != 0) {
    message.DelOid(oid);
    message.Add(oid, reinterpret_cast<const unsigned char*>(value.data()),
                static_cast<unsigned short>(value.size()));
  }
  message.AddEndKz();
  return {message.GetData(), message.GetData() + message.GetLen()};
}

std::string nameIn(const Message& message) {
  char name[64] = "";
  zotmifGetStr(message.data(), static_cast<uint32_t>(message.size()), kOidName, name, sizeof name, 1);
  return name;
}

class DemoService : public zot_test::TemporaryDirectory {
 protected:
  void SetUp() override { start(); }

  void TearDown() override {
    service_->kill(SIGTERM);
    EXPECT_EQ(0, service_->wait());
    service_.reset();
    EXPECT_FALSE(std::filesystem::exists("service.sock"));
  }

  void start() {
    service_ = std::make_unique<Child>([] {
      execl(DEMO_SERVICE, "service", "--directory", ".", nullptr);
      return 1;
    });
    ASSERT_TRUE(
        zot_test::waitUntil([] { return Connection::connectTo("service.sock", Deadline(1s)).isOpen(); }));
  }

  // Empty when there was no answer.
  static Message ask(const Message& message) {
    const Deadline deadline(5s);
    Connection service = Connection::connectTo("service.sock", deadline);
    return service.send(message, deadline) ? service.receive(deadline).value_or(Message()) : Message();
  }

  static std::string stored() {
    Mif32 read;
    read.AddInt(kOidRequest, kRequestRead);
    read.AddEndKz();
    const Message answer = ask({read.GetData(), read.GetData() + read.GetLen()});
    EXPECT_TRUE(isSound(answer) && integerIn(answer, kOidOutcome) == kRead);
    return nameIn(answer);
  }

  std::unique_ptr<Child> service_;
};

TEST_F(DemoService, RefusesEveryCutAndTellsTheFaultyField) {
  ASSERT_EQ(kApplied, integerIn(ask(profile("first")), kOidOutcome));
  const Message whole = profile("second", kOidOptions, std::string(4, '\0'));
  for (size_t size = 0; size < whole.size(); ++size) {
    const Message answer = ask({whole.begin(), whole.begin() + static_cast<long>(size)});
    EXPECT_EQ(kRefused, integerIn(answer, kOidOutcome)) << size;
  }
  Message twice = whole;
  twice.insert(twice.end(), whole.begin(), whole.end());
  EXPECT_EQ(kRefused, integerIn(ask(twice), kOidOutcome));

  const struct {
    unsigned short oid;
    std::string value;
  } faults[] = {
      {kOidName, ""},
      {kOidName, std::string(64, 'n')},
      {kOidName, "a\nb"},
      {kOidGateway, "123"},
      {kOidRange, std::string(reinterpret_cast<const char*>(kRange), 8)},
      {kOidRange, "1234567"},
      {kOidAdapter, "12345"},
      {kOidPorts, std::string(4, '\0')},
      {kOidPorts, "123"},
      {kOidPassword, "a\x1f"},
      {kOidKey, std::string(17, 'k')},
      {kOidOptions, "\xff\xff\xff\xff"},
      {99, "unknown"},
  };
  for (const auto& fault : faults) {
    const Message answer = ask(profile("second", fault.oid, fault.value));
    EXPECT_EQ(kRefused, integerIn(answer, kOidOutcome)) << fault.oid;
    EXPECT_EQ(fault.oid, integerIn(answer, kOidFaulty)) << fault.value;
  }
  EXPECT_EQ("first", stored());
}

TEST_F(DemoService, OutlivesPeersThatFloodStallOrDie) {
  EXPECT_TRUE(ask(Message(2 * kLargestMessage, 'x')).empty());
  // One connects and says nothing, one has gone before it is heard.
  const Connection silent = Connection::connectTo("service.sock", Deadline(1s));
  { const Connection gone = Connection::connectTo("service.sock", Deadline(1s)); }
  // Nobody takes this answer.
  {
    Connection deaf = Connection::connectTo("service.sock", Deadline(1s));
    deaf.send(profile("deaf"), Deadline(1s));
  }
  EXPECT_EQ("deaf", stored());
  // A second service leaves the first one alone.
  EXPECT_EQ(1, zot_test::runInChild([] {
              execl(DEMO_SERVICE, "service", "--directory", ".", nullptr);
              return 2;
            }));
  EXPECT_EQ("deaf", stored());
}

TEST_F(DemoService, WatchTellsOfEveryProfileApplied) {
  Child watch([] {
    return freopen("watch", "w", stdout) != nullptr
               ? execl(DEMO_SERVICE, "service", "--watch", "--directory", ".", nullptr)
               : 1;
  });
  std::string expected;
  for (const char* name : {"one", "two"}) {
    ASSERT_EQ(kApplied, integerIn(ask(profile(name)), kOidOutcome));
    expected += std::string("applied: ") + name + ", revision " + (expected.empty() ? "1" : "2") + "\n";
    EXPECT_TRUE(zot_test::waitUntil([&] { return zot_test::readFile("watch") == expected; })) << expected;
  }
  watch.kill(SIGTERM);
  EXPECT_EQ(0, watch.wait());
}

// What killed processes leave in the namespace goes, or the next test would find it.
void removeNamedObjects() {
  shmctl(shmget(0x8009, 0, 0), IPC_RMID, nullptr);
  semctl(semget(static_cast<key_t>(kAppliedEventKey), 0, 0), 0, IPC_RMID);
}

TEST_F(DemoService, KilledAtAnyMomentLeavesTheOldProfileOrTheNew) {
  std::mt19937 random(20);
  std::string old = "profile 0";
  ASSERT_EQ(kApplied, integerIn(ask(profile(old)), kOidOutcome));
  for (int i = 1; i <= 50; ++i) {
    const std::string fresh = "profile " + std::to_string(i);
    {
      Connection connection = Connection::connectTo("service.sock", Deadline(1s));
      ASSERT_TRUE(connection.send(profile(fresh), Deadline(1s)));
      usleep(static_cast<useconds_t>(random() % 1500));
      service_->kill(SIGKILL);
      EXPECT_EQ(128 + SIGKILL, service_->wait());
    }
    start();
    const std::string kept = stored();
    EXPECT_TRUE(kept == old || kept == fresh) << "\"" << kept << "\" after " << fresh;
    old = kept;
  }
  removeNamedObjects();
}

}  // namespace
