// A growable buffer of records: builds, searches, reads, updates and deletes them.
//
// Owned mode (the default): the object allocates its block on the C heap, grows it
// as needed and wipes it before the heap gets it back; one of more than 64 KiB that
// grows may leave bytes behind.  External mode: the caller lends memory, which is
// never grown, wiped or freed and must outlive its use here.
//
// Results are 1 for success and 0 for failure, and outputs change on success only,
// unless stated otherwise; nothing logs or throws.  An occurrence counts from 1
// among the records of one OID, in buffer order; occurrence 0 matches nothing.
// Records behind an end marker are never found.
//
// No access leaves the block, whatever its bytes or SetLen and SetExternalMem
// claim: a walk stops at the block's end, bytes outside read as 0 and are not
// written.  Values and data given may stand in the object's own block.  An object
// serves one thread at a time.
#ifndef MIF32_H
#define MIF32_H

#include <cstdint>

#include "os/ZotExport.h"

class ZotIpAddr;

class ZOT_EXPORT Mif32 {
 public:
  Mif32();

  // Wipes and frees an owned block; lets external memory go as it is.
  ~Mif32();

  Mif32(const Mif32&) = delete;
  Mif32& operator=(const Mif32&) = delete;

  // ---- Storage ----

  // Makes room for n more bytes.  Growth takes the bytes in use, n and 1000 more.
  //
  // 0, and no change, when external memory has less than n bytes left or a 32-bit
  // length could not hold the growth.  0 also when the heap refuses: the block and its
  // records are gone then, GetData() is null, GetLen() stays and GetAllocLen() is what
  // was asked for.  The next call that needs room tries again and finds zeros in the
  // place of the lost bytes.
  unsigned int CheckSize(unsigned int n);

  // Replaces the block by one of size bytes, all zero and none in use.  0 in external
  // mode, and when the heap refuses: the old block is gone then, too.
  unsigned int Alloc(unsigned short size);

  // Lets go of the block and works in the caller's allocLen bytes at mem, of which
  // the first usedLen are in use; usedLen is taken as given.  0, and no change,
  // for a null mem, an allocLen of 0, and memory inside the object's own block.
  unsigned int SetExternalMem(unsigned char* mem, unsigned int allocLen, unsigned int usedLen);

  // 1 in external mode; then the free bytes go to *freeBytes unless that is null.
  unsigned int IsExternalMem(unsigned int* freeBytes);

  // The block (null when there is none), the bytes in use, the bytes allocated.
  // The pointer is valid until the next change to the buffer.
  unsigned char* GetData();
  unsigned int GetLen();
  unsigned int GetAllocLen();

  // Declares len bytes in use, unchecked, after the caller filled the block itself.
  void SetLen(unsigned short len);

  // Owned mode: wipes the block and keeps it.  External mode: lets go of the memory.
  void ClearBuffer();

  // Replaces the contents by a copy of size bytes, taken as they are; a null data or
  // a size of 0 empties the object.  Ends external mode.  The current GetData() changes
  // nothing, whatever size says: so does a null data where there is no block, even if
  // lengths of a lost one still stand.  When the heap refuses, the object has no
  // block and keeps its lengths and its mode.
  void SetData(const unsigned char* data, unsigned int size);
  void SetData(const char* data, unsigned int size);

  // ---- Appending records ----
  // 0 for a null pointer or when there is no room; nothing is written then.

  // The value may be null when len is 0, unlike the data of AddBin.
  //
  // The OID 0xFFFF appends the two bytes of the end marker.  With a len of its own it
  // counts 2 + len bytes, and the value goes to the fifth byte and those behind it, as
  // far as the block reaches; the two bytes between stay as they were.  Callers rely
  // on these figures.
  unsigned int Add(unsigned short oid, const unsigned char* value, unsigned short len);

  // Four bytes in host order.
  unsigned int AddInt(unsigned short oid, unsigned int value);

  // Eight bytes in host order when the high 32 bits are set, else the first four
  // bytes of that image: on a big-endian host these are zero.  Callers rely on it.
  unsigned int AddInt64(unsigned short oid, unsigned long long value);

  // The characters without the terminator; lengths are cut to their low 16 bits.
  unsigned int AddStr(unsigned short oid, const char* text);
  unsigned int AddBin(unsigned short oid, const unsigned char* data, unsigned int len);

  // The low 32 bits of time, in host order.
  unsigned int AddTime(unsigned short oid, long time);

  // The address in network order: always the four bytes of the IPv4 view (zeros
  // when there is none), or 4, 16 or no bytes as the family has them.
  unsigned int AddIpAddrV4(unsigned short oid, ZotIpAddr* addr);
  unsigned int AddIpAddr(unsigned short oid, ZotIpAddr* addr);

  // Appends the end marker: 1 when it stands there already, 0 when one stands
  // between the records.
  unsigned int AddEndKz();

  // Removes an end marker right behind the last whole record; 0 when there is none.
  unsigned int DelEndKz();

  // ---- Appending raw bytes, without a record header ----
  // Numbers in host order, texts without their terminator; 0 as for records.

