// Reads records straight from a caller's bytes, and patches one kind in place.
//
//   buf         the records, with or without an end marker
//   len         bytes at buf; no access leaves them
//   oid         the records wanted; those behind an end marker are never found
//   occurrence  1 for the first record of the OID, and so on; 0 finds nothing
//
// Unless stated otherwise results are 1 for success and 0 for failure.  A null buf, a
// len of 0 and an occurrence of 0 give 0 and leave every output as it was, except that
// the range text is emptied.  So does a value whose bytes do not all lie within len;
// but of a number only the bytes that are read need to, and the address and range
// functions read the missing ones as 0.
//
// Nothing here allocates, logs or keeps a pointer.  Threads may read the same
// bytes at the same time.
#ifndef ZOTMIF_H
#define ZOTMIF_H

#include <stdint.h>

#include "os/ZotExport.h"

#ifdef __cplusplus
class ZotIpAddr;
extern "C" {
#else
typedef struct ZotIpAddr ZotIpAddr;
#endif

// Reads four bytes in host order whatever the record's length is; the buffer must
// have them.  value may be null and is unchanged on failure.
ZOT_EXPORT uint32_t zotmifGetInt(const unsigned char* buf, uint32_t len, unsigned short oid, uint32_t* value,
                                 uint32_t occurrence);

// Reads a value of eight bytes in host order.  With any other length, or when
// eight bytes are not there, four bytes fill the first four of *value in memory
// and the rest is 0: on a big-endian host that is the high word, as
// Mif32::AddInt64 wrote it.  value may be null; *value is 0 when the record was
// found without four bytes to read, and unchanged when it was not found.
ZOT_EXPORT uint32_t zotmifGetInt64(const unsigned char* buf, uint32_t len, unsigned short oid,
                                   unsigned long long* value, uint32_t occurrence);

// Copies the whole value, zero bytes included, and terminates it; the rest of dst
// stays as it was.  0, and dst unchanged, when value and terminator do not fit
// dstSize bytes.  A null dst asks whether they would.
ZOT_EXPORT uint32_t zotmifGetStr(const unsigned char* buf, uint32_t len, unsigned short oid, char* dst,
                                 uint32_t dstSize, uint32_t occurrence);

// Copies the value.
//
//   dst     may be null to ask for the length only, for which *dstLen must be
//           large enough all the same
//   dstLen  in: room at dst; out: the value's length.  Must not be null.
//
// When the room is too small, *dstLen becomes 0: the length that would be needed
// is not told.  On other failures it is unchanged.
ZOT_EXPORT uint32_t zotmifGetBinData(const unsigned char* buf, uint32_t len, unsigned short oid,
                                     unsigned char* dst, uint32_t* dstLen, uint32_t occurrence);

// Gives the value in place, and its length.  Both may be null and are unchanged on
// failure.
ZOT_EXPORT uint32_t zotmifGetBinDataPtr(const unsigned char* buf, uint32_t len, unsigned short oid,
                                        const unsigned char** value, uint32_t* valueLen, uint32_t occurrence);

// Loads an address of 4 or 16 bytes; addr must not be null.  The result is
// inverted: 0 when the address was loaded, 1 when the value has another length and
// addr became 0.0.0.0.  A missing record also sets 0.0.0.0 but gives 0.  Callers
// rely on all three.
ZOT_EXPORT uint32_t zotmifGetIpAddrV4(const unsigned char* buf, uint32_t len, unsigned short oid,
                                      ZotIpAddr* addr, uint32_t occurrence);

// Loads an address of 4 or 16 bytes; addr must not be null.  A missing record and a
// value of any other length unset it.
ZOT_EXPORT uint32_t zotmifGetIpAddr(const unsigned char* buf, uint32_t len, unsigned short oid,
                                    ZotIpAddr* addr, uint32_t occurrence);

// Overwrites a value of exactly four bytes in place, in host order.  Values of
// other lengths stay as they are, and nothing is ever appended.
ZOT_EXPORT uint32_t zotmifUpdInt(unsigned char* buf, uint32_t len, unsigned short oid, uint32_t value,
                                 uint32_t occurrence);

// Writes the ranges of all records of an OID as text, "5, 10-20": a value of 2, 4
// or 8 bytes holds two numbers of 1, 2 or 4 bytes in host order, printed as signed
// decimals, and equal numbers are printed once.  A value of any other length
// leaves its place between the separators empty.
//
//   out       outSize bytes, emptied first, for a null buf too; a longer text is
//             cut and terminated, and nothing is written when outSize is 0
//   ipFormat  not 0: values of 8 bytes are two IPv4 addresses, each printed from
//             its last byte to its first, which callers rely on
//
// Returns 1 when at least one record had a range.
ZOT_EXPORT uint32_t zotmifGetRangeValuesAsString(const unsigned char* buf, uint32_t len, unsigned short oid,
                                                 char* out, uint32_t outSize, int ipFormat);

#ifdef __cplusplus
}
#endif

#endif
