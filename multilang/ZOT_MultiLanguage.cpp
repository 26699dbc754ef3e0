#include "multilang/ZOT_MultiLanguage.h"

#include <fcntl.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>
#include <string_view>

#include "multilang/LanguageFileInternal.h"
#include "multilang/MutexHoldInternal.h"
#include "os/CancellationOff.h"
#include "os/FileDescriptor.h"
#include "os/ZotOsFile.h"

namespace {

constexpr uint32_t kEnglish = 2;
constexpr uint32_t kRegistryGrowth = 2;
constexpr size_t kSlotSize = sizeof(void*);

// Both tables are indexed by language number - 1.
constexpr std::string_view cMlFileExtension[] = {".de", ".en", ".es", ".fr", ".it", ".se",
                                                 ".dk", ".no", ".fi", ".nl", ".pl"};
constexpr std::string_view cMlFileNames[] = {"deutsch.dat", "english.dat", "spain.dat",   "french.dat",
                                             "italian.dat", "swedish.dat", "danish.dat",  "norweg.dat",
                                             "finnish.dat", "dutch.dat",   "polnisch.dat"};
static_assert(std::size(cMlFileExtension) == 11 && std::size(cMlFileNames) == 11);

std::string_view viewOf(const char* text) {
  return text != nullptr ? std::string_view(text) : std::string_view();
}

// The texts one after the other, on the heap; null when memory runs out.
template <class... Parts>
char* joinTexts(Parts... parts) {
  auto* joined = static_cast<char*>(std::calloc((parts.size() + ... + 1), 1));
  if (joined != nullptr) {
    char* end = joined;
    ((end = std::copy(parts.begin(), parts.end(), end)), ...);
  }
  return joined;
}

// Whether a copy of text now stands in *stored; without memory the old one stays.
bool replaceText(char** stored, const char* text) {
  char* copy = text != nullptr ? joinTexts(std::string_view(text)) : nullptr;
  if (copy == nullptr) {
    return false;
  }
  std::free(*stored);
  *stored = copy;
  return true;
}

char* buildPath(std::string_view directory, std::string_view fileName, std::string_view baseName,
                uint32_t number) {
  const bool needsSlash = !directory.empty() && directory.back() != '/' && directory.back() != '\\';
  const std::string_view separator = needsSlash ? "/" : "";
  if (!fileName.empty()) {
    return joinTexts(directory, separator, fileName);
  }
  if (!baseName.empty()) {
    return joinTexts(directory, separator, baseName, cMlFileExtension[number - 1]);
  }
  return joinTexts(directory, separator, cMlFileNames[number - 1]);
}

struct CloseStream {
  void operator()(FILE* stream) const { std::fclose(stream); }
};
using OpenStream = std::unique_ptr<FILE, CloseStream>;

}  // namespace

ZOT_MultiLanguage::ZOT_MultiLanguage()
    : languageId(0),
      directory(nullptr),
      fileName(nullptr),
      baseName(nullptr),
      fullPath(nullptr),
      rebuildPath(1),
      registry(nullptr),
      registryMutex(nullptr),
      registryCapacity(0),
      registryCount(0) {
  ZotOsMutexCreate(&registryMutex, 0);
}

ZOT_MultiLanguage::~ZOT_MultiLanguage() {
  ptListClear();
  ZotOsMutexClose(registryMutex);
  for (char* text : {directory, fileName, baseName, fullPath}) {
    std::free(text);
  }
}

void ZOT_MultiLanguage::SetLanguageFilePath(const char* newDirectory) {
  if (replaceText(&directory, newDirectory)) {
    rebuildPath = 1;
  }
}

void ZOT_MultiLanguage::SetLanguageFileName(const char* newFileName) {
  if (replaceText(&fileName, newFileName)) {
    rebuildPath = 1;
  }
}

void ZOT_MultiLanguage::SetLanguageFileBaseName(const char* newBaseName) {
  if (replaceText(&baseName, newBaseName)) {
    rebuildPath = 1;
  }
}

void ZOT_MultiLanguage::SetLanguageId(unsigned int languageNumber) {
  if (languageNumber == languageId) {
    return;
  }
  languageId = languageNumber;
  rebuildPath = 1;
  RefreshAllRegisteredChildren();
}

unsigned int ZOT_MultiLanguage::GetOsLanguage() {
  return kEnglish;
}

const char* ZOT_MultiLanguage::buildFilePathName(unsigned int languageNumber) {
  if (rebuildPath == 0) {
    return fullPath;
  }
  uint32_t number = languageNumber;
  for (;;) {
    std::free(fullPath);
    if (number < 1 || number > std::size(cMlFileNames)) {
      number = kEnglish;
    }
    fullPath = buildPath(viewOf(directory), viewOf(fileName), viewOf(baseName), number);
    if (fullPath == nullptr) {
      return nullptr;
    }
    if (number == kEnglish || ZotOsFileExists(fullPath) != 0) {
      break;
    }
    number = kEnglish;
  }
  rebuildPath = 0;
  return fullPath;
}

