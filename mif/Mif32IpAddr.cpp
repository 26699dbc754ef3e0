// The records of Mif32 that hold an address.
#include <sys/socket.h>

#include "ipaddr/AddressSizesInternal.h"
#include "ipaddr/ZotIpAddr.h"
#include "mif/Mif32.h"

unsigned int Mif32::AddIpAddrV4(unsigned short oid, ZotIpAddr* addr) {
  // The word already has the bytes in network order, and AddInt stores them as they are.
  return addr == nullptr ? 0 : AddInt(oid, addr->GetIpV4Addr());
}

unsigned int Mif32::AddIpAddr(unsigned short oid, ZotIpAddr* addr) {
  if (addr == nullptr) {
    return 0;
  }
  unsigned char bytes[kIp6Size];
  switch (addr->GetAF()) {
    case AF_INET:
      return AddIpAddrV4(oid, addr);
    case AF_INET6:
      for (unsigned int i = 0; i < kIp6Size; ++i) {
        bytes[i] = (*addr)[i];
      }
      return Add(oid, bytes, kIp6Size);
    default:
      return Add(oid, nullptr, 0);
  }
}
