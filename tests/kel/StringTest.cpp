#include "kel/String.h"

#include <sstream>
#include <unordered_set>

#include <gtest/gtest.h>

namespace {

TEST(StringTest, CopiesShareCharactersAndCompareEqual) {
  const Kel::String a("copp-system-policy");
  const Kel::String b = a;  // NOLINT(performance-unnecessary-copy-initialization)
  EXPECT_EQ(a, b);
  EXPECT_EQ(a.data(), b.data());
  EXPECT_EQ(a.view(), "copp-system-policy");
  EXPECT_EQ(a.size(), 18U);
}

TEST(StringTest, EqualCharactersAreEqualWithoutSharing) {
  const Kel::String a("Ethernet1");
  const Kel::String b(std::string("Ethernet1"));
  EXPECT_EQ(a, b);
  EXPECT_EQ(a.hash(), b.hash());
  EXPECT_NE(a, Kel::String("Ethernet2"));
}

TEST(StringTest, EmptyStringHasNoCharacters) {
  const Kel::String empty;
  EXPECT_TRUE(empty.empty());
  EXPECT_EQ(empty, Kel::String(""));
  EXPECT_STREQ(empty.data(), "");
  EXPECT_EQ(empty.hash(), Kel::String("").hash());
}

TEST(StringTest, OrdersByteWise) {
  EXPECT_LT(Kel::String("a"), Kel::String("b"));
  EXPECT_LT(Kel::String("a"), Kel::String("aa"));
  EXPECT_LT(Kel::String(""), Kel::String("a"));
}

TEST(StringTest, HashIsFnv1aOfTheCharacters) {
  // FNV-1a 32-bit of "a" is 0xe40c292c.
  EXPECT_EQ(Kel::String("a").hash(), 0xe40c292cU);
  std::unordered_set<Kel::String> set{Kel::String("x"), Kel::String("x"), Kel::String("y")};
  EXPECT_EQ(set.size(), 2U);
}

TEST(StringTest, PrintsItsCharacters) {
  std::ostringstream out;
  out << Kel::String("class-default");
  EXPECT_EQ(out.str(), "class-default");
}

TEST(StringTest, KeepsEmbeddedNulCharacters) {
  const Kel::String s("a\0b", 3);
  EXPECT_EQ(s.size(), 3U);
  EXPECT_NE(s, Kel::String("a"));
}

TEST(StringTest, AssignmentReleasesTheOldCharacters) {
  Kel::String a("first");
  const Kel::String b("second");
  a = b;
  EXPECT_EQ(a, b);
  a = Kel::String();
  EXPECT_TRUE(a.empty());
  Kel::String c("moved");
  a = std::move(c);
  EXPECT_EQ(a.view(), "moved");
}

}  // namespace
