#include "ipaddr/zot_inet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <arpa/inet.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

// The bytes that a converter read, in a block of their own size; empty when it
// refused, which must also have left the destination alone.
Bytes parsed(int (*pton)(const char*, unsigned char*), size_t size, const std::string& text) {
  Bytes bytes(size, 0xA5);
  if (pton(text.c_str(), bytes.data()) == 1) {
    return bytes;
  }
  EXPECT_EQ(Bytes(size, 0xA5), bytes);
  return {};
}

Bytes parsed4(const std::string& text) {
  return parsed(zot_inet_pton4, 4, text);
}

Bytes parsed6(const std::string& text) {
  return parsed(zot_inet_pton6, 16, text);
}

// The same from the platform.
Bytes theirs(int family, size_t size, const std::string& text) {
  Bytes bytes(size);
  return inet_pton(family, text.c_str(), bytes.data()) == 1 ? bytes : Bytes();
}

std::vector<std::string> words(const char* list) {
  std::istringstream in(list);
  return {std::istream_iterator<std::string>(in), {}};
}

std::string printed6(const Bytes& bytes) {
  char text[46];
  return zot_inet_ntop6(bytes.data(), text, sizeof text) == text ? text : "null";
}

TEST(DottedQuad, TakesFourDecimalNumbersAndNothingElse) {
  EXPECT_EQ(Bytes({1, 2, 3, 4}), parsed4("1.2.3.4"));
  EXPECT_EQ(Bytes({255, 255, 255, 255}), parsed4("255.255.255.255"));
  EXPECT_EQ(Bytes({0, 0, 0, 0}), parsed4("0.0.0.0"));
  EXPECT_EQ(Bytes({10, 1, 0, 7}), parsed4("010.001.0.00007"));
  EXPECT_EQ(Bytes({9, 8, 7, 6}), parsed4(std::string(300, '0') + "9.8.7.6"));
  for (const auto& text :
       words("1 1.2.3 10.1 1.2.3. 1.2.3.4. 1.2.3.4.5 1..2.3 .1.2.3.4 ... 256.1.1.1 1.1.1.256 "
             "+1.2.3.4 -1.2.3.4 0x1.2.3.4 1.2.3.a 1,2,3,4 ::1 1.2.3:4 4294967297.1.1.1")) {
    EXPECT_EQ(Bytes(), parsed4(text)) << text;
  }
  for (const char* text : {"", " 1.2.3.4", "1.2.3.4 ", "1.2.3.4\n", "1. 2.3.4"}) {
    EXPECT_EQ(Bytes(), parsed4(text)) << text;
  }
  EXPECT_EQ(0, zot_inet_pton4(nullptr, nullptr));
}

TEST(ColonHex, TakesEveryFormOfAnAddress) {
  EXPECT_EQ(Bytes({0xFE, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x0A, 0xBC}), parsed6("fe80::AbC"));
  EXPECT_EQ(Bytes({0, 1, 0, 2, 0, 3, 0, 0, 0, 5, 0, 6, 0, 7, 0, 8}), parsed6("1:2:3::5:6:7:8"));
  EXPECT_EQ(Bytes({0, 1, 0, 2, 0, 3, 0, 4, 0, 5, 0, 6, 255, 0, 0, 1}), parsed6("1:2:3:4:5:6:255.0.0.1"));
  EXPECT_EQ(Bytes({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 1, 2, 3, 4}), parsed6("::ffff:1.2.3.4"));
}

TEST(ColonHex, HasRulesOfItsOwn) {
  // Each text and the address that it stands for; the platform refuses these texts.
  const auto pairs = words(
      "1:2:3:4:5:6:7:8:: 1:2:3:4:5:6:7:8  1:2:3:4::5:6:7:8 1:2:3:4::  ::1:2:3:4:5:6:7:8 ::  "
      "1:2:3::4:5:6:1.2.3.4 1:2:3::  000000001::2 1::2  1:2:3:4:5:6:7:0000000ffff 1:2:3:4:5:6:7:ffff  "
      "1:2:3:4:5:6:7:8: 1:2:3:4:5:6:7:8  1::2: 1::2  ::1: ::1  ::010.001.0.00007 ::10.1.0.7");
  for (size_t i = 0; i < pairs.size(); i += 2) {
    EXPECT_EQ(pairs[i + 1], printed6(parsed6(pairs[i]))) << pairs[i];
    EXPECT_EQ(Bytes(), theirs(AF_INET6, 16, pairs[i])) << pairs[i];
  }
}

TEST(ColonHex, RefusesEverythingElse) {
  for (const auto& text :
       words(": :1 :1:: ::: 1:::2 1::2::3 1 1.2.3.4 1:2:3:4:5:6:7 1:2:3:4:5:6:7: 1:2:3:4:5:6:7:8:9 "
             "1:2:3:4:5:6:7:8:1.2.3.4 1:2:3:4:5:6:7:1.2.3.4 ::1:2:3:4:5:6:7:1.2.3.4 ::10000 ::1.2.3 "
             "::1.2.3.4:5 ::1.2.3.256 ::.1.2.3 ::a.2.3.4 ::1.2.3.4. ::g fe80::1%eth0 [::1] ::1/64 ::\xE9")) {
    EXPECT_EQ(Bytes(), parsed6(text)) << text;
  }
  for (const char* text : {"", " ::1", "::1 ", ":: 1"}) {
    EXPECT_EQ(Bytes(), parsed6(text)) << text;
  }
  EXPECT_EQ(0, zot_inet_pton6(nullptr, nullptr));
}

