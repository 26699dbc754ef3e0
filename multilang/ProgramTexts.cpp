#include "multilang/ProgramTexts.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "multilang/MutexHoldInternal.h"
#include "multilang/TextBlocksInternal.h"
#include "multilang/TextIndexInternal.h"
#include "multilang/ZOT_MultiLanguage.h"

namespace {

constexpr uint32_t kGrowth = 5;
// So few entries are walked through as fast as an index is asked.
constexpr uint32_t kFewTexts = 8;
constexpr char kWideMessage[] = "zotmllib: WCHAR not implemented for this OS";
static_assert(sizeof kWideMessage == 44);

struct Escape {
  char letter;
  char meaning;
};
constexpr Escape kEscapes[] = {{'b', '\b'}, {'t', '\t'},  {'n', '\n'}, {'r', '\r'},
                               {'0', '\0'}, {'\\', '\\'}, {'"', '"'},  {'\'', '\''}};

// Copies the text to copy, which has room for as many bytes, with its escapes resolved;
// returns the end of the copy.  A zero byte ends a text wherever it is looked at, so it
// matters only behind a backslash.
char* copyResolved(char* copy, const char* text, const char* end) {
  while (text != end) {
    const auto* found = static_cast<const char*>(std::memchr(text, '\\', static_cast<size_t>(end - text)));
    const char* backslash = found != nullptr ? found : end;
    copy = std::copy(text, backslash, copy);
    if (backslash == end || backslash + 1 == end || backslash[1] == '\0') {
      break;
    }
    const auto* escape = std::find_if(std::begin(kEscapes), std::end(kEscapes),
                                      [=](const Escape& known) { return known.letter == backslash[1]; });
    if (escape != std::end(kEscapes)) {
      *copy++ = escape->meaning;
    }
    text = backslash + 2;
  }
  return copy;
}

// The entries' array has room for this many when it counts `capacity`: it counts in
// fives and is moved only when they have doubled.
size_t roomFor(uint32_t capacity) {
  return capacity != 0 ? size_t{kGrowth} * std::bit_ceil(capacity / kGrowth) : 0;
}

// The index to use now; the other one comes next.
uint32_t takeIndex(uint32_t* next) {
  const uint32_t taken = *next;
  *next = 1 - taken;
  return taken;
}

const prgTexte* walk(const prgTexte* texts, uint32_t count, uint32_t element, uint32_t sub, bool useElement) {
  const auto* end = texts + count;
  const auto* found = std::find_if(texts, end, [=](const prgTexte& entry) {
    return entry.subElement == sub && (!useElement || entry.element == element);
  });
  return found != end ? found : nullptr;
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
      onlyElement(onlyThisElement),
      indexTried(0),
      index(nullptr),
      blocks(nullptr) {
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
  const char* result = findText(elementNumber, sub, useElement != 0);
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
  return text != nullptr && addBytes(elementNumber, sub, text, std::strlen(text)) ? 1 : 0;
}

bool ProgramTexts::addBytes(uint32_t elementNumber, uint32_t sub, const char* text, size_t length) {
  if (count == capacity) {
    const size_t room = roomFor(capacity + kGrowth);
    if (room != roomFor(capacity)) {
      auto* grown = static_cast<prgTexte*>(std::realloc(texts, room * sizeof *texts));
      if (grown == nullptr) {
        return false;
      }
      texts = grown;
    }
    capacity += kGrowth;
  }
  if (!mlMakeRoom(&blocks, length + 1)) {
    return false;
  }
  char* copy = blocks->free();
  char* end = copyResolved(copy, text, text + length);
  *end++ = '\0';
  blocks->used += static_cast<size_t>(end - copy);
  texts[count++] = {elementNumber, sub, copy};
  if (indexTried != 0) {
    forgetIndex();
  }
  return true;
}

const char* ProgramTexts::findText(uint32_t elementNumber, uint32_t sub, bool useElement) {
  if (indexTried == 0 && count > kFewTexts) {
    indexTried = 1;
    index = TextIndex::build(texts, count);
  }
  const prgTexte* found = index == nullptr ? walk(texts, count, elementNumber, sub, useElement)
                          : useElement     ? index->find(texts, elementNumber, sub)
                                           : index->findOfAnyElement(texts, sub);
  return found != nullptr ? found->text : nullptr;
}

void ProgramTexts::forgetIndex() {
  delete index;
  index = nullptr;
  indexTried = 0;
}

void ProgramTexts::ClearAllTexts() {
  forgetIndex();
  mlFreeBlocks(&blocks);
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
