// Copying, appending and formatting into a destination of known size.
//
// Sizes count bytes of the whole destination, terminator included.  A null
// destination or source is refused with 0 or null and a size of 0 changes
// nothing.  The cut-off rules are not those of strlcpy and strlcat; callers rely
// on them as they stand here.  Nothing allocates; threads may use different
// destinations at the same time.
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

// Appends at most n characters of src, with the cut-off and result of strcat_zot.
//
// When size has room for all of src, this is strncpy(end of dst, src, n): no
// terminator follows n characters of a longer src, and an n above the length of
// src pads with zeros up to n bytes, past size if n says so.  Callers choose n.
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
// text was cut; 0 when size is 0.  When formatting fails: the length of what
// stands in dst, or the negative result when dst is null.
ZOT_EXPORT int sprintf_zot(char* dst, unsigned int size, const char* format, ...)
#ifdef __GNUC__
    __attribute__((format(printf, 3, 4)))
#endif
    ;

// Change the case of a text in place by the C locale's rules and return it.
ZOT_EXPORT char* strupr(char* text);
ZOT_EXPORT char* strlwr(char* text);

#ifdef __cplusplus
}
#endif

#endif
