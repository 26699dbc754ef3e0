#include "os/zot_string.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using namespace std::string_literals;

// The first 12 bytes of a buffer of '#' with a text, after a call on it.
template <typename Call>
std::string after(const char* text, Call call) {
  char bytes[32];
  std::fill_n(bytes, sizeof bytes, '#');
  std::snprintf(bytes, sizeof bytes, "%s", text);
  call(bytes);
  return {bytes, 12};
}

TEST(BoundedCat, CutsToSizeAndShortensAFullDestination) {
  const auto cat = [](const char* text, unsigned int size, const char* src) {
    return after(text, [=](char* dst) { EXPECT_EQ(dst, strcat_zot(dst, size, src)); });
  };
  EXPECT_EQ("abcdefgh\0###"s, cat("abc", 20, "defgh"));
  EXPECT_EQ("abcdefgh\0###"s, cat("abc", 9, "defgh"));
  EXPECT_EQ("abcdefg\0####"s, cat("abc", 8, "defgh"));
  EXPECT_EQ("abc\0########"s, cat("abc", 4, "defgh"));
  EXPECT_EQ("ab\0\0########"s, cat("abc", 3, "defgh"));
  EXPECT_EQ("abc\0########"s, cat("abc", 2, "defgh"));
  EXPECT_EQ("\0###########"s, cat("", 1, "x"));
  EXPECT_EQ("012345678\0\0#"s, cat("0123456789", 10, "x"));
}

TEST(BoundedCat, WithACountKeepsTheRoughEdges) {
  const auto cat = [](const char* text, unsigned int size, const char* src, unsigned int n) {
    return after(text, [=](char* dst) { EXPECT_EQ(dst, strncat_zot(dst, size, src, n)); });
  };
  EXPECT_EQ("abcd########", cat("ab", 12, "cdef", 2)) << "some of src bring no terminator";
  EXPECT_EQ("abcd\0\0\0\0\0\0##"s, cat("ab", 6, "cd", 8)) << "padding runs past size";
  EXPECT_EQ("abcde##\0####"s, cat("abc", 8, "defgh", 2)) << "a cut forces the last byte only";
  EXPECT_EQ("abc\0\0#######"s, cat("abcd", 4, "x", UINT32_MAX));
  EXPECT_EQ("abc\0########"s, cat("abc", 20, "x", 0));
}

TEST(BoundedCopy, NeverPassesSizeNorWrapsAHugeCount) {
  const auto low = [](char* dst) { return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(dst)); };
  const auto copy = [&](unsigned int size, unsigned int n) {
    return after("-", [=](char* dst) { EXPECT_EQ(low(dst), strncpy_zot(dst, size, "abcdef", n)); });
  };
  const auto whole = [&](unsigned int size) {
    return after("-", [=](char* dst) { EXPECT_EQ(low(dst), strcpy_zot(dst, size, "abcdef")); });
  };
  EXPECT_EQ("abcdef\0#####"s + "abcde\0######"s, whole(7) + whole(6));
  EXPECT_EQ("abcdef\0#####"s + "abcde\0######"s, copy(7, UINT32_MAX) + copy(6, UINT32_MAX));
  EXPECT_EQ("abc\0########"s + "ab\0#########"s, copy(4, 3) + copy(3, 3));
  EXPECT_EQ("abc\0########"s + "\0\0##########"s, copy(100, 3) + copy(100, 0));
  EXPECT_EQ("\0\0##########"s + "-\0##########"s, copy(1, 5) + copy(0, 5));
}

TEST(BoundedStrings, ReadNothingTheyNeedNotAndRefuseNull) {
  char text[8] = "abc";
  char* const none = new char[0];  // the address sanitizer guards blocks
  char* const three = new char[3]{'x', 'y', 'z'};
  EXPECT_EQ(none, strcat_zot(none, 0, "x"));
  EXPECT_EQ(none, strncat_zot(none, 0, "x", 1));
  strncpy_zot(text, 8, three, 3);
  EXPECT_STREQ("xyz", text);
  delete[] none;
  delete[] three;
  for (const char* const refused : {strcat_zot(nullptr, 8, "x"), strcat_zot(text, 8, nullptr),
                                    strncat_zot(nullptr, 0, "x", 1), strncat_zot(text, 8, nullptr, 0)}) {
    EXPECT_EQ(nullptr, refused);
  }
  EXPECT_EQ(0u, strcpy_zot(nullptr, 8, "x") + strcpy_zot(text, 8, nullptr));
  EXPECT_EQ(0u, strncpy_zot(nullptr, 8, "x", 1) + strncpy_zot(text, 0, nullptr, 1));
}

TEST(BoundedFormat, ReturnsTheWholeLengthAndTerminates) {
  EXPECT_EQ("123\0########"s, after("", [](char* dst) { EXPECT_EQ(5, sprintf_zot(dst, 4, "%d", 12345)); }));
  EXPECT_EQ("-\0##########"s, after("-", [](char* dst) { EXPECT_EQ(0, sprintf_zot(dst, 0, "%d", 9)); }));
  EXPECT_EQ(3, sprintf_zot(nullptr, 5, "%d", 678));
}

TEST(ChangeCase, TouchesAsciiLettersOnly) {
  char text[] = "a-Z\xE4[{`@9z";
  EXPECT_EQ(text, strupr(text));
  EXPECT_STREQ("A-Z\xE4[{`@9Z", text);
  EXPECT_EQ(text, strlwr(text));
  EXPECT_STREQ("a-z\xE4[{`@9z", text);
}

}  // namespace
