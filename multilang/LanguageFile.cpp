#include "multilang/LanguageFileInternal.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

constexpr std::string_view kVersion = "1.0";
constexpr uint8_t kLongestVersion = 10;

template <class Record>
bool readWhole(FILE* file, Record* record) {
  return std::fread(record, sizeof *record, 1, file) == 1;
}

bool hasOurVersion(const tMlHeader& header) {
  const auto length = std::min(header.versionLength, kLongestVersion);
  return std::string_view(header.version, length) == kVersion;
}

// Whether the search found the form; the count in the header only bounds it.
bool findForm(FILE* file, uint32_t formCount, uint32_t formNumber, tMlForms* form) {
  for (uint32_t i = 0; i < formCount && readWhole(file, form); ++i) {
    if (form->formNumber == formNumber) {
      return true;
    }
  }
  return false;
}

}  // namespace

OpenFile mlOpenForm(const char* path, uint32_t formNumber, tMlForms* form) {
  // The 'e' keeps the descriptor out of programs that another thread starts.
  OpenFile file(std::fopen(path, "rbe"));
  tMlHeader header;
  if (!file || !readWhole(file.get(), &header) || !hasOurVersion(header) ||
      !findForm(file.get(), header.formCount, formNumber, form)) {
    return nullptr;
  }
  // Where long has 32 bits, an offset of 2 GiB and more turns negative and is refused.
  if (std::fseek(file.get(), static_cast<long>(form->textOffset), SEEK_SET) != 0) {
    return nullptr;
  }
  return file;
}

bool mlReadText(FILE* file, tMlTexte* record) {
  uint32_t size;
  tMlTexte read = {};
  if (!readWhole(file, &size) || size > sizeof read || std::fread(&read, 1, size, file) != size) {
    return false;
  }
  mlTerminateShortString(read.text, sizeof read.text);
  *record = read;
  return true;
}

void mlTerminateShortString(char* buffer, uint32_t size) {
  if (size == 0) {
    return;
  }
  const uint32_t length = static_cast<unsigned char>(buffer[0]);
  std::memmove(buffer, buffer + 1, size - 1);
  buffer[std::min(length, size - 1)] = '\0';
}
