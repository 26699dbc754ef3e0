#include "Lives.h"

#include <sched.h>
#include <sys/stat.h>

#include <atomic>
#include <cstring>
#include <filesystem>

#include "ipaddr/ZotIpAddr.h"
#include "log/ZotLog.h"
#include "mif/Mif32.h"
#include "multilang/LanguageFileBytes.h"
#include "multilang/ZOT_MultiLanguage.h"
#include "os/ZotOs.h"
#include "support/TemporaryDirectory.h"

namespace zot_test {
namespace {

constexpr uint32_t kKey = 0x5A00;
const std::string bytes(200000, 'b');
const char* broken = nullptr;

void must(bool condition, const char* promise) {
  if (!condition) {
    broken = promise;
  }
}

// Each part of a life returns whether every result said success.

bool records() {
  Mif32 mif;
  const bool first = mif.AddInt(1, 7) != 0;
  const bool grown = mif.AddBin(2, reinterpret_cast<const unsigned char*>(bytes.data()), 5000) != 0;
  unsigned int number = 7, length = 5000;
  unsigned char* value = nullptr;
  must((mif.GetInt(1, &number, 1) == 1) == (first && grown) && number == 7, "a growth keeps all or nothing");
  must((mif.GetBinPtr(2, &value, &length, 1) == 1) == grown && length == 5000, "what was added is there");
  const bool updated = mif.UpdStr(1, "a longer value than before", 1) != 0;
  char text[64] = {};
  must(!updated || (mif.GetStr(1, text, sizeof text, 1) != 0 && text[0] == 'a'), "an update is there");
  return first && grown && updated && mif.AddEndKz() != 0;
}

bool addressText() {
  ZotIpAddr address("192.168.1.254");
  const char* const text = address.GetStr();
  must(text != nullptr && (*text == '\0' || std::strcmp(text, "192.168.1.254") == 0), "the text, or none");
  return text != nullptr && *text != '\0';
}

// The key 0 makes them local.
template <uint32_t key>
bool eventAndMutex() {
  ZotOsEventHandle* event = nullptr;
  ZotOsMutexHandle *mutex = nullptr, *again = nullptr;
  uint32_t passed = 77, held = 77;
  uint32_t all = ZotOsEventCreate(&event, key) & ZotOsMutexCreate(&mutex, key == 0 ? 0 : key + 1);
  if (event != nullptr) {
    all &= ZotOsEventSet(event) & ZotOsEventWait(event, 0, &passed);
    all &= ZotOsEventClose(event);
  }
  if (mutex != nullptr) {
    all &= key == 0 ? 1 : ZotOsMutexOpen(&again, key + 1);
    if (ZotOsMutexWait(mutex, key == 0 ? -1 : 0, &held) == 1 && held == kZotOsWaitSignalled) {
      must(key == 0 || ZotOsSemaphoreVal(mutex->semId) <= 0, "a mutex that is held");
      all &= ZotOsMutexRelease(mutex);
    }
    all &= again != nullptr ? ZotOsMutexClose(again) : 1;
    all &= ZotOsMutexClose(mutex);
  }
  return all == 1 && passed == kZotOsWaitSignalled && held == kZotOsWaitSignalled;
}

uint32_t closeSegment(ZotOsMmfHandle& handle) {
  const uint32_t closed = ZotOsMmfClose(&handle);
  if (handle.address != nullptr) {
    ZotOsMmfClose(&handle);  // its state could not be read, or its removal was not reported
    return 0;
  }
  return closed;
}

bool segment() {
  ZotOsMmfHandle made = {}, opened = {};
  if (ZotOsMmfCreate(&made, 100, nullptr, kKey, 1) == 0) {
    return false;
  }
  must(made.address != nullptr && made.created == 1, "a new segment");
  const uint32_t second = ZotOsMmfOpen(&opened, 0, kKey);
  const uint32_t closed = second != 0 ? closeSegment(opened) : 0;
  return (closeSegment(made) & second & closed) == 1;
}

bool mappedFile() {
  uint32_t all = 1;
  for (const uint32_t size : {4096u, 8192u}) {  // made, then extended
    ZotOsMmfHandle handle = {};
    const uint32_t mapped = ZotOsMmfCreate(&handle, size, "new/map", 0, 1);
    all &= mapped;
    if (mapped != 0) {
      std::memset(handle.address, 'm', size);
      all &= ZotOsMmfFlush(&handle, handle.address, size);
    }
    if (handle.fd != -1) {
      all &= ZotOsMmfClose(&handle);
    }
  }
  return all == 1;
}

bool logObject() {
  ZotOsLog* log = ZotOspLogNew();
  const bool made = log != nullptr;
  must(!made || ZotOsdGetLogLevel(log) == 0, "a level");
  ZotOsvLogDelete(&log);
  must(log == nullptr, "a pointer that is cleared");
  return made;
}

// Without memory for its buffer a copy is empty and good; callers rely on that.
bool copy() {
  uint32_t size = 0;
  return (ZotOsCopyFile("source", "new/copy", 0) & ZotOsGetFileSize("new/copy", &size)) == 1 && size != 0;
}

bool search() {
  static ZotOsFindData find;
  char name[ZOT_OS_FIND_TEXT];
  uint32_t size = 0, all = 0, hits = 0;
  uint32_t found = ZotOsFindFirst(&find, "tree/*.txt", name, nullptr, nullptr, &size);
  for (; found != 0; ++hits) {
    all += size;
    found = ZotOsFindNext(&find, name, nullptr, nullptr, &size);
  }
  return ZotOsFindClose(&find) == 1 && hits == 2 && all == 2;
}

bool texts() {
  ZOT_MultiLanguage loader;
  loader.SetLanguageFileName("language");
  ProgramTexts* const table = loader.loadProgramTexts(1, 0, 0, nullptr);
  const char* const text = table != nullptr ? table->getPrgTextDefA(3, 4, 1, "default", nullptr, 0) : "none";
  const bool loaded = std::strcmp(text, "a text") == 0;
  must(loaded || table == nullptr || std::strcmp(text, "default") == 0, "the text or its default");
  delete table;
  return loaded;
}

bool process() {
  uint32_t code = 77;
  const uint32_t result = ZotOsCreateProcessEx("true", 0, &code);
  must((result == 1) == (code == 0) && (result == 1 || code == UINT32_MAX), "an exit code");
  return result == 1;
}

bool thread() {
  static uint32_t state;
  const auto obey = [](void*) -> void* {
    const std::atomic_ref shared(state);
    while (shared != 3) {
      sched_yield();
    }
    shared = 0;
    return nullptr;
  };
  uint32_t handle = 77;
  const bool started = ZotOsThreadStart(&handle, &state, obey, nullptr) == 1;
  must((handle != 0) == started, "a handle");
  must(ZotOsThreadStop(nullptr, &state, 0, nullptr, 0, "life") == 1 && state == 0, "a thread that ends");
  return started;
}

const Life kLives[] = {
    {"namedObjects", eventAndMutex<kKey>, nullptr},
    {"copy", copy,
     [] {
       return readFile("new/copy") == bytes &&
              std::filesystem::status("new/copy").permissions() == std::filesystem::perms{04640};
     }},
    {"texts", texts, nullptr},
    {"records", records, nullptr},
    {"address", addressText, nullptr},
    {"localObjects", eventAndMutex<0>, nullptr},
    {"segment", segment, nullptr},
    // One that could not be seen before it was opened is extended by the whole size.
    {"mappedFile", mappedFile, [] { return readFile("new/map").starts_with(std::string(8192, 'm')); }},
    {"log", logObject, nullptr},
    {"search", search, nullptr},
    {"deletion", [] { return ZotOsDeleteDirTree("tree") == 1; },
     [] { return !std::filesystem::exists("tree"); }},
    {"directory", [] { return ZotOsChkAndCreateDir("new/b/c") == 1; },
     [] { return std::filesystem::is_directory("new/b/c"); }},
    {"process", process, nullptr},
    {"thread", thread, nullptr}};

}  // namespace

std::span<const Life> allLives() {
  return kLives;
}

std::span<const Life> interruptibleLives() {
  return std::span(kLives).first(3);
}

void prepareLife() {
  std::filesystem::remove_all("new");
  std::filesystem::create_directories("new");
  std::filesystem::create_directories("tree/below");
  for (const char* file : {"tree/a.txt", "tree/b.txt", "tree/c", "tree/below/d"}) {
    writeFile(file, "x");
  }
  writeFile("source", bytes);
  chmod("source", 04640);
  std::vector<std::string> records(10, textRecord(3, 5, "another"));  // so many have an index
  records.front() = textRecord(3, 4, "a text");
  writeFile("language", oneForm(1, records));
  broken = nullptr;
}

const char* brokenPromise() {
  return broken;
}

}  // namespace zot_test