  unsigned int RawAddByte(unsigned char value);
  unsigned int RawAddWord(unsigned short value);
  unsigned int RawAddDWord(unsigned int value);
  unsigned int RawAddLDWord(unsigned long long value);
  unsigned int RawAddBin(const unsigned char* data, unsigned int len);
  unsigned int RawAddStr(const char* text);

  // ---- Lookup and reading ----

  // Finds a record; stores its value's offset from GetData() and its length where
  // the pointers are not null.  The length is the record's own word: it may run
  // past the bytes in use.
  unsigned int Seek(unsigned short oid, unsigned int* valueOffset, unsigned int* valueLen,
                    unsigned int occurrence);
  unsigned int SearchValue(unsigned short oid, unsigned int* valueLen, unsigned int occurrence);

  // Copies the value up to its first zero byte and zeroes the rest of dst.  0, and
  // dst unchanged, when the value and a terminator do not fit dstSize bytes.
  unsigned int GetStr(unsigned short oid, char* dst, unsigned short dstSize, unsigned int occurrence);

  // Gives the value in place, valid until the next change to the buffer; value may
  // be null, valueLen must not.  The length is the record's word, as for Seek: in
  // foreign bytes it may run past the block, so compare it with what GetLen() leaves
  // behind the value before reading.
  unsigned int GetBinPtr(unsigned short oid, unsigned char** value, unsigned int* valueLen,
                         unsigned int occurrence);

  // Copies the value.  *len is the room in dst, then the value's length; a null dst
  // asks for the length only.  0 when the room is too small.
  unsigned int GetBin(unsigned short oid, unsigned char* dst, unsigned int* len, unsigned int occurrence);

  // Reads four bytes in host order whatever the record's length is.
  unsigned int GetInt(unsigned short oid, unsigned int* value, unsigned int occurrence);

  // Reads eight bytes in host order; a value of exactly four bytes fills the first
  // four bytes of *value in memory, as AddInt64 wrote them.  *value is 0 when the
  // record is missing.
  unsigned int GetInt64(unsigned short oid, unsigned long long* value, unsigned int occurrence);

  // Writes length and bytes in hex to standard output.  For less than 64 KiB: the
  // 16-bit counter of a longer buffer wraps and the dump never ends.
  int Print();

  // ---- Updating and deleting ----
  // 1 when a record was replaced.  A missing record is appended (before an end
  // marker) and the result is 0 all the same: callers read 0 as appended or failed.

  // Replaces the value and keeps the record's place.  Owned mode always moves to a
  // new block of the new length and 10 bytes; external mode works in place.
  unsigned int UpdBin(unsigned short oid, const unsigned char* value, unsigned short len,
                      unsigned int occurrence);

  // The text, cut to a 16-bit length, without terminator; text must not be null.
  unsigned int UpdStr(unsigned short oid, const char* text, unsigned int occurrence);

  // Overwrites four bytes in place whatever the record's length is.
  unsigned int UpdInt(unsigned short oid, unsigned int value, unsigned int occurrence);

  // Stores as AddInt64 does.  A record of another length is resized, and that
  // always changes occurrence 1, whichever was found; callers rely on it.
  unsigned int UpdInt64(unsigned short oid, unsigned long long value, unsigned int occurrence);

  // Removes the first record of the OID; 0 when its length runs past the bytes in use.
  unsigned int DelOid(unsigned short oid);

 private:
  // The bytes that a walk may see: those in use, as far as they lie in the block.
  unsigned int usedBytes() const { return pbData == nullptr ? 0 : uLen < uAllocLen ? uLen : uAllocLen; }
  bool hasRoom(uint64_t count) const { return pbData != nullptr && uLen + count <= uAllocLen; }
  ZOT_LOCAL bool ownsAddress(const unsigned char* address) const;
  ZOT_LOCAL void releaseBlock();
  ZOT_LOCAL void detach();
  ZOT_LOCAL unsigned int grow(unsigned int newAllocLen);
  ZOT_LOCAL bool makeRoom(uint64_t count, const unsigned char*& value);
  ZOT_LOCAL unsigned int addEndMarker(const unsigned char* value, unsigned short len);
  ZOT_LOCAL unsigned int addAny(unsigned short oid, const unsigned char* value, unsigned short len);
  template <typename Number>
  ZOT_LOCAL unsigned int addNumberAny(unsigned short oid, Number number);
  template <typename Number>
  ZOT_LOCAL unsigned int addNumber(unsigned short oid, Number number);
  template <typename Number>
  ZOT_LOCAL unsigned int rawAddNumber(Number number);
  template <typename Writer>
  ZOT_LOCAL unsigned int appendBeforeEndKz(Writer write);
  ZOT_LOCAL unsigned char* buildUpdated(unsigned int offset, unsigned int oldLen, const unsigned char* value,
                                        unsigned short len, unsigned int imageSize);
  ZOT_LOCAL void overwrite(unsigned int offset, const void* bytes, unsigned int count);

  // Order and widths are seen by the Objective-C run time of the object class.
  unsigned char* pbData;
  unsigned int uLen;
  unsigned int uAllocLen;
  signed char cFailed;
  signed char cExternal;
};

#endif
