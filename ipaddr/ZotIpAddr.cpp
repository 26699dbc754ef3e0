#include "ipaddr/ZotIpAddr.h"

#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "ipaddr/AddressSizesInternal.h"

namespace {

constexpr unsigned char kAnyHost[kIp6Size] = {};
constexpr unsigned char kLocalHostV4[kIp4Size] = {127, 0, 0, 1};
constexpr unsigned char kLocalHostV6[kIp6Size] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
constexpr unsigned char kMappedPrefix[] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF};

// The bytes of an address with the length that its owner claims for them.
struct Octets {
  bool isMapped() const {
    return len == kIp6Size && std::memcmp(bytes, kMappedPrefix, sizeof kMappedPrefix) == 0;
  }
  bool equals(const unsigned char* other, unsigned int otherLen) const {
    return len == otherLen && std::memcmp(bytes, other, len) == 0;
  }
  // The four bytes of the IPv4 view; null without one.
  const unsigned char* v4View() const {
    if (len == kIp4Size) {
      return bytes;
    }
    return isMapped() ? bytes + sizeof kMappedPrefix : nullptr;
  }

  const unsigned char* bytes;
  unsigned int len;
};

// Below 0, 0 or above 0 as a stands to b; nothing when the two do not compare.  The
// views also decide between two mapped addresses, whose other bytes are the same.
std::optional<int> compare(const Octets& a, const Octets& b) {
  const unsigned char* aView = a.v4View();
  const unsigned char* bView = b.v4View();
  if (aView != nullptr && bView != nullptr) {
    return std::memcmp(aView, bView, kIp4Size);
  }
  if (a.len == 0 || a.len != b.len) {
    return std::nullopt;
  }
  return std::memcmp(a.bytes, b.bytes, std::min(a.len, kIp6Size));
}

// For == and !=, which hold between real addresses only.  The orderings also compare
// two values of one length that is no family's.
std::optional<int> compareFamilies(const Octets& a, const Octets& b) {
  return a.len == kIp4Size || a.len == kIp6Size ? compare(a, b) : std::nullopt;
}

}  // namespace

ZotIpAddr::ZotIpAddr() : abAddr{}, uAddrLen(0), pszText(nullptr) {}

ZotIpAddr::ZotIpAddr(unsigned int addr)
    : ZotIpAddr(reinterpret_cast<const unsigned char*>(&addr), sizeof addr) {}

ZotIpAddr::ZotIpAddr(const unsigned char* bytes, unsigned int len) : pszText(nullptr) {
  set(bytes, len);
}

ZotIpAddr::ZotIpAddr(const char* text) : ZotIpAddr() {
  SetIpAddr(text);
}

ZotIpAddr::ZotIpAddr(const ZotIpAddr& other) : ZotIpAddr(other.abAddr, other.uAddrLen) {}

ZotIpAddr& ZotIpAddr::operator=(const ZotIpAddr& other) {
  if (this != &other) {
    set(other.abAddr, other.uAddrLen);
  }
  return *this;
}

ZotIpAddr& ZotIpAddr::operator=(unsigned int addr) {
  set(reinterpret_cast<const unsigned char*>(&addr), sizeof addr);
  return *this;
}

unsigned int ZotIpAddr::operator=(const char* text) {
  return SetIpAddr(text);
}

ZotIpAddr::~ZotIpAddr() {
  std::free(pszText);
}

int ZotIpAddr::GetAF() const {
  switch (uAddrLen) {
    case kIp4Size:
      return AF_INET;
    case kIp6Size:
      return AF_INET6;
    default:
      return 0;
  }
}

unsigned int ZotIpAddr::IsConfigured() const {
  return GetAF() != 0 && std::memcmp(abAddr, kAnyHost, uAddrLen) != 0;
}

unsigned int ZotIpAddr::IsLocalHost() const {
  const Octets self{abAddr, uAddrLen};
  return self.equals(kLocalHostV4, kIp4Size) || self.equals(kLocalHostV6, kIp6Size);
}

unsigned int ZotIpAddr::IsV4Mapped() const {
  return Octets{abAddr, uAddrLen}.isMapped();
}

unsigned int ZotIpAddr::GetIpV4Addr() const {
  unsigned int word = 0;
  if (const unsigned char* view = Octets{abAddr, uAddrLen}.v4View()) {
    std::memcpy(&word, view, sizeof word);
  }
  return word;
}

unsigned char ZotIpAddr::operator[](unsigned long i) const {
  return i > uAddrLen || i >= sizeof abAddr ? 0 : abAddr[i];
}

void ZotIpAddr::set(const unsigned char* bytes, unsigned int len) {
  std::memset(abAddr, 0, sizeof abAddr);
  std::copy_n(bytes, std::min(len, kIp6Size), abAddr);
  uAddrLen = len;
}

