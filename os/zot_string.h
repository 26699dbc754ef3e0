// Copying, appending and formatting into a destination of known size.
//
// Sizes count bytes of the whole destination, terminator included; a size of 0 changes
// nothing.  The four that copy and append refuse a null destination or source with 0 or
// null; sprintf_zot takes a null destination and only measures; its format and the texts
// of strupr and strlwr must not be null.  The cut-off rules are not those of strlcpy and
// strlcat; callers rely on them as they stand here.  Nothing allocates; threads may use
// different destinations at the same time.
#ifndef ZOT_STRING_H
#define ZOT_STRING_H

#include "os/ZotExport.h"

#ifdef __cplusplus
extern "C" {
#endif

// Appends src.  What does not fit is cut so that size - 1 characters stand in
// dst; a dst of exactly size characters is shortened by one to make room for the
// terminator, and a longer one is left alone.
//
// Returns dst; null when dst or src is null.
ZOT_EXPORT char* strcat_zot(char* dst, unsigned int size, const char* src);

// Appends at most n characters of src.  It does not always terminate behind them; callers
// choose n and rely on what follows.  With "room" for size less the length of dst:
//
//   src fits whole (its length is below the room): strncpy(end of dst, src, n).  An n up to
//     the length of src writes n characters and no terminator; a larger n pads with
//     zeros up to n bytes, past size if n says so
//   src does not fit: the first n characters of it, at most the room, and a terminator on
//     the last byte of size, not behind them.  With n below the room, the bytes between keep
//     what they held and belong to the text unless one of them is 0
//
// An n of 0 changes nothing.  Returns dst; null when dst or src is null.
ZOT_EXPORT char* strncat_zot(char* dst, unsigned int size, const char* src, unsigned int n);

// Copies src, cut to size - 1 characters, and terminates.  A cut copy is padded
// with nothing: the bytes behind the terminator keep what they held.
//
// Returns the low 32 bits of dst's address; 0 when dst or src is null.
ZOT_EXPORT unsigned int strcpy_zot(char* dst, unsigned int size, const char* src);

// Copies at most n characters of src and a terminator, never past size.
//
// Returns as strcpy_zot does.  src needs no terminator within its first n bytes.
ZOT_EXPORT unsigned int strncpy_zot(char* dst, unsigned int size, const char* src, unsigned int n);

// Formats like snprintf and always terminates at dst[size - 1].
//
// Returns the length that the whole text has, which is above size - 1 when the
// text was cut; 0 when size is 0.  A null dst is measured for, size being above 0.  When
// formatting fails: the length of what stands in dst, or the negative result when dst is null.
ZOT_EXPORT int sprintf_zot(char* dst, unsigned int size, const char* format, ...)
#ifdef __GNUC__
    __attribute__((format(printf, 3, 4)))
#endif
    ;

// Change the case of a text's ASCII letters in place and return the text, which must not
// be null.  A program that has functions of its own of these names defines
// ZOT_NO_STRUPR before it includes this header.
#ifndef ZOT_NO_STRUPR
ZOT_EXPORT char* strupr(char* text);
ZOT_EXPORT char* strlwr(char* text);
#endif

#ifdef __cplusplus
}
#endif

#endif
