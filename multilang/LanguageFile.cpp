#include "multilang/LanguageFileInternal.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "os/RepeatedOnSignalInternal.h"

namespace {

constexpr std::string_view kVersion = "1.0";
constexpr uint8_t kLongestVersion = 10;

bool hasOurVersion(const tMlHeader& header) {
  const auto length = std::min(header.versionLength, kLongestVersion);
  return std::string_view(header.version, length) == kVersion;
}

}  // namespace

bool LanguageFile::findForm(uint32_t formNumber, tMlForms* form) {
  tMlHeader header;
  if (!take(&header) || !hasOurVersion(header)) {
    return false;
  }
  // The count in the header only bounds the search.
  for (uint32_t i = 0; i < header.formCount && take(form); ++i) {
    if (form->formNumber == formNumber) {
      return goTo(form->textOffset);
    }
  }
  return false;
}

bool LanguageFile::nextText() {
  uint32_t size;
  if (!take(&size) || size > sizeof(tMlTexte) || !hasBytes(size)) {
    return false;
  }
  const char* record = piece_ + at_;
  at_ += size;
  constexpr uint32_t kTextAt = offsetof(tMlTexte, text) + 1;
  char padded[kTextAt] = {};
  if (size >= kTextAt) {
    const uint32_t length = static_cast<unsigned char>(record[kTextAt - 1]);
    text_ = std::string_view(record + kTextAt, std::min(length, size - kTextAt));
  } else {
    std::memcpy(padded, record, size);
    record = padded;
    text_ = {};
  }
  std::memcpy(&element_, record + offsetof(tMlTexte, element), sizeof element_);
  std::memcpy(&subElement_, record + offsetof(tMlTexte, subElement), sizeof subElement_);
  return true;
}

// Whether so many bytes, which the piece always has room for, now stand from at_ on.
bool LanguageFile::readOn(size_t wanted) {
  std::memmove(piece_, piece_ + at_, end_ - at_);
  end_ -= at_;
  at_ = 0;
  while (end_ < wanted) {
    const ssize_t count =
        repeatedOnSignal([&] { return pread(descriptor_, piece_ + end_, sizeof piece_ - end_, pieceEnd_); });
    if (count <= 0) {
      return false;
    }
    end_ += static_cast<size_t>(count);
    pieceEnd_ += count;
  }
  return true;
}

template <class Record>
bool LanguageFile::take(Record* record) {
  if (!hasBytes(sizeof *record)) {
    return false;
  }
  std::memcpy(record, piece_ + at_, sizeof *record);
  at_ += sizeof *record;
  return true;
}

bool LanguageFile::goTo(uint32_t offset) {
  // A stream on a host whose long has 32 bits could not be moved there.
  if (sizeof(long) == sizeof offset && offset > INT32_MAX) {
    return false;
  }
  const off_t pieceStart = pieceEnd_ - static_cast<off_t>(end_);
  if (offset >= pieceStart && offset <= pieceEnd_) {
    at_ = static_cast<size_t>(offset - pieceStart);
  } else {
    at_ = end_ = 0;
    pieceEnd_ = offset;
  }
  return true;
}

bool mlReadText(FILE* file, tMlTexte* record) {
  uint32_t size;
  tMlTexte read = {};
  if (std::fread(&size, sizeof size, 1, file) != 1 || size > sizeof read ||
      std::fread(&read, 1, size, file) != size) {
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
