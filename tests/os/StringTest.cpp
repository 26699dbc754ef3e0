#include "os/zot_string.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

// A buffer that shows which bytes a call wrote: '#' is never written by one.
struct Marked {
  explicit Marked(const char* text) { std::snprintf(bytes, sizeof bytes, "%s", text); }
  std::string upTo(size_t count) const { return {bytes, count}; }
  char bytes[32] = {};
};

TEST(BoundedCat, CutsToSizeAndShortensAFullDestination) {
  const struct {
    const char* dst;
    unsigned int size;
    const char* src;
    const char* expected;
  } cases[] = {
      {"abc", 20, "defgh", "abcdefgh"},
      {"abc", 9, "defgh", "abcdefgh"},
      {"abc", 8, "defgh", "abcdefg"},
      {"abc", 4, "defgh", "abc"},
      {"abc", 3, "defgh", "ab"},
      {"abc", 2, "defgh", "abc"},
      {"abc", 0, "defgh", "abc"},
      {"", 1, "x", ""},
      {"0123456789", 10, "x", "012345678"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.expected);
    Marked buffer(c.dst);
    EXPECT_EQ(buffer.bytes, strcat_zot(buffer.bytes, c.size, c.src));
    EXPECT_STREQ(c.expected, buffer.bytes);
  }
}

TEST(BoundedCat, WithACountKeepsTheRoughEdges) {
  Marked noTerminator("ab\0######");
  std::fill(noTerminator.bytes + 3, noTerminator.bytes + 12, '#');
  strncat_zot(noTerminator.bytes, 12, "cdef", 2);
  EXPECT_EQ("abcd####", noTerminator.upTo(8)) << "two of four characters bring no terminator";

  Marked padded("ab");
  std::fill(padded.bytes + 3, padded.bytes + 16, '#');
  strncat_zot(padded.bytes, 6, "cd", 8);
  EXPECT_EQ(std::string("abcd\0\0\0\0\0\0##", 12), padded.upTo(12)) << "padding runs past size";

  Marked cut("abc");
  std::fill(cut.bytes + 4, cut.bytes + 12, '#');
  strncat_zot(cut.bytes, 8, "defgh", 2);
  EXPECT_EQ(std::string("abcde##\0##", 10), cut.upTo(10)) << "a cut forces the last byte only";

  Marked full("abcdefgh");
  strncat_zot(full.bytes, 8, "x", UINT32_MAX);
  EXPECT_STREQ("abcdefg", full.bytes);
  strncat_zot(full.bytes, 20, "x", 0);
  EXPECT_STREQ("abcdefg", full.bytes);
}

TEST(BoundedCat, WithoutASizeDoesNotEvenRead) {
  auto* nothing = new char[0];  // the address sanitizer guards it
  EXPECT_EQ(nothing, strcat_zot(nothing, 0, "x"));
  EXPECT_EQ(nothing, strncat_zot(nothing, 0, "x", 1));
  delete[] nothing;
}

TEST(BoundedCopy, NeverPassesSizeNorWrapsAHugeCount) {
  const struct {
    unsigned int size;
    const char* src;
    unsigned int n;
    const char* expected;
  } cases[] = {
      {7, "abcdef", UINT32_MAX, "abcdef"},
      {6, "abcdef", UINT32_MAX, "abcde"},
      {6, "abcdef", UINT32_MAX - 1, "abcde"},
      {100, "abcdef", 3, "abc"},
      {100, "abcdef", 0, ""},
      {1, "abcdef", 5, ""},
      {0, "abcdef", 5, "########"},
      {4, "abcdef", 3, "abc"},
      {3, "abcdef", 3, "ab"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.size << " " << c.n);
    Marked buffer("########");
    const auto address = static_cast<unsigned int>(reinterpret_cast<uintptr_t>(buffer.bytes));
    EXPECT_EQ(address, strncpy_zot(buffer.bytes, c.size, c.src, c.n));
    EXPECT_STREQ(c.expected, buffer.bytes);
    if (c.n == UINT32_MAX) {
      Marked whole("########");
      strcpy_zot(whole.bytes, c.size, c.src);
      EXPECT_EQ(buffer.upTo(8), whole.upTo(8));
    }
  }
}

TEST(BoundedCopy, ReadsNoFurtherThanItsCount) {
  const std::string value("abc", 3);
  auto* exact = new char[3]{'a', 'b', 'c'};  // the address sanitizer guards the end
  Marked buffer("########");
  strncpy_zot(buffer.bytes, 32, exact, 3);
  EXPECT_EQ(value, buffer.bytes);
  delete[] exact;
}

TEST(BoundedStrings, RefuseNull) {
  char text[8] = "abc";
  EXPECT_EQ(nullptr, strcat_zot(nullptr, 8, "x"));
  EXPECT_EQ(nullptr, strcat_zot(text, 8, nullptr));
  EXPECT_EQ(nullptr, strncat_zot(nullptr, 0, "x", 1));
  EXPECT_EQ(nullptr, strncat_zot(text, 8, nullptr, 0));
  EXPECT_EQ(0u, strcpy_zot(nullptr, 8, "x"));
  EXPECT_EQ(0u, strcpy_zot(text, 8, nullptr));
  EXPECT_EQ(0u, strncpy_zot(nullptr, 8, "x", 1));
  EXPECT_EQ(0u, strncpy_zot(text, 0, nullptr, 1));
  EXPECT_STREQ("abc", text);
}

TEST(BoundedFormat, ReturnsTheWholeLengthAndTerminates) {
  char text[8] = "#######";
  EXPECT_EQ(5, sprintf_zot(text, 4, "%d", 12345));
  EXPECT_STREQ("123", text);
  EXPECT_EQ(0, sprintf_zot(text, 0, "%d", 9));
  EXPECT_STREQ("123", text);
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
