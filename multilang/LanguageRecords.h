// The three records of a language file, as they stand in it.
//
// All numbers are unsigned, 32 bits wide and in host order; no conversion takes
// place, so a file belongs to hosts of one byte order.  Short strings are one
// length byte and that many bytes without a terminator.  docs/language-files.md
// shows a small file byte by byte.
#ifndef LANGUAGE_RECORDS_H
#define LANGUAGE_RECORDS_H

#include <stddef.h>
#include <stdint.h>

// Offset 0 of the file.
struct tMlHeader {
  uint8_t versionLength;  // above 10 counts as 10
  char version[11];       // "1.0"
  uint32_t formCount;     // form records that follow the header
  uint8_t reserved[48];   // not read
};
static_assert(sizeof(tMlHeader) == 64);
static_assert(offsetof(tMlHeader, version) == 1);
static_assert(offsetof(tMlHeader, formCount) == 12);

// One form (a dialog or window); the records stand behind the header without gaps.
struct tMlForms {
  uint32_t textCount;  // text records of the form
  uint32_t formNumber;
  uint32_t textOffset;   // of the first text record, in bytes from the start of the file
  uint8_t reserved[84];  // not read
};
static_assert(sizeof(tMlForms) == 96);
static_assert(offsetof(tMlForms, formNumber) == 4);
static_assert(offsetof(tMlForms, textOffset) == 8);

// One text.  In the file its own size in bytes precedes it, as a number of up to
// 268; a shorter record leaves out the end of the text field.
struct tMlTexte {
  uint32_t reserved;  // not read
  uint32_t element;
  uint32_t subElement;
  char text[256];  // in the file a short string; terminated once the loader has read it
};
static_assert(sizeof(tMlTexte) == 268);
static_assert(offsetof(tMlTexte, element) == 4);
static_assert(offsetof(tMlTexte, subElement) == 8);
static_assert(offsetof(tMlTexte, text) == 12);

#endif
