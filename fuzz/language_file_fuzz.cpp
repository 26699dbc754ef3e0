// A foreign language file, loaded by form and by element.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "multilang/ZOT_MultiLanguage.h"

namespace {

// One file for the whole run, in memory where the system has such a place.
const std::string& languageFile() {
  static const std::string path = [] {
    const std::string directory = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
    return directory + "/zot_language_fuzz_" + std::to_string(getpid());
  }();
  static const int atEnd = std::atexit([] { std::remove(languageFile().c_str()); });
  (void)atEnd;
  return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::FILE* file = std::fopen(languageFile().c_str(), "wb");
  if (file == nullptr) {
    std::abort();
  }
  std::fwrite(data, 1, size, file);
  std::fclose(file);
  ZOT_MultiLanguage loader;
  loader.SetLanguageFileName(languageFile().c_str());
  delete loader.loadProgramTexts(1, 0, 0, nullptr);
  ProgramTexts table(nullptr, 1, 3, 1);
  loader.loadProgramTexts(1, 3, 1, &table);
  table.getPrgTextDefA(3, 0, 1, "default", nullptr, 0);
  return 0;
}
