// IPv4 and IPv6 addresses: text to bytes and bytes to text.
//
// The rules are this library's own and the same on every host; inet_pton and
// inet_ntop differ in the places named below.  Bytes are in network order, 4 for
// IPv4 and 16 for IPv6.  Nothing allocates, logs or sets errno, and threads may
// convert at the same time.  A failure is told by the result alone and leaves the
// destination as it was.
#ifndef ZOT_INET_H
#define ZOT_INET_H

#include "os/ZotExport.h"

#ifdef __cplusplus
extern "C" {
#endif

// Reads a dotted quad: exactly four decimal numbers of 0 to 255 with one '.'
// between them, and nothing around them.  A number may have any count of leading
// zeros and stays decimal: 010.001.0.00007 is 10.1.0.7.
//
//   text  a terminated text; null is refused
//   dst   4 bytes, written on success only
//
// Returns 1 when the text was read, else 0.
ZOT_EXPORT int zot_inet_pton4(const char* text, unsigned char* dst);

// Reads IPv6 text: eight groups of hexadecimal digits in either case with ':'
// between them, the last two of which may be a dotted quad instead; one double
// colon stands for the groups that are missing.
//
// A group has any count of digits as long as its value is at most ffff.  A single
// ':' at the very end is accepted once all groups or a double colon were seen.
// A double colon that stands for no group at all is accepted too and clears the
// groups behind it, which callers rely on:
//
//   1:2:3:4:5:6:7:8::   is  1:2:3:4:5:6:7:8
//   1:2:3:4::5:6:7:8    is  1:2:3:4:0:0:0:0
//   ::1:2:3:4:5:6:7:8   is  ::
//
//   text  a terminated text; null is refused
//   dst   16 bytes, written on success only
//
// Returns 1 when the text was read, else 0.
ZOT_EXPORT int zot_inet_pton6(const char* text, unsigned char* dst);

// Writes 4 bytes as a dotted quad, "10.1.0.7", at most 15 characters.
//
// Returns dst; null when the text has more than size characters.  A size equal to
// the length of the text is accepted although the terminator then stands at
// dst[size]: the caller provides that byte.
ZOT_EXPORT const char* zot_inet_ntop4(const unsigned char* src, char* dst, unsigned int size);

// Writes 16 bytes as IPv6 text in lower case, at most 39 characters: the longest
// run of two or more zero groups as a double colon, the first of equally long
// ones.  ::a.b.c.d and ::ffff:a.b.c.d end in a dotted quad; :: and ::1 do not.
//
// Returns dst; null when text and terminator do not fit into size bytes.
ZOT_EXPORT const char* zot_inet_ntop6(const unsigned char* src, char* dst, unsigned int size);

// Compares two address texts, IPv4 or IPv6, as the operators of ZotIpAddr do.
//
//   op  1 is ==, 2 is <, 3 is >, 4 is <=, 5 is >=; there is no code for !=
//
// Returns 1 when the comparison holds.  Returns 0 when it does not, for any other
// op, and whenever one of the texts is no address.
ZOT_EXPORT int zot_ipaddr_cmp(unsigned int op, const char* a, const char* b);

#ifdef __cplusplus
}
#endif

#endif