TEST(Printing, CompressesTheFirstLongestRunAndShowsQuads) {
  for (const auto& text :
       words(":: ::1 fe80::1 1::1:0:0:1:1 1:0:0:1::1 2001:db8:0:1::1 1:0:2:0:3:0:4:0 0:1:2:3:4:5:6:7 "
             "1:2:3:4:5:6:: ::ffff:10.1.2.3 ::10.1.2.3 ::2:a01:203 ::ffff:0:a01:203 1::ffff:a01:203 "
             "::ffff:0.0.0.0 "
             "::ffff:255.255.255.255 abcd:ef01:2345:6789:abcd:ef01:2345:6789")) {
    EXPECT_EQ(text, printed6(parsed6(text)));
  }
}

// IPv4 does not count the terminator.
TEST(Printing, NeedsItsSizeAndLeavesASmallerBufferAlone) {
  const struct {
    const char* text;
    unsigned int least;
  } cases[] = {{"1.2.3.4", 7}, {"200.10.0.255", 12}, {"::1", 4}, {"::ffff:1.2.3.4", 15}};
  for (const auto& c : cases) {
    const Bytes v4 = parsed4(c.text);
    const Bytes v6 = parsed6(c.text);
    for (unsigned int size = 0; size < 50; ++size) {
      char dst[64] = "untouched";
      const char* end =
          v6.empty() ? zot_inet_ntop4(v4.data(), dst, size) : zot_inet_ntop6(v6.data(), dst, size);
      EXPECT_EQ(size < c.least ? nullptr : dst, end) << size;
      EXPECT_STREQ(size < c.least ? "untouched" : c.text, dst) << size;
    }
  }
}

// Addresses with many zeros and the words that printing treats apart.
Bytes randomAddress(std::mt19937& random) {
  Bytes bytes;
  for (int i = 0; i < 8; ++i) {
    const uint_fast32_t values[] = {0, 0, 0, 0, 1, 0xFFFF, random() & 0xFFF, random() & 0xFFFF};
    const auto word = values[random() % 8];
    bytes.push_back(static_cast<unsigned char>(word >> 8));
    bytes.push_back(static_cast<unsigned char>(word & 0xFF));
  }
  return bytes;
}

// The forms for which the platform's converter has other rules.
bool readsDifferently(const std::string& text) {
  const bool quad = text.find('.') != std::string::npos;
  size_t digits = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    digits = text[i] == ':' || text[i] == '.' ? 0 : digits + 1;
    if (digits > 4 || (quad && digits == 1 && text[i] == '0')) {
      return true;
    }
  }
  return text.ends_with(':') || std::count(text.begin(), text.end(), ':') > (quad ? 6 : 7);
}

TEST(PlatformConverters, AgreeWhereTheRulesCoincide) {
  std::mt19937 random(20090401);
  int accepted = 0;
  int refused = 0;
  for (int round = 0; round < 20000; ++round) {
    const Bytes address = randomAddress(random);
    char text6[INET6_ADDRSTRLEN];
    ASSERT_EQ(inet_ntop(AF_INET6, address.data(), text6, sizeof text6), printed6(address));
    ASSERT_EQ(address, parsed6(text6));
    char text4[INET_ADDRSTRLEN];
    char ours4[INET_ADDRSTRLEN];
    ASSERT_STREQ(inet_ntop(AF_INET, address.data(), text4, sizeof text4),
                 zot_inet_ntop4(address.data(), ours4, sizeof ours4));

    std::string edited = round % 4 == 0 ? text4 : text6;
    for (auto edits = random() % 3; edits > 0; --edits) {
      edited.replace(random() % (edited.size() + 1), random() % 2, 1, "0123456789aF:.:. g"[random() % 18]);
    }
    if (!readsDifferently(edited)) {
      const Bytes their6 = theirs(AF_INET6, 16, edited);
      const Bytes their4 = theirs(AF_INET, 4, edited);
      ASSERT_EQ(their6, parsed6(edited)) << edited;
      ASSERT_EQ(their4, parsed4(edited)) << edited;
      ++(their6.empty() && their4.empty() ? refused : accepted);
    }
  }
  EXPECT_GT(accepted, 3000);
  EXPECT_GT(refused, 1000);
}

TEST(ComparingTexts, TakesFiveCodesAndAddressesOnly) {
  const auto results = [](const char* a, const char* b) {
    std::string digits;
    for (unsigned int op = 0; op <= 6; ++op) {
      digits += std::to_string(zot_ipaddr_cmp(op, a, b));
    }
    return digits;
  };
  EXPECT_EQ("0010100", results("9.0.0.1", "10.0.0.1"));
  EXPECT_EQ("0001010", results("10.0.0.1", "9.0.0.1"));
  EXPECT_EQ("0100110", results("10.1.2.3", "::ffff:10.1.2.3"));
  EXPECT_EQ("0000000", results("1.2.3.4", "fe80::1"));
  EXPECT_EQ("0000000", results("1.2.3.4", "1.2.3"));
  EXPECT_EQ(0, zot_ipaddr_cmp(1, nullptr, nullptr));
}

}  // namespace
