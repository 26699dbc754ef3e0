// The texts of one form (a dialog or window), found by element and sub-element
// number, with the caller's default or a "(Text missing)" text for the others.
//
// Texts are 8-bit and terminated; nothing here knows their encoding.  Lookups lock
// the table, so threads may look up at any time, also while the loader reloads the
// table.  A returned text may be the table's own: with other threads about, pass a
// destination, which is filled under the lock.  Nothing throws.
#ifndef PROGRAM_TEXTS_H
#define PROGRAM_TEXTS_H

#include <stddef.h>
#include <stdint.h>

#include "os/ZotExport.h"

class ZOT_MultiLanguage;
struct ZotOsMutexHandle;
class TextIndex;
struct TextBlock;
struct prgTexte;

class ZOT_EXPORT ProgramTexts {
 public:
  // An empty table.  The loader fills and registers tables (loadProgramTexts); one
  // made here must not outlive its parent, which may be null.  The last three
  // arguments say what a reload reads.
  ProgramTexts(ZOT_MultiLanguage* parent, unsigned int form, unsigned int element, signed char onlyElement);

  // Unregisters from the parent first, so a reload that is under way finishes.
  virtual ~ProgramTexts();

  // Finds the first entry, in the order of adding, with this element and sub-element
  // number; with useElement 0 the first with this sub-element of any element.
  //
  //   def   result when there is none; null asks for "%d %d (Text missing)" with both
  //         numbers, or "%d (Text missing)" with sub when useElement is 0
  //   dst   null, or gets the result, cut to size - 1 characters and always terminated
  //         when size is at least 1; the rest of the size bytes become 0
  //
  // Returns the table's text, def itself, or one of two scratch buffers that calls
  // use in turn: valid until the table changes or two more lookups have run.
  virtual const char* getPrgTextDefA(unsigned int element, unsigned int sub, signed char useElement,
                                     const char* def, char* dst, int size);

  // Wide texts are not supported here: returns a scratch buffer with the message
  // "zotmllib: WCHAR not implemented for this OS" whatever was asked, and ignores def.
  // dst gets at most the message's 44 units, terminator included, and a 0 at
  // dst[size - 1]; the units between keep what they held.
  virtual const unsigned short* getPrgTextDefW(unsigned int element, unsigned int sub, signed char useElement,
                                               const unsigned short* def, unsigned short* dst, int size);

  // Appends a copy of text.  A backslash with b, t, n, r, 0, \, " or ' gives that
  // control or plain character; one with anything else, or at the end, vanishes with
  // it.  Takes no lock; the loader holds it.
  //
  // Returns 1; 0 when text is null or memory runs out, and the table is unchanged.
  uint32_t AddText(unsigned int element, unsigned int sub, const char* text);

  // Frees all texts and zeroes the scratch buffers; what a reload reads stays known.
  // Takes no lock; the loader holds it.
  void ClearAllTexts();

  // Forgets the parent.  For the loader, which calls this before it goes: while the
  // table is registered, its destructor must find the way back.
  void unregisterParent();

 private:
  friend class ZOT_MultiLanguage;
  friend class DummyProgramTexts;

  ProgramTexts(const ProgramTexts&) = delete;
  ProgramTexts& operator=(const ProgramTexts&) = delete;

  ZOT_LOCAL bool addBytes(uint32_t element, uint32_t sub, const char* text, size_t length);
  ZOT_LOCAL const char* findText(uint32_t element, uint32_t sub, bool useElement);
  ZOT_LOCAL void forgetIndex();

  ZOT_MultiLanguage* parent;
  prgTexte* texts;
  ZotOsMutexHandle* mutex;
  uint32_t count;
  uint32_t capacity;
  union {
    char narrow[256];
    unsigned short wide[256];
  } scratch[2];
  uint32_t nextScratch;
  uint32_t form;
  uint32_t element;
  signed char onlyElement;
  signed char indexTried;  // since the entries changed
  TextIndex* index;        // null unless one could be built
  TextBlock* blocks;
};

// Stands in when no language file can be read: holds no texts and has no parent.
class ZOT_EXPORT DummyProgramTexts : public ProgramTexts {
 public:
  DummyProgramTexts();
  ~DummyProgramTexts() override;

  // As above, with nothing to find.
  const char* getPrgTextDefA(unsigned int element, unsigned int sub, signed char useElement, const char* def,
                             char* dst, int size) override;

  // Returns def, or the message in a scratch buffer when def is null.  dst gets the
  // message either way; callers rely on this difference from the narrow form.
  const unsigned short* getPrgTextDefW(unsigned int element, unsigned int sub, signed char useElement,
                                       const unsigned short* def, unsigned short* dst, int size) override;
};

#endif