void ZotIpAddr::Clear() {
  std::memset(abAddr, 0, sizeof abAddr);
  uAddrLen = 0;
}

void ZotIpAddr::SetAnyHostV4() {
  set(kAnyHost, kIp4Size);
}

void ZotIpAddr::SetAnyHostV6() {
  set(kAnyHost, kIp6Size);
}

void ZotIpAddr::SetLocalHostV4() {
  set(kLocalHostV4, kIp4Size);
}

void ZotIpAddr::SetLocalHostV6() {
  set(kLocalHostV6, kIp6Size);
}

unsigned int ZotIpAddr::ConvertV4ToIpV6() {
  if (uAddrLen == kIp4Size) {
    std::memcpy(abAddr + sizeof kMappedPrefix, abAddr, kIp4Size);
    std::memcpy(abAddr, kMappedPrefix, sizeof kMappedPrefix);
    uAddrLen = kIp6Size;
  }
  return 1;
}

unsigned int ZotIpAddr::ConvertV6ToIpV4() {
  if (IsV4Mapped() == 0) {
    return 0;
  }
  std::memcpy(abAddr, abAddr + sizeof kMappedPrefix, kIp4Size);
  uAddrLen = kIp4Size;
  return 1;
}

void ZotIpAddr::InitSockAddr(sockaddr* sa, unsigned long size, unsigned short port) const {
  std::memset(sa, 0, size);
  if (uAddrLen == kIp4Size) {
    sockaddr_in in{};
    in.sin_family = AF_INET;
    in.sin_port = port;
    std::memcpy(&in.sin_addr, abAddr, kIp4Size);
    std::memcpy(sa, &in, std::min<size_t>(size, sizeof in));
  } else if (uAddrLen == kIp6Size && size >= sizeof(sockaddr_in6)) {
    sockaddr_in6 in6{};
    in6.sin6_family = AF_INET6;
    in6.sin6_port = port;
    std::memcpy(&in6.sin6_addr, abAddr, kIp6Size);
    std::memcpy(sa, &in6, sizeof in6);
  }
}

void ZotIpAddr::SetFromSockAddr(const sockaddr_storage* ss) {
  Clear();
  if (ss->ss_family == AF_INET) {
    sockaddr_in in;
    std::memcpy(&in, ss, sizeof in);
    SetIpAddrFromData(reinterpret_cast<const unsigned char*>(&in.sin_addr), kIp4Size);
  } else if (ss->ss_family == AF_INET6) {
    sockaddr_in6 in6;
    std::memcpy(&in6, ss, sizeof in6);
    SetIpAddrFromData(reinterpret_cast<const unsigned char*>(&in6.sin6_addr), kIp6Size);
  }
}

unsigned int ZotIpAddr::SetIpAddrFromData(const unsigned char* data, unsigned int len) {
  if (len != kIp4Size && len != kIp6Size) {
    Clear();
    return 0;
  }
  set(data, len);
  return 1;
}

unsigned int ZotIpAddr::SetIpAddrFromMif(const unsigned char* data, unsigned int len) {
  return SetIpAddrFromData(data, len);
}

unsigned int ZotIpAddr::SetIpAddrFromMifV4(const unsigned char* data, unsigned int len) {
  if (SetIpAddrFromMif(data, len) != 0) {
    return 0;
  }
  SetAnyHostV4();
  return 1;
}

unsigned int ZotIpAddr::SetIpAddrFromMifV6(const unsigned char* data, unsigned int len) {
  if (SetIpAddrFromData(data, len) != 0) {
    return 0;
  }
  SetAnyHostV6();
  return 1;
}

unsigned int ZotIpAddr::operator==(const ZotIpAddr& other) const {
  return compareFamilies({abAddr, uAddrLen}, {other.abAddr, other.uAddrLen}) == 0;
}

// Not the negation of ==: addresses that do not compare are not unequal either.
unsigned int ZotIpAddr::operator!=(const ZotIpAddr& other) const {
  return compareFamilies({abAddr, uAddrLen}, {other.abAddr, other.uAddrLen}).value_or(0) != 0;
}

unsigned int ZotIpAddr::operator<(const ZotIpAddr& other) const {
  return compare({abAddr, uAddrLen}, {other.abAddr, other.uAddrLen}).value_or(0) < 0;
}

unsigned int ZotIpAddr::operator>(const ZotIpAddr& other) const {
  return compare({abAddr, uAddrLen}, {other.abAddr, other.uAddrLen}).value_or(0) > 0;
}

unsigned int ZotIpAddr::operator<=(const ZotIpAddr& other) const {
  return compare({abAddr, uAddrLen}, {other.abAddr, other.uAddrLen}).value_or(1) <= 0;
}

unsigned int ZotIpAddr::operator>=(const ZotIpAddr& other) const {
  return compare({abAddr, uAddrLen}, {other.abAddr, other.uAddrLen}).value_or(-1) >= 0;
}
