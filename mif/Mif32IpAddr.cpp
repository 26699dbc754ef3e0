// The records of Mif32 that hold an address.
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
  const bool hasFamily = addr->uAddrLen == kIp4Size || addr->uAddrLen == kIp6Size;
  return Add(oid, addr->abAddr, static_cast<unsigned short>(hasFamily ? addr->uAddrLen : 0));
}
