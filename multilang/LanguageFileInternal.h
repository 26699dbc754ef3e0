// The two ways to read a language file's records.
//
// Nothing here is trusted: counts allocate nothing and offsets are only seeked
// to, so a damaged file or one of the other byte order ends in a short read.
#ifndef LANGUAGE_FILE_INTERNAL_H
#define LANGUAGE_FILE_INTERNAL_H

#include <cstdint>
#include <cstdio>
#include <memory>

#include "multilang/LanguageRecords.h"

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
