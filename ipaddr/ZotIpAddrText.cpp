// The members of ZotIpAddr that read and print text, and the comparison of texts.
#include "ipaddr/ZotIpAddr.h"

#include <cstdlib>

#include "ipaddr/AddressSizesInternal.h"
#include "ipaddr/zot_inet.h"

namespace {

constexpr unsigned int kTextSize = 64;

}  // namespace

unsigned int ZotIpAddr::SetIpV4Addr(const char* text) {
  Clear();
  uAddrLen = zot_inet_pton4(text, abAddr) != 0 ? kIp4Size : 0;
  return uAddrLen != 0;
}

unsigned int ZotIpAddr::SetIpV6Addr(const char* text) {
  Clear();
  uAddrLen = zot_inet_pton6(text, abAddr) != 0 ? kIp6Size : 0;
  return uAddrLen != 0;
}

unsigned int ZotIpAddr::SetIpAddr(const char* text) {
  return SetIpV4Addr(text) != 0 || SetIpV6Addr(text) != 0;
}

unsigned int ZotIpAddr::GetStr(char* buf, unsigned int size) const {
  *buf = '\0';
  switch (uAddrLen) {
    case kIp4Size:
      return zot_inet_ntop4(abAddr, buf, size) != nullptr;
    case kIp6Size:
      return zot_inet_ntop6(abAddr, buf, size) != nullptr;
    default:
      return 0;
  }
}

const char* ZotIpAddr::GetStr() {
  if (pszText == nullptr) {
    pszText = static_cast<char*>(std::malloc(kTextSize));
  }
  if (pszText == nullptr) {
    return "";
  }
  GetStr(pszText, kTextSize);
  return pszText;
}

int zot_ipaddr_cmp(unsigned int op, const char* a, const char* b) {
  const ZotIpAddr left(a);
  const ZotIpAddr right(b);
  switch (op) {
    case 1:
      return left == right ? 1 : 0;
    case 2:
      return left < right ? 1 : 0;
    case 3:
      return left > right ? 1 : 0;
    case 4:
      return left <= right ? 1 : 0;
    case 5:
      return left >= right ? 1 : 0;
    default:
      return 0;
  }
}
