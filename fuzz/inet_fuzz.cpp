// Address texts, bytes and values: the converters and ZotIpAddr beside rules that are
// said part by part, and beside the platform where its printing is the same.
#include <arpa/inet.h>
#include <netinet/in.h>

#include <optional>
#include <vector>

#include "Script.h"
#include "ipaddr/ZotIpAddr.h"
#include "ipaddr/zot_inet.h"

namespace {

std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> parts(1);
  for (const char c : text) {
    if (c == separator) {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  return parts;
}

// A number of these digits and of any count of zeros in front; nothing above limit.
std::optional<unsigned long> number(const std::string& text, const char* digits, int base,
                                    unsigned long limit) {
  if (text.empty() || text.find_first_not_of(digits) != std::string::npos) {
    return std::nullopt;
  }
  const size_t start = std::min(text.find_first_not_of('0'), text.size() - 1);
  const unsigned long value =
      text.size() - start > 5 ? limit + 1 : std::stoul(text.substr(start), nullptr, base);
  return value <= limit ? std::optional(value) : std::nullopt;
}

// The bytes of a text; empty when it is no address.
std::string parsed4(const std::string& text) {
  std::string bytes;
  const auto parts = split(text, '.');
  for (const std::string& part : parts) {
    const auto value = number(part, "0123456789", 10, 255);
    if (!value || parts.size() != 4) {
      return {};
    }
    bytes += static_cast<char>(*value);
  }
  return bytes;
}

std::string parsed6(const std::string& text) {
  if (text.starts_with(':') && !text.starts_with("::")) {
    return {};
  }
  std::string bytes;
  std::optional<size_t> gap;
  auto parts = split(text.substr(text.starts_with(':') ? 1 : 0), ':');
  for (size_t i = 0; i < parts.size(); ++i) {
    std::string added;
    if (parts[i].find('.') != std::string::npos) {
      added = i + 1 == parts.size() ? parsed4(parts[i]) : "";
    } else if (const auto group = number(parts[i], "0123456789abcdefABCDEF", 16, 0xFFFF)) {
      added = {static_cast<char>(*group >> 8), static_cast<char>(*group & 0xFF)};
    } else if (parts[i].empty()) {
      if (i + 1 == parts.size()) {
        break;
      }
      if (gap) {
        return {};
      }
      gap = bytes.size();
      continue;
    }
    if (added.empty() || bytes.size() + added.size() > 16) {
      return {};
    }
    bytes += added;
  }
  if (gap) {
    // A gap of no groups clears what stands behind it.
    const std::string behind = bytes.size() == 16 ? std::string(16 - *gap, '\0') : bytes.substr(*gap);
    bytes = bytes.substr(0, *gap) + std::string(16 - *gap - behind.size(), '\0') + behind;
  }
  return bytes.size() == 16 ? bytes : "";
}

std::string parsed(const std::string& text) {
  const std::string four = parsed4(text);
  return four.empty() ? parsed6(text) : four;
}

std::string printed(const std::string& bytes) {
  char text[INET6_ADDRSTRLEN] = "";
  if (!bytes.empty()) {
    inet_ntop(bytes.size() == 4 ? AF_INET : AF_INET6, bytes.data(), text, sizeof text);
  }
  return text;
}

template <typename Parse>
void checkParser(Parse parse, const std::string& text, const std::string& expected, size_t size) {
  const Block input(text + '\0');
  const Block bytes(std::string(size, '#'));
  require((parse(input.chars(), bytes.get()) != 0) == !expected.empty(), "whether a text is an address");
  require(bytes.str() == (expected.empty() ? std::string(size, '#') : expected), "the bytes of a text");
}

void checkPrinter(const std::string& bytes, uint32_t size) {
  const std::string expected = printed(bytes);
  const bool four = bytes.size() == 4;
  const Block input(bytes);
  const Block text(std::string(size_t{size} + 1, '#'));  // four needs no room for the terminator
  const char* end = (four ? zot_inet_ntop4 : zot_inet_ntop6)(input.get(), text.chars(), size);
  const bool fits = expected.size() + (four ? 0 : 1) <= size;
  require(end == (fits ? text.chars() : nullptr), "whether a text fits");
  require(text.str().starts_with(fits ? expected + '\0' : std::string(size, '#')), "a printed text");
}

std::string bytesOf(const ZotIpAddr& addr) {
  std::string bytes;
  for (unsigned long i = 0; i < (addr.GetAF() == AF_INET ? 4 : addr.GetAF() == AF_INET6 ? 16 : 0); ++i) {
    bytes += static_cast<char>(addr[i]);
  }
  return bytes;
}

bool isMapped(const std::string& bytes) {
  return bytes.size() == 16 && bytes.starts_with(std::string(10, '\0') + "\xFF\xFF");
}

std::string view(const std::string& bytes) {
  return isMapped(bytes) ? bytes.substr(12) : bytes.size() == 4 ? bytes : "";
}

// The results of ==, !=, <, >, <= and >=.
std::string compared(const std::string& a, const std::string& b) {
  const bool byView = !view(a).empty() && !view(b).empty();
  if (!byView && (a.empty() || a.size() != b.size())) {
    return "000000";
  }
  const int order = byView ? view(a).compare(view(b)) : a.compare(b);
  return order == 0 ? "100011" : order < 0 ? "011010" : "010101";
}

void checkComparison(const ZotIpAddr& a, const ZotIpAddr& b, const std::string& textA,
                     const std::string& textB) {
  std::string results;
  for (const unsigned int result : {a == b, a != b, (a < b), (a > b), a <= b, a >= b}) {
    results += std::to_string(result);
  }
  require(results == compared(bytesOf(a), bytesOf(b)), "a comparison");
  std::string codes;
  for (unsigned int op = 0; op < 7; ++op) {
    codes += std::to_string(zot_ipaddr_cmp(op, textA.c_str(), textB.c_str()));
  }
  require(codes == '0' + results.substr(0, 1) + results.substr(2) + '0', "a comparison of texts");
}

void checkValue(ZotIpAddr addr, const std::string& bytes) {
  require(bytesOf(addr) == bytes && addr.GetStr() == printed(bytes), "the address itself");
  require(addr.IsConfigured() == (bytes.find_first_not_of('\0') != std::string::npos), "IsConfigured");
  const bool local = bytes == std::string("\x7F\0\0\1", 4) || bytes == std::string(15, '\0') + '\1';
  require(addr.IsLocalHost() == local, "IsLocalHost");
  require(addr.IsV4Mapped() == isMapped(bytes), "IsV4Mapped");
  require(addr.GetIpV4Addr() == hostNumber<uint32_t>(view(bytes)), "GetIpV4Addr");

  sockaddr_storage storage{};
  addr.InitSockAddr(reinterpret_cast<sockaddr*>(&storage), sizeof storage, htons(9));
  ZotIpAddr again("9.9.9.9");
  again.SetFromSockAddr(&storage);
  require(bytesOf(again) == bytes, "an address by way of a socket address");

  ZotIpAddr converted;
  converted = addr;
  require(converted.ConvertV6ToIpV4() == isMapped(bytes), "ConvertV6ToIpV4");
  require(bytesOf(converted) == (isMapped(bytes) ? view(bytes) : bytes), "the IPv4 address of a mapped one");
  converted.ConvertV4ToIpV6();
  const std::string mapped = std::string(10, '\0') + "\xFF\xFF" + view(bytes);
  require(bytesOf(converted) == (view(bytes).empty() ? bytes : mapped), "the mapped address");
}

void checkSetters(ZotIpAddr& addr, const std::string& text) {
  const auto check = [&](unsigned int result, const std::string& expected) {
    require(result == !expected.empty() && bytesOf(addr) == expected, "an address set from a text");
  };
  check(addr.SetIpV4Addr(text.c_str()), parsed4(text));
  check(addr.SetIpV6Addr(text.c_str()), parsed6(text));
  check(addr = text.c_str(), parsed(text));
  check(addr.SetIpAddr(text.c_str()), parsed(text));
}

void checkNamedHosts(ZotIpAddr& addr, uint32_t word) {
  const auto is = [&](const std::string& expected) { require(bytesOf(addr) == expected, "a named host"); };
  addr.SetAnyHostV4();
  is(std::string(4, '\0'));
  addr.SetAnyHostV6();
  is(std::string(16, '\0'));
  addr.SetLocalHostV4();
  is(std::string("\x7F\0\0\1", 4));
  addr.SetLocalHostV6();
  is(std::string(15, '\0') + '\1');
  addr = word;
  is(hostBytes(word));
  require(bytesOf(ZotIpAddr(word)) == hostBytes(word) && addr[4] == 0 && addr[17] == 0, "an address word");
  addr.Clear();
  is("");
}

void checkRecordValues(const std::string& value) {
  const Block bytes(value);
  const bool taken = value.size() == 4 || value.size() == 16;
  ZotIpAddr addr("9.9.9.9");
  require(addr.SetIpAddrFromMifV4(bytes.get(), bytes.size()) == !taken, "SetIpAddrFromMifV4");
  require(bytesOf(addr) == (taken ? value : std::string(4, '\0')), "an IPv4 record value");
  require(addr.SetIpAddrFromMifV6(bytes.get(), bytes.size()) == !taken, "SetIpAddrFromMifV6");
  require(bytesOf(addr) == (taken ? value : std::string(16, '\0')), "an IPv6 record value");
  require(addr.SetIpAddrFromMif(bytes.get(), bytes.size()) == taken, "SetIpAddrFromMif");
  require(bytesOf(addr) == (taken ? value : ""), "a record value");
}

}  // namespace

// Two texts, one a line.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string input = Script(data, size).rest();
  const std::string textA = input.substr(0, input.find('\n')).c_str();
  const std::string textB = input.substr(std::min(input.size(), textA.size() + 1)).c_str();
  checkParser(zot_inet_pton4, textA, parsed4(textA), 4);
  checkParser(zot_inet_pton6, textA, parsed6(textA), 16);
  for (const std::string& bytes : {parsed4(textA), parsed6(textA), input.substr(0, 4), input.substr(0, 16)}) {
    if (bytes.size() == 4 || bytes.size() == 16) {
      checkPrinter(bytes, static_cast<uint32_t>(size % 48));
      checkPrinter(bytes, 46);
    }
  }
  ZotIpAddr a;
  checkSetters(a, textA);
  checkValue(a, parsed(textA));
  const ZotIpAddr b(textB.c_str());
  checkValue(b, parsed(textB));
  checkComparison(a, b, textA, textB);
  checkRecordValues(input.substr(0, 17));
  checkNamedHosts(a, hostNumber<uint32_t>(input));
  return 0;
}
