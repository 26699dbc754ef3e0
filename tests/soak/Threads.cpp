// Threads of one process: first opens and last closes beside lines and local locks, and
// lookups in tables that are reloaded.
#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

#include "log/ZotLog.h"
#include "multilang/ProgramTexts.h"
#include "multilang/ZOT_MultiLanguage.h"
#include "os/ZotOsSync.h"
#include "tests/multilang/LanguageFileBytes.h"
#include "tests/soak/Soak.h"

namespace soak {

namespace {

long openDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

long residentPages() {
  long total = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> total >> resident;
  return resident;
}

void openAndClose(uint32_t key, const Deadline& deadline, std::atomic<long>& done) {
  for (; !deadline.passed(); ++done) {
    ZotOsMutexHandle* mutex = nullptr;
    if (ZotOsMutexCreate(&mutex, key) == 0 || ZotOsMutexClose(mutex) == 0) {
      fail("a key of one's own cannot be opened and closed", done);
    }
  }
}

void waitAndRelease(const Deadline& deadline, std::atomic<long>& done) {
  ZotOsMutexHandle* mutex = nullptr;
  ZotOsMutexCreate(&mutex, 0);
  for (; !deadline.passed(); ++done) {
    ZotOsMutexWait(mutex, -1, nullptr);
    ZotOsMutexRelease(mutex);
  }
  ZotOsMutexClose(mutex);
}

void switchLevel(const Deadline& deadline) {
  while (!deadline.passed()) {
    if (ZotOsLog* log = ZotOspLogNew(); log != nullptr) {
      ZotOsvSetLogLevel(log, ZOT_LOG_TRACE | ZOT_LOG_DEBUG | ZOT_LOG_STDOUT);
      ZotOsvLog(log, ZOT_LOG_TRACE, "TRACE a line of the caller's own");
      ZotOsvResLogLevel(log, ZOT_LOG_TRACE | ZOT_LOG_DEBUG);
      ZotOsvLogDelete(&log);
    }
  }
}

constexpr unsigned int kForm = 7;
constexpr uint32_t kTexts = 50;

void writeLanguage(const std::string& path, const std::string& word) {
  std::vector<std::string> records;
  for (uint32_t element = 1; element <= kTexts; ++element) {
    records.push_back(textRecord(element, 0, word + std::to_string(element)));
  }
  std::ofstream(path, std::ios::binary) << oneForm(kForm, records);
}

}  // namespace

void cycles(double seconds) {
  const long descriptors = openDescriptors();
  std::FILE* const shown = fdopen(dup(STDOUT_FILENO), "w");
  silenceLibrary();
  std::atomic<long> opened = 0, waited = 0;
  long pages = 0;
  // The first second warms the heap up; from then on nothing may grow.
  for (const double length : {1.0, seconds}) {
    pages = residentPages();
    const Deadline deadline(length);
    std::vector<std::thread> threads;
    for (const uint32_t key : {0x50AC2000u, 0x50AC2001u}) {
      threads.emplace_back([&, key] { openAndClose(key, deadline, opened); });
      threads.emplace_back([&] { waitAndRelease(deadline, waited); });
    }
    threads.emplace_back([&] { switchLevel(deadline); });
    for (std::thread& thread : threads) {
      thread.join();
    }
  }
  if (leftovers() != 0) {
    fail("objects stayed behind", leftovers());
  }
  if (openDescriptors() != descriptors + 1) {
    fail("descriptors stayed open", openDescriptors() - descriptors);
  }
  if (residentPages() > pages + 256) {
    fail("pages grew", residentPages() - pages);
  }
  std::fprintf(shown, "%ld opens and closes, %ld waits and releases beside them, nothing grew\n",
               opened.load(), waited.load());
  std::fclose(shown);
}

void readers(double seconds) {
  char folder[] = "/tmp/zot-soak.XXXXXX";
  if (mkdtemp(folder) == nullptr) {
    fail("no temporary directory");
  }
  writeLanguage(std::string(folder) + "/t.de", "Wort");
  writeLanguage(std::string(folder) + "/t.en", "word");
  ZOT_MultiLanguage loader;
  loader.SetLanguageFilePath(folder);
  loader.SetLanguageFileBaseName("t");
  loader.SetLanguageId(1);
  ProgramTexts* texts = loader.loadProgramTexts(kForm, 0, 0, nullptr);
  if (texts == nullptr) {
    fail("the texts cannot be loaded");
  }
  const Deadline deadline(seconds);
  std::atomic<long> lookups = 0;
  std::vector<std::thread> threads;
  for (uint32_t reader = 0; reader < 8; ++reader) {
    threads.emplace_back([&, reader] {
      Random random(reader + 1);
      for (; !deadline.passed(); ++lookups) {
        const auto element = static_cast<uint32_t>(random() % kTexts + 1);
        char text[32];
        texts->getPrgTextDefA(element, 0, 1, "", text, sizeof text);
        const std::string number = std::to_string(element);
        if (text != "Wort" + number && text != "word" + number) {
          fail(text, element);
        }
      }
    });
  }
  long reloads = 0;
  for (; !deadline.passed(); ++reloads) {
    loader.SetLanguageId(reloads % 2 == 0 ? 2 : 1);
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  delete texts;
  std::filesystem::remove_all(folder);
  std::printf("8 readers: %ld lookups over %ld reloads, every text whole\n", lookups.load(), reloads);
}

}  // namespace soak
