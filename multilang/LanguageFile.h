// The records of a language file and the two ways to read them.
//
// All numbers are unsigned, 32 bits wide and in host order; no conversion takes
// place, so a file belongs to hosts of one byte order.  Short strings are one
// length byte and that many bytes without a terminator.  docs/language-files.md
// shows a small file byte by byte.
//
// Nothing here is trusted: counts allocate nothing and offsets are only seeked
// to, so a damaged file or one of the other byte order ends in a short read.
#ifndef LANGUAGE_FILE_H
#define LANGUAGE_FILE_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

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
  char text[256];  // in the file a short string; terminated once it has been read
};
static_assert(sizeof(tMlTexte) == 268);
static_assert(offsetof(tMlTexte, element) == 4);
static_assert(offsetof(tMlTexte, subElement) == 8);
static_assert(offsetof(tMlTexte, text) == 12);

struct CloseFile {
  void operator()(FILE* file) const { std::fclose(file); }
};
using OpenFile = std::unique_ptr<FILE, CloseFile>;

// Opens the language file at path and seeks to the texts of the first form record
// with this number, which is copied to *form.
//
// Returns null when the file cannot be opened, has a version other than "1.0", ends
// too early or lacks the form; what *form then holds is of no use.
OpenFile mlOpenForm(const char* path, uint32_t formNumber, tMlForms* form);

// Reads the text record at the stream's position and terminates its text.  What a
// short record leaves out is zero, so a size of 0 gives an empty text.
//
// Returns false when the record's size is above 268 or the file ends too early;
// *record is then unchanged.
bool mlReadText(FILE* file, tMlTexte* record);

// Turns the short string in buffer into a terminated text in place, cut to
// size - 1 characters.  Never touches bytes behind the first size.
void mlTerminateShortString(char* buffer, uint32_t size);

#endif
