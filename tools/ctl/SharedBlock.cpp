#include "tools/ctl/SharedBlock.h"

#include <fmt/format.h>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "tools/common/Failure.h"

namespace ctl {

namespace {

[[noreturn]] void fail() {
  throw tool::Failure(fmt::format("the shared block (key {:#x}): {}", kSharedBlockKey, std::strerror(errno)));
}

// Nothing when the segment is gone.
std::optional<shmid_ds> statusOf(int id) {
  shmid_ds status{};
  if (shmctl(id, IPC_STAT, &status) == 0) {
    return status;
  }
  if (errno == EINVAL || errno == EIDRM) {
    return std::nullopt;
  }
  fail();
}

// The block in this process; null when the segment is gone.
class Attachment {
 public:
  Attachment(int id, int flags) : address_(shmat(id, nullptr, flags)) {
    if (address_ == reinterpret_cast<void*>(-1)) {
      address_ = nullptr;
      if (errno != EINVAL && errno != EIDRM) {
        fail();
      }
    }
  }
  ~Attachment() {
    if (address_ != nullptr) {
      shmdt(address_);
    }
  }
  Attachment(const Attachment&) = delete;
  Attachment& operator=(const Attachment&) = delete;

  SharedControlBlock* block() const { return static_cast<SharedControlBlock*>(address_); }

 private:
  void* address_;
};

// Removes a block that nobody has attached and that nobody counts as attached.
//
// The client's last process does so itself, unless somebody else is attached when it
// looks; where that was us, its part falls to us.  A process that was killed has not
// counted itself out: what it left is for the next one.
//
// False when others came meanwhile, who may have left in the same way.
bool removeForTheLastOne(int id) {
  const Attachment attachment(id, 0);
  const auto status = statusOf(id);
  const bool alone = attachment.block() != nullptr && status && status->shm_nattch == 1;
  if (alone && attachment.block()->ProcCnt.load() == 0) {
    shmctl(id, IPC_RMID, nullptr);
  }
  return alone || !status;
}

void leaveNothing(int id) {
  for (bool done = false; !done;) {
    // A process that saw us attached may still have to detach.
    usleep(1000);
    const auto status = statusOf(id);
    done = !status || status->shm_nattch != 0 || removeForTheLastOne(id);
  }
}

using Use = std::function<void(SharedControlBlock&, const shmid_ds&, int id)>;

// False when there is no block.
bool useBlock(int flags, const Use& use) {
  static int seen = -1;  // the block that we were attached to beside others
  const int id = shmget(kSharedBlockKey, 0, 0);
  if (id == -1 && errno != ENOENT) {
    fail();
  }
  auto before = id != -1 ? statusOf(id) : std::nullopt;
  if (before && before->shm_nattch == 0 && id == seen) {
    leaveNothing(id);
    before = statusOf(id);
  }
  // One that nobody has attached yet is just being made; it must not meet us first.
  if (!before || (before->shm_nattch == 0 && before->shm_atime == 0)) {
    return false;
  }
  if (before->shm_segsz < kSharedBlockSize) {
    throw tool::Failure(fmt::format("the segment under key {:#x} has {} bytes, the shared block has {}",
                                    kSharedBlockKey, before->shm_segsz, kSharedBlockSize));
  }
  {
    const Attachment attachment(id, flags);
    if (attachment.block() == nullptr) {
      return false;
    }
    use(*attachment.block(), *before, id);
  }
  if (before->shm_nattch != 0) {
    seen = id;
    leaveNothing(id);
  }
  return true;
}

Segment segmentOf(const shmid_ds& status, int id) {
  return {.id = id,
          .size = status.shm_segsz,
          .mode = status.shm_perm.mode & 0777u,
          .owner = status.shm_perm.uid,
          .group = status.shm_perm.gid,
          .attached = status.shm_nattch,
          .created = status.shm_ctime,
          .creator = status.shm_cpid};
}

}  // namespace

std::optional<Snapshot> readBlock() {
  Snapshot copy{};
  const bool found = useBlock(SHM_RDONLY, [&](SharedControlBlock& block, const shmid_ds& status, int id) {
    copy.segment = segmentOf(status, id);
    copy.level = block.Log.load();
    copy.processes = block.ProcCnt.load();
    copy.semaphores = block.GlobSemCnt.load();
    copy.references = block.NamedSemCnt.load();
    copy.highestSlot = block.MaxNamedIdx.load();
    for (uint32_t index = 0; index < kNamedSlots; ++index) {
      copy.slots[index] = {index, block.cnt[index].semId.load(), block.cnt[index].count.load()};
    }
  });
  return found ? std::optional(copy) : std::nullopt;
}

bool changeBlock(const std::function<void(SharedControlBlock&)>& change) {
  return useBlock(0, [&](SharedControlBlock& block, const shmid_ds&, int) { change(block); });
}

bool inUse(const Slot& slot) {
  return slot.semId != kFreeSlot && (slot.semId != 0 || slot.count != 0);
}

}  // namespace ctl
