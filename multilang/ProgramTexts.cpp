#include "multilang/ProgramTexts.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "multilang/MutexHoldInternal.h"
#include "multilang/ZOT_MultiLanguage.h"

// One entry of a table.
struct prgTexte {
  uint32_t element;
  uint32_t subElement;
  char* text;  // on the heap, escapes resolved
};

namespace {

constexpr uint32_t kGrowth = 5;
constexpr char kWideMessage[] = "zotmllib: WCHAR not implemented for this OS";
static_assert(sizeof kWideMessage == 44);

struct Escape {
  char letter;
  char meaning;
};
constexpr Escape kEscapes[] = {{'b', '\b'}, {'t', '\t'},  {'n', '\n'}, {'r', '\r'},
                               {'0', '\0'}, {'\\', '\\'}, {'"', '"'},  {'\'', '\''}};

// Copies source to copy, which is as long, with its escapes resolved.
void copyResolved(char* copy, const char* source) {
  while (*source != '\0') {
    if (*source != '\\') {
      *copy++ = *source++;
      continue;
    }
    const char letter = *++source;
    const auto* escape = std::find_if(std::begin(kEscapes), std::end(kEscapes),
                                      [letter](const Escape& known) { return known.letter == letter; });
    if (escape != std::end(kEscapes)) {
      *copy++ = escape->meaning;
    }
    if (letter != '\0') {
      ++source;
    }
  }
  *copy = '\0';
}

// The index to use now; the other one comes next.
uint32_t takeIndex(uint32_t* next) {
  const uint32_t taken = *next;
  *next = 1 - taken;
  return taken;
}

const char* findText(const prgTexte* texts, uint32_t count, uint32_t element, uint32_t sub, bool useElement) {
  const auto* end = texts + count;
  const auto* found = std::find_if(texts, end, [=](const prgTexte& entry) {
    return entry.subElement == sub && (!useElement || entry.element == element);
  });
  return found != end ? found->text : nullptr;
}

const char* missingText(char (&scratch)[256], uint32_t element, uint32_t sub, bool useElement) {
  if (useElement) {
    std::snprintf(scratch, sizeof scratch, "%d %d (Text missing)", static_cast<int>(element),
                  static_cast<int>(sub));
  } else {
    std::snprintf(scratch, sizeof scratch, "%d (Text missing)", static_cast<int>(sub));
  }
  return scratch;
}

// A caller may pass its default's own storage as the destination.
void copyText(char* dst, int size, const char* text) {
  if (dst == nullptr || size < 1) {
    return;
  }
  const auto bytes = static_cast<size_t>(size);
  const size_t length = strnlen(text, bytes - 1);
  std::memmove(dst, text, length);
  std::memset(dst + length, 0, bytes - length);
}

void widenMessage(unsigned short* dst, size_t units) {
  std::copy_n(kWideMessage, units, dst);
}

void copyMessage(unsigned short* dst, int size) {
  if (dst != nullptr && size > 0) {
    widenMessage(dst, std::min(static_cast<size_t>(size), sizeof kWideMessage));
    dst[size - 1] = 0;
  }
}

}  // namespace

ProgramTexts::ProgramTexts(ZOT_MultiLanguage* ofLoader, unsigned int formNumber, unsigned int elementNumber,
                           signed char onlyThisElement)
    : parent(ofLoader),
      texts(nullptr),
      mutex(nullptr),
      count(0),
      capacity(0),
      scratch(),
      nextScratch(0),
      form(formNumber),
      element(elementNumber),
      onlyElement(onlyThisElement) {
  ZotOsMutexCreate(&mutex, 0);
}

ProgramTexts::~ProgramTexts() {
  // Without the table's own lock: the loader's comes first in the order, and a
  // reload that holds both is over once the loader has let the table go.
  if (parent != nullptr) {
    parent->unregisterChild(this);
  }
  parent = nullptr;
  ClearAllTexts();
  ZotOsMutexClose(mutex);
}

const char* ProgramTexts::getPrgTextDefA(unsigned int elementNumber, unsigned int sub, signed char useElement,
                                         const char* def, char* dst, int size) {
  const MutexHold hold(mutex);
  auto& room = scratch[takeIndex(&nextScratch)].narrow;
  const char* result = findText(texts, count, elementNumber, sub, useElement != 0);
  if (result == nullptr) {
    result = def;
  }
  if (result == nullptr) {
    result = missingText(room, elementNumber, sub, useElement != 0);
  }
  copyText(dst, size, result);
  return result;
}

const unsigned short* ProgramTexts::getPrgTextDefW(unsigned int, unsigned int, signed char,
                                                   const unsigned short*, unsigned short* dst, int size) {
  const MutexHold hold(mutex);
  auto& room = scratch[takeIndex(&nextScratch)].wide;
  widenMessage(room, sizeof kWideMessage);
  copyMessage(dst, size);
  return room;
}

uint32_t ProgramTexts::AddText(unsigned int elementNumber, unsigned int sub, const char* text) {
  if (text == nullptr) {
    return 0;
  }
  if (count == capacity) {
    auto* grown = static_cast<prgTexte*>(std::realloc(texts, (size_t{capacity} + kGrowth) * sizeof *texts));
    if (grown == nullptr) {
      return 0;
    }
    texts = grown;
    capacity += kGrowth;
  }
  auto* copy = static_cast<char*>(std::malloc(std::strlen(text) + 1));
  if (copy == nullptr) {
    return 0;
  }
  copyResolved(copy, text);
  texts[count++] = {elementNumber, sub, copy};
  return 1;
}

void ProgramTexts::ClearAllTexts() {
  std::for_each(texts, texts + count, [](const prgTexte& entry) { std::free(entry.text); });
  std::free(texts);
  texts = nullptr;
  count = 0;
  capacity = 0;
  std::memset(scratch, 0, sizeof scratch);
  nextScratch = 0;
}

void ProgramTexts::unregisterParent() {
  parent = nullptr;
}

DummyProgramTexts::DummyProgramTexts() : ProgramTexts(nullptr, 0, 0, 0) {}

DummyProgramTexts::~DummyProgramTexts() = default;

const char* DummyProgramTexts::getPrgTextDefA(unsigned int elementNumber, unsigned int sub,
                                              signed char useElement, const char* def, char* dst, int size) {
  const MutexHold hold(mutex);
  auto& room = scratch[takeIndex(&nextScratch)].narrow;
  const char* result = def != nullptr ? def : missingText(room, elementNumber, sub, useElement != 0);
  copyText(dst, size, result);
  return result;
}

const unsigned short* DummyProgramTexts::getPrgTextDefW(unsigned int, unsigned int, signed char,
                                                        const unsigned short* def, unsigned short* dst,
                                                        int size) {
  const MutexHold hold(mutex);
  auto& room = scratch[takeIndex(&nextScratch)].wide;
  copyMessage(dst, size);
  if (def != nullptr) {
    return def;
  }
  widenMessage(room, sizeof kWideMessage);
  return room;
}
