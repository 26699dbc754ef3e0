// An IPv4 or IPv6 address as a value.
//
// Holds the address bytes in network order and their count, which tells the
// family: 0 unset, 4 IPv4, 16 IPv6.  An IPv6 address of the block ::ffff:0:0/96 is
// IPv4-mapped.  The IPv4 view of an address is its four bytes, or the last four of
// a mapped one; no other address has a view.
//
// Nothing here throws or logs.  Results are 1 or 0, 1 for success, where nothing
// else is said.  Threads may read one address at the same time as long as none
// changes it; GetStr() without arguments counts as a change.
#ifndef ZOT_IP_ADDR_H
#define ZOT_IP_ADDR_H

#include "os/ZotExport.h"

struct sockaddr;
struct sockaddr_storage;

class ZOT_EXPORT ZotIpAddr {
 public:
  ZotIpAddr();

  // IPv4 from a word whose bytes in memory are the address, as in a socket address.
  ZotIpAddr(unsigned int addr);

  // From address bytes, of which at most 16 are copied.  The count is kept as given
  // and not tested: with anything but 4 and 16 the address has no family.
  ZotIpAddr(const unsigned char* bytes, unsigned int len);

  // From text, as SetIpAddr reads it; unset when the text is no address.
  ZotIpAddr(const char* text);

  // Copying copies the address; the text buffer stays each object's own.
  ZotIpAddr(const ZotIpAddr& other);
  ZotIpAddr& operator=(const ZotIpAddr& other);

  ZotIpAddr& operator=(unsigned int addr);

  // Returns what SetIpAddr returns for the text.
  unsigned int operator=(const char* text);

  virtual ~ZotIpAddr();

  // The family as the host's sockets number it: AF_INET, AF_INET6, or 0.
  int GetAF() const;

  // 1 for an IPv4 or IPv6 address that is not all zeros.
  unsigned int IsConfigured() const;

  // 1 for 127.0.0.1 and ::1 only: the rest of 127/8 and ::ffff:127.0.0.1 give 0.
  unsigned int IsLocalHost() const;

  unsigned int IsV4Mapped() const;

  // The IPv4 view as a word whose bytes in memory are the address; 0 without a view.
  unsigned int GetIpV4Addr() const;

  // Byte i of the address; 0 when i is greater than the count of bytes.  An index
  // equal to the count is not refused: for IPv4 it gives the fifth byte held.
  unsigned char operator[](unsigned long i) const;

  // Unset, but the text buffer is kept.
  void Clear();

  void SetAnyHostV4();
  void SetAnyHostV6();
  void SetLocalHostV4();
  void SetLocalHostV6();

  // Turns a.b.c.d into ::ffff:a.b.c.d and leaves any other address alone.  Always 1.
  unsigned int ConvertV4ToIpV6();

  // Turns ::ffff:a.b.c.d into a.b.c.d; leaves any other address alone and returns 0.
  unsigned int ConvertV6ToIpV4();

  // Fills a socket address of the host's layout.
  //
  //   size  bytes at sa, all zeroed first; IPv6 needs 28, and IPv4 gets what fits
  //   port  in network order, stored as it is
  //
  // All stays zero when the address is unset, or IPv6 and size is below 28.  The
  // length byte of BSD layouts stays zero.
  void InitSockAddr(sockaddr* sa, unsigned long size, unsigned short port) const;

  // Takes the address of a socket address; unset when its family is another one.
  void SetFromSockAddr(const sockaddr_storage* ss);

  // Take the 4 or 16 bytes of a record value.  Any other length unsets the address
  // and gives 0.
  unsigned int SetIpAddrFromData(const unsigned char* data, unsigned int len);
  unsigned int SetIpAddrFromMif(const unsigned char* data, unsigned int len);

  // The same, but any other length sets 0.0.0.0 or ::, and the result is inverted:
  // 0 when the bytes were taken, 1 when not.  Callers rely on that.
  unsigned int SetIpAddrFromMifV4(const unsigned char* data, unsigned int len);
  unsigned int SetIpAddrFromMifV6(const unsigned char* data, unsigned int len);

  // Read a text by the rules of zot_inet.h: IPv4 only, IPv6 only, or IPv4 first and
  // then IPv6.  The address is unset when the result is 0.
  unsigned int SetIpV4Addr(const char* text);
  unsigned int SetIpV6Addr(const char* text);
  unsigned int SetIpAddr(const char* text);

  // Prints by the rules of zot_inet.h.  0, and an empty text, when the address is
  // unset or its text does not fit.
  //
  //   buf   has room for a byte even when size is 0: the empty text is written first
  //   size  room in bytes; an IPv4 text of exactly size characters fits, too, and
  //         its terminator then stands at buf[size] (see zot_inet_ntop4)
  unsigned int GetStr(char* buf, unsigned int size) const;

  // The text in a buffer of this object; empty when the address is unset or the
  // buffer cannot be had.  It is valid until the object is destroyed and changes
  // with the next call.
  const char* GetStr();

  // == and != hold only between two IPv6 addresses (all 16 bytes count) or when
  // both have an IPv4 view (the views count).  Every other pair, two unset
  // addresses included, is neither equal nor unequal; callers rely on that.
  //
  // The orderings compare views where one of the two is IPv4, and otherwise all
  // bytes of addresses of one length.  Between all other pairs, two unset addresses
  // included, none of the four holds.
  unsigned int operator==(const ZotIpAddr& other) const;
  unsigned int operator!=(const ZotIpAddr& other) const;
  unsigned int operator<(const ZotIpAddr& other) const;
  unsigned int operator>(const ZotIpAddr& other) const;
  unsigned int operator<=(const ZotIpAddr& other) const;
  unsigned int operator>=(const ZotIpAddr& other) const;

 private:
  friend class Mif32;  // writes the bytes into records

  ZOT_LOCAL void set(const unsigned char* bytes, unsigned int len);

  unsigned char abAddr[16];
  unsigned int uAddrLen;
  char* pszText;
};

#endif
