#include "multilang/TextIndexInternal.h"

#include <bit>
#include <cstdlib>
#include <memory>
#include <new>

namespace {

// Far beyond what numbers collide by chance in tables that are at most two thirds full.
constexpr uint32_t kLongestProbe = 256;

uint64_t pairKey(uint32_t element, uint32_t subElement) {
  return uint64_t{element} << 32 | subElement;
}

}  // namespace

// The slot whose entry matches, or else the free one where its search ends; null when
// neither comes soon.
template <class Matches>
uint32_t* TextIndex::probe(uint32_t* slots, uint64_t key, Matches matches) const {
  // Multiplying by the golden ratio spreads the small consecutive numbers of real files.
  auto at = static_cast<size_t>(key * 0x9E3779B97F4A7C15u >> (64 - bits_));
  for (uint32_t i = 0; i < kLongestProbe; ++i) {
    uint32_t* slot = slots + at;
    if (*slot == 0 || matches(*slot - 1)) {
      return slot;
    }
    at = (at + 1) & (slotCount() - 1);
  }
  return nullptr;
}

bool TextIndex::insert(const prgTexte* texts, uint32_t position) {
  const auto& entry = texts[position];
  const auto isSame = [&](uint32_t other) {
    return texts[other].subElement == entry.subElement && texts[other].element == entry.element;
  };
  const auto hasSameSub = [&](uint32_t other) { return texts[other].subElement == entry.subElement; };
  uint32_t* places[] = {probe(slots_.get(), pairKey(entry.element, entry.subElement), isSame),
                        probe(slots_.get() + slotCount(), entry.subElement, hasSameSub)};
  for (uint32_t* place : places) {
    if (place == nullptr) {
      return false;
    }
    if (*place == 0) {
      *place = position + 1;
    }
  }
  return true;
}

TextIndex* TextIndex::build(const prgTexte* texts, uint32_t count) {
  std::unique_ptr<TextIndex> index(new (std::nothrow) TextIndex());
  if (index == nullptr || count > UINT32_MAX / 4) {
    return nullptr;
  }
  index->bits_ = static_cast<uint32_t>(std::bit_width(count + count / 2));
  index->slots_.reset(static_cast<uint32_t*>(std::calloc(2 * index->slotCount(), sizeof(uint32_t))));
  if (index->slots_ == nullptr) {
    return nullptr;
  }
  for (uint32_t i = 0; i < count; ++i) {
    if (!index->insert(texts, i)) {
      return nullptr;
    }
  }
  return index.release();
}

const prgTexte* TextIndex::find(const prgTexte* texts, uint32_t element, uint32_t subElement) const {
  const uint32_t* slot = probe(slots_.get(), pairKey(element, subElement), [=](uint32_t position) {
    return texts[position].subElement == subElement && texts[position].element == element;
  });
  return slot != nullptr && *slot != 0 ? texts + (*slot - 1) : nullptr;
}

const prgTexte* TextIndex::findOfAnyElement(const prgTexte* texts, uint32_t subElement) const {
  const uint32_t* slot = probe(slots_.get() + slotCount(), subElement,
                               [=](uint32_t position) { return texts[position].subElement == subElement; });
  return slot != nullptr && *slot != 0 ? texts + (*slot - 1) : nullptr;
}
