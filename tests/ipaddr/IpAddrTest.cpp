#include "ipaddr/ZotIpAddr.h"

#include <gtest/gtest.h>

#include <netinet/in.h>
#include <sys/socket.h>

#include <map>
#include <string>
#include <tuple>
#include <typeinfo>
#include <utility>
#include <vector>

#include "support/FailingHeap.h"

namespace {

using Bytes = std::vector<unsigned char>;

Bytes octets(const ZotIpAddr& addr, unsigned long count = 16) {
  Bytes bytes;
  for (unsigned long i = 0; i < count; ++i) {
    bytes.push_back(addr[i]);
  }
  return bytes;
}

// The bytes of an object, cut or filled with zeros to a size.
template <typename Object>
Bytes laidOut(const Object& object, size_t size) {
  const auto* first = reinterpret_cast<const unsigned char*>(&object);
  Bytes bytes(first, first + sizeof object);
  bytes.resize(size);
  return bytes;
}

std::string text(ZotIpAddr addr) {
  return addr.GetStr();
}

TEST(IpAddr, AnswersForEveryKindOfAddress) {
  const struct {
    const char* text;
    int family;
    unsigned int flags;  // decimal digits: configured, local host, mapped
    const char* v4;
  } cases[] = {
      {"", 0, 0, "0.0.0.0"},
      {"0.0.0.0", AF_INET, 0, "0.0.0.0"},
      {"0.0.0.1", AF_INET, 100, "0.0.0.1"},
      {"127.0.0.1", AF_INET, 110, "127.0.0.1"},
      {"127.0.0.2", AF_INET, 100, "127.0.0.2"},
      {"::", AF_INET6, 0, "0.0.0.0"},
      {"::1", AF_INET6, 110, "0.0.0.0"},
      {"8000::", AF_INET6, 100, "0.0.0.0"},
      {"::ffff:127.0.0.1", AF_INET6, 101, "127.0.0.1"},
      {"::ffff:0.0.0.0", AF_INET6, 101, "0.0.0.0"},
      {"1::ffff:1.2.3.4", AF_INET6, 100, "0.0.0.0"},
      {"::1.2.3.4", AF_INET6, 100, "0.0.0.0"},
  };
  for (const auto& c : cases) {
    const ZotIpAddr addr(c.text);
    EXPECT_EQ(c.family, addr.GetAF()) << c.text;
    const unsigned int flags = addr.IsConfigured() * 100 + addr.IsLocalHost() * 10 + addr.IsV4Mapped();
    EXPECT_EQ(c.flags, flags) << c.text;
    EXPECT_STREQ(c.v4, ZotIpAddr(addr.GetIpV4Addr()).GetStr()) << c.text;
  }
}

TEST(IpAddr, ComparesAcrossTheFamilies) {
  const unsigned char six[] = {1, 2, 3, 4, 5, 6};
  const ZotIpAddr values[] = {ZotIpAddr(),        "10.1.2.3",       "::ffff:10.1.2.3", "200.0.0.1",
                              "::ffff:200.0.0.1", ZotIpAddr("::1"), "fe80::1",         {six, 6}};
  // What stands between row and column: o is <= and >= only, . is nothing at all.
  const char* const relations[] = {
      "........",  // unset
      ".==<<...",  // 10.1.2.3
      ".==<<><.",  // ::ffff:10.1.2.3
      ".>>==...",  // 200.0.0.1
      ".>>==><.",  // ::ffff:200.0.0.1
      "..<.<=<.",  // ::1
      "..>.>>=.",  // fe80::1
      ".......o",  // six bytes, which are no family's
  };
  // Of ==, !=, <, >, <=, >=.
  const std::map<char, std::string> results = {
      {'=', "100011"}, {'<', "011010"}, {'>', "010101"}, {'o', "000011"}, {'.', "000000"}};
  for (size_t row = 0; row < std::size(values); ++row) {
    for (size_t column = 0; column < std::size(values); ++column) {
      const auto& [a, b] = std::tie(values[row], values[column]);
      std::string shown;
      for (unsigned int result : {a == b, a != b, (a < b), (a > b), a <= b, a >= b}) {
        shown += std::to_string(result);
      }
      EXPECT_EQ(results.at(relations[row][column]), shown) << row << " " << column;
    }
  }
}

TEST(IpAddr, ConvertsBetweenTheFamilies) {
  ZotIpAddr addr("192.168.1.1");
  EXPECT_EQ(1u, addr.ConvertV4ToIpV6());
  EXPECT_EQ(Bytes({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xC0, 0xA8, 1, 1}), octets(addr));
  EXPECT_EQ(1u, addr.ConvertV4ToIpV6());
  EXPECT_EQ("::ffff:192.168.1.1", text(addr));
  EXPECT_EQ(1u, addr.ConvertV6ToIpV4());
  EXPECT_EQ("192.168.1.1", text(addr));
  EXPECT_EQ(Bytes({192, 168, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}), octets(addr))
      << "no byte left shows";
  for (const char* other : {"192.168.1.1", "::1", ""}) {
    ZotIpAddr kept(other);
    EXPECT_EQ(0u, kept.ConvertV6ToIpV4());
    EXPECT_EQ(other, text(kept));
  }
  addr = "::1";
  EXPECT_EQ(1u, addr.ConvertV4ToIpV6());
  EXPECT_EQ("::1", text(addr));
}

TEST(IpAddr, NeverHoldsMoreThanSixteenBytes) {
  const Bytes full(16, 0xEE);
  const ZotIpAddr huge(full.data(), 0xFFFFFFFF);
  ZotIpAddr copy(huge);
  copy = huge;
  EXPECT_EQ(full, octets(copy));
  EXPECT_EQ(Bytes(3, 0), Bytes({copy[16], copy[17], copy[1UL << 31]}));
  EXPECT_EQ(0, copy.GetAF());
  EXPECT_EQ(0u, copy.IsConfigured());
  EXPECT_EQ(1u, copy <= huge);
  EXPECT_EQ(0, ZotIpAddr(full.data(), 16)[16]);
  EXPECT_EQ(Bytes({1, 2, 3, 4, 0, 0}), octets("1.2.3.4", 6));
}

TEST(IpAddr, CopiesTheAddressAndNotTheText) {
  ZotIpAddr a("10.0.0.1");
  const char* aText = a.GetStr();
  ZotIpAddr b(a);
  {
    const FailingHeap heap;
    EXPECT_STREQ("", b.GetStr()) << "there is no buffer, nor is that of the other used";
  }
  EXPECT_STREQ("10.0.0.1", b.GetStr());
  EXPECT_EQ(1u, b = "::1");
  a = b;
  EXPECT_STREQ("10.0.0.1", aText) << "assignment prints nothing";
  EXPECT_EQ(aText, a.GetStr());
  EXPECT_STREQ("::1", aText);
  a = std::as_const(a);
  EXPECT_EQ(1u, a.SetIpAddr(a.GetStr())) << "its own text";
  EXPECT_STREQ("::1", a.GetStr());
  EXPECT_EQ(0u, a = "1.2.3");
  EXPECT_STREQ("", a.GetStr());
  EXPECT_STREQ("9ZotIpAddr", typeid(a).name());
}

TEST(IpAddr, ReadsAndPrintsText) {
  ZotIpAddr addr("9.9.9.9");
  EXPECT_EQ(0u, addr.SetIpV6Addr("1.2.3.4"));
  EXPECT_EQ(0, addr.GetAF());
  EXPECT_EQ(Bytes(16), octets(addr));
  EXPECT_EQ(0u, addr.SetIpV4Addr("::1"));
  EXPECT_EQ(0u, addr.SetIpAddr(nullptr));
  EXPECT_EQ(1u, addr.SetIpV6Addr("fe80::1"));
  EXPECT_EQ(1u, addr.SetIpV4Addr("1.2.3.4"));
  addr.ConvertV4ToIpV6();
  EXPECT_EQ(1u, addr.IsV4Mapped()) << "nothing is left of the address before";
  addr.ConvertV6ToIpV4();
  char buf[64] = "old";
  EXPECT_EQ(0u, addr.GetStr(buf, 6));
  EXPECT_STREQ("", buf);
  EXPECT_EQ(1u, addr.GetStr(buf, 7)) << "the size of the characters is enough";
  EXPECT_STREQ("1.2.3.4", buf);
  EXPECT_EQ(0u, ZotIpAddr().GetStr(buf, sizeof buf));
  EXPECT_STREQ("", buf);
}

TEST(IpAddr, TakesRecordValuesWithTheirTwoKindsOfResult) {
  const unsigned char value[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17};
  for (unsigned int len = 0; len <= sizeof value; ++len) {
    SCOPED_TRACE(len);
    const bool fits = len == 4 || len == 16;
    const std::string read = len == 4 ? "1.2.3.4" : "102:304:506:708:90a:b0c:d0e:f10";
    ZotIpAddr addr("9.9.9.9");
    EXPECT_EQ(fits ? 1u : 0u, addr.SetIpAddrFromData(value, len));
    EXPECT_EQ(fits ? read : "", text(addr));
    addr = "9.9.9.9";
    EXPECT_EQ(fits ? 1u : 0u, addr.SetIpAddrFromMif(value, len));
    EXPECT_EQ(fits ? read : "", text(addr));
    EXPECT_EQ(fits ? 0u : 1u, addr.SetIpAddrFromMifV4(value, len));
    EXPECT_EQ(fits ? read : "0.0.0.0", text(addr));
    EXPECT_EQ(fits ? 0u : 1u, addr.SetIpAddrFromMifV6(value, len));
    EXPECT_EQ(fits ? read : "::", text(addr));
  }
}

TEST(IpAddr, FillsSocketAddressesWithinTheirSize) {
  sockaddr_in in{};
  in.sin_family = AF_INET;
  in.sin_port = htons(8080);
  in.sin_addr.s_addr = htonl(0x0A010203);
  sockaddr_in6 in6{};
  in6.sin6_family = AF_INET6;
  in6.sin6_port = htons(8080);
  in6.sin6_addr.s6_addr[15] = 1;
  for (size_t size = 1; size <= sizeof(sockaddr_storage); ++size) {
    const std::pair<const char*, Bytes> cases[] = {{"10.1.2.3", laidOut(in, size)},
                                                   {"::1", size < 28 ? Bytes(size) : laidOut(in6, size)},
                                                   {"", Bytes(size)}};
    for (const auto& [address, expected] : cases) {
      Bytes block(size, 0xA5);
      ZotIpAddr(address).InitSockAddr(reinterpret_cast<sockaddr*>(block.data()), size, htons(8080));
      EXPECT_EQ(expected, block) << address << " " << size;
      if (size == sizeof(sockaddr_storage)) {
        ZotIpAddr read("1.1.1.1");
        read.SetFromSockAddr(reinterpret_cast<sockaddr_storage*>(block.data()));
        EXPECT_EQ(address, text(read));
      }
    }
  }
}

TEST(IpAddr, SetsItsNamedHostsAndWords) {
  ZotIpAddr addr("1:2:3:4:5:6:7:8");
  addr.SetAnyHostV4();
  EXPECT_EQ("0.0.0.0", text(addr));
  EXPECT_EQ(Bytes(16), octets(addr)) << "nothing is left of the address before";
  addr.SetLocalHostV6();
  EXPECT_EQ("::1", text(addr));
  addr.SetAnyHostV6();
  EXPECT_EQ("::", text(addr));
  addr.SetLocalHostV4();
  EXPECT_EQ("127.0.0.1", text(addr));
  EXPECT_EQ("10.1.2.3", text(addr = htonl(0x0A010203)));
}

}  // namespace
