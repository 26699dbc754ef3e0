// Finds a table's entries by their numbers without walking through them.
//
// Of several entries with the same numbers the first is found.  An index is made of
// the entries as they stand and serves until one is added or the table is cleared.
#ifndef TEXT_INDEX_INTERNAL_H
#define TEXT_INDEX_INTERNAL_H

#include <cstddef>
#include <cstdint>

#include "os/MallocedInternal.h"

// One entry of a table.
struct prgTexte {
  uint32_t element;
  uint32_t subElement;
  char* text;  // in one of the table's blocks, escapes resolved
};

class TextIndex {
 public:
  // Null when memory runs out, or when so many numbers collide that walking through the
  // entries is as good: nobody has to trust the numbers in a file.
  static TextIndex* build(const prgTexte* texts, uint32_t count);

  // Take the entries that the index was made of; null when none has these numbers.
  const prgTexte* find(const prgTexte* texts, uint32_t element, uint32_t subElement) const;
  const prgTexte* findOfAnyElement(const prgTexte* texts, uint32_t subElement) const;

 private:
  size_t slotCount() const { return size_t{1} << bits_; }
  template <class Matches>
  uint32_t* probe(uint32_t* slots, uint64_t key, Matches matches) const;
  bool insert(const prgTexte* texts, uint32_t position);

  // Two tables of slotCount() slots, the second for lookups of any element.  A slot is 0
  // or the position of an entry plus 1.
  Malloced<uint32_t[]> slots_;
  uint32_t bits_ = 0;
};

#endif
