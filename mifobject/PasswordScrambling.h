// Scrambling of stored passwords: every byte is XORed with a fixed repeating key
// of 20 characters, and results below 0x20 are escaped, so that the scrambled
// form is a text without zero bytes that a string record can hold.
//
// This hides a password from a glance at the bytes; it is no encryption.  The
// key is part of the stored format.
//
//   scrambled bytes             stand for the result
//   b, other than 0xFE          b
//   0xFE, r + 0x20              r, where r is 0 to 31
//   0xFE, 0xFE                  0xFE; the decoders take it, no encoder writes it
//
// EncryptPasw and DeCryptPasw are one pair, the _20 functions the other; neither
// reads what the other writes.  The first uses all 20 key characters in turn, the
// second passes positions 19, 39, 59 ... (counted from 0) through without XOR.
//
// All buffers are the caller's and must not overlap; inputs end in a zero byte
// and no pointer may be null.  Counters have 16 bits: of an input of 65,536 + n
// bytes only the first n count.  Nothing allocates and nothing fails but for a
// full output.  Threads may call all four at the same time.
#ifndef ZOT_PASSWORD_SCRAMBLING_H
#define ZOT_PASSWORD_SCRAMBLING_H

#include "os/ZotExport.h"

#ifdef __cplusplus
extern "C" {
#endif

// Scrambles input into output and terminates it.  The output needs room for
// 2 * length + 1 bytes.
//
// A byte of 0x80 or above that scrambles to 0xFE is written bare, and a decoder
// takes it and the byte behind it for an escape: such a password reads back
// changed.  Callers rely on the bytes being so.
//
// EncryptPasw returns the number of input bytes scrambled.
ZOT_EXPORT unsigned short EncryptPasw(char* input, char* output);
ZOT_EXPORT void EncryptPasw_20(char* input, char* output);

// Turn a scrambled input back.  Every sequence of bytes decodes to something; an
// escape cut off by the end of the input gives the result 0xE0.
//
//   output    room for capacity bytes
//   capacity  must be above the number of bytes produced, for DeCryptPasw too
//
// Returns the number of bytes produced.  DeCryptPasw_20 writes a zero byte behind
// them, DeCryptPasw does not.  Returns 0 when the output filled its capacity; it
// then holds bytes that are not unscrambled, and no zero byte was written.
ZOT_EXPORT unsigned short DeCryptPasw(unsigned char* output, unsigned char* input, unsigned short capacity);
ZOT_EXPORT unsigned short DeCryptPasw_20(unsigned char* output, unsigned char* input,
                                         unsigned short capacity);

#ifdef __cplusplus
}
#endif

#endif