FILE* ZOT_MultiLanguage::openFormId(unsigned int formNumber, tMlForms* formRecord) {
  const CancellationOff wholeCall;
  const char* path = formRecord != nullptr ? buildFilePathName(languageId) : nullptr;
  // The 'e' keeps the descriptor out of programs that another thread starts.
  OpenStream stream(path != nullptr ? std::fopen(path, "rbe") : nullptr);
  if (!stream || !LanguageFile(fileno(stream.get())).findForm(formNumber, formRecord) ||
      std::fseek(stream.get(), static_cast<long>(formRecord->textOffset), SEEK_SET) != 0) {
    return nullptr;
  }
  return stream.release();
}

int ZOT_MultiLanguage::readElementText(FILE* file, tMlTexte* textRecord) {
  const CancellationOff wholeCall;
  return file != nullptr && textRecord != nullptr && mlReadText(file, textRecord) ? 1 : 0;
}

void ZOT_MultiLanguage::convertDelphiString(char* buffer, unsigned int size) {
  if (buffer != nullptr) {
    mlTerminateShortString(buffer, size);
  }
}

ProgramTexts* ZOT_MultiLanguage::loadProgramTexts(unsigned int form, unsigned int element,
                                                  signed char onlyElement, ProgramTexts* table) {
  const CancellationOff wholeCall;
  const char* path = buildFilePathName(languageId);
  const FileDescriptor descriptor(path != nullptr ? open(path, O_RDONLY | O_CLOEXEC) : -1);
  LanguageFile file(descriptor.get());
  tMlForms record;
  if (!descriptor.isOpen() || !file.findForm(form, &record)) {
    return nullptr;
  }
  if (table != nullptr) {
    const MutexHold hold(table->mutex);
    table->ClearAllTexts();
    return readTexts(&file, record.textCount, element, onlyElement != 0, table) ? table : nullptr;
  }
  std::unique_ptr<ProgramTexts> fresh(new (std::nothrow) ProgramTexts(this, form, element, onlyElement));
  if (!fresh || !readTexts(&file, record.textCount, element, onlyElement != 0, fresh.get())) {
    return nullptr;
  }
  if (ptListAdd(fresh.get()) == 0) {
    // A table that the loader does not know must not call back when it goes.
    fresh->unregisterParent();
  }
  return fresh.release();
}

bool ZOT_MultiLanguage::readTexts(LanguageFile* file, uint32_t textCount, uint32_t element, bool onlyElement,
                                  ProgramTexts* table) {
  for (uint32_t i = 0; i < textCount; ++i) {
    if (!file->nextText()) {
      return false;
    }
    const std::string_view text = file->text();
    const bool wanted = !onlyElement || file->element() == element;
    if (wanted && !table->addBytes(file->element(), file->subElement(), text.data(), text.size())) {
      return false;
    }
  }
  return true;
}

uint32_t ZOT_MultiLanguage::RefreshAllRegisteredChildren() {
  const CancellationOff wholeCall;
  const MutexHold hold(registryMutex);
  uint32_t allLoaded = 1;
  for (uint32_t i = 0; i < registryCapacity; ++i) {
    ProgramTexts* table = registry[i];
    if (table != nullptr &&
        loadProgramTexts(table->form, table->element, table->onlyElement, table) == nullptr) {
      allLoaded = 0;
    }
  }
  return allLoaded;
}

uint32_t ZOT_MultiLanguage::ptListAdd(ProgramTexts* table) {
  if (table == nullptr) {
    return 0;
  }
  const MutexHold hold(registryMutex);
  if (!hold.held()) {
    return 0;
  }
  ProgramTexts** slot = std::find(registry, registry + registryCapacity, nullptr);
  if (slot == registry + registryCapacity) {
    const size_t capacity = size_t{registryCapacity} + kRegistryGrowth;
    auto* grown = static_cast<ProgramTexts**>(std::realloc(registry, capacity * kSlotSize));
    if (grown == nullptr) {
      ptListClear();
      return 0;
    }
    slot = grown + registryCapacity;
    std::fill_n(slot, kRegistryGrowth, nullptr);
    registry = grown;
    registryCapacity += kRegistryGrowth;
  }
  *slot = table;
  ++registryCount;
  // One that knows no loader would go without leaving the registry.
  if (table->parent == nullptr) {
    table->parent = this;
  }
  return 1;
}

void ZOT_MultiLanguage::ptListClear() {
  const MutexHold hold(registryMutex);
  for (uint32_t i = 0; i < registryCapacity; ++i) {
    if (registry[i] != nullptr) {
      registry[i]->unregisterParent();
      --registryCount;
    }
  }
  std::free(registry);
  registry = nullptr;
  registryCapacity = 0;
}

void ZOT_MultiLanguage::unregisterChild(ProgramTexts* table) {
  if (table == nullptr) {
    return;
  }
  const MutexHold hold(registryMutex);
  if (!hold.held()) {
    return;
  }
  for (uint32_t i = 0; i < registryCapacity; ++i) {
    if (registry[i] == table) {
      registry[i] = nullptr;
      --registryCount;
    }
  }
  if (table->parent == this) {
    table->unregisterParent();
  }
}

DummyProgramTexts* ZOT_MultiLanguage::GetDummyProgramTexts() {
  return new (std::nothrow) DummyProgramTexts();
}
