// Reading a language file's records.
//
// Nothing here is trusted: counts allocate nothing and offsets are only moved to, so
// a damaged file or one of the other byte order ends where its bytes end.
#ifndef LANGUAGE_FILE_INTERNAL_H
#define LANGUAGE_FILE_INTERNAL_H

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "multilang/LanguageRecords.h"

// The forms of an open file and the texts of one, taken in larger pieces than one
// record.  Does not close the descriptor and leaves its position alone.
class LanguageFile {
 public:
  explicit LanguageFile(int descriptor) : descriptor_(descriptor) {}

  // Goes to the texts of the first form record with this number, which is copied to
  // *form.  False when the file has a version other than "1.0", ends too early or lacks
  // the form; what *form then holds is of no use.
  bool findForm(uint32_t formNumber, tMlForms* form);

  // Takes the next text record; false when its size is above 268 or the file ends too
  // early.
  bool nextText();

  // Of the record taken last.  What a short record leaves out is zero.  The text still
  // has its escapes, ends at its first zero byte if it has one, and stands until the
  // next record is taken.
  uint32_t element() const { return element_; }
  uint32_t subElement() const { return subElement_; }
  std::string_view text() const { return text_; }

 private:
  bool hasBytes(size_t wanted) { return end_ - at_ >= wanted || readOn(wanted); }
  bool readOn(size_t wanted);
  template <class Record>
  bool take(Record* record);
  bool goTo(uint32_t offset);

  int descriptor_;
  off_t pieceEnd_ = 0;  // in the file
  size_t at_ = 0;       // in the piece
  size_t end_ = 0;      // of the piece's bytes
  uint32_t element_ = 0;
  uint32_t subElement_ = 0;
  std::string_view text_;
  char piece_[16384];
};

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
