#include "snmp/HashShortenedIdentifier.h"

#include <set>
#include <sstream>
#include <string>
#include <unordered_set>

#include <gtest/gtest.h>

namespace Snmp {
namespace {

String shorten(const Kel::String& name, std::size_t maxLength) {
  return HashShortenedIdentifier().generateHashShortenedIdentifier(name, maxLength);
}

TEST(HashShortenedIdentifierTest, ShortNamesAreUnchanged) {
  EXPECT_EQ(shorten("copp-system-policy", 30), String("copp-system-policy"));
  EXPECT_EQ(shorten("", 30), String());
  EXPECT_EQ(shorten("", 0), String());
  EXPECT_EQ(shorten("x", 1), String("x"));
}

TEST(HashShortenedIdentifierTest, NameOfExactlyMaxLengthIsUnchanged) {
  const Kel::String name("abcdefghijklmnopqrstuvwxyz0123");
  ASSERT_EQ(name.size(), 30U);
  EXPECT_EQ(shorten(name, 30), String(name));
}

TEST(HashShortenedIdentifierTest, LongNameBecomesPrefixSeparatorAndHash) {
  // 0c422663 is the 32-bit FNV-1a hash of the whole name.
  EXPECT_EQ(shorten("copp-system-policy-with-a-very-long-name", 30),
            String("copp-system-policy-wi-0c422663"));
}

TEST(HashShortenedIdentifierTest, ShortenedNameHasExactlyMaxLength) {
  const Kel::String name("policy-map-qos-ingress-ethernet-1-1-with-a-long-class-name");
  for (std::size_t maxLength = 0; maxLength < name.size(); ++maxLength) {
    EXPECT_EQ(shorten(name, maxLength).size(), maxLength) << "maxLength " << maxLength;
  }
  EXPECT_EQ(shorten(name, 31).size(), 31U);
  EXPECT_EQ(shorten("abcdefghijklmnopqrstuvwxyz01234", 30).size(), 30U);  // one over the limit
}

TEST(HashShortenedIdentifierTest, LongNamesStayDistinct) {
  const String a = shorten("policy-map-qos-ingress-ethernet-1-1-a", 30);
  const String b = shorten("policy-map-qos-ingress-ethernet-1-1-b", 30);
  EXPECT_EQ(a, String("policy-map-qos-ingres-a236b978"));
  EXPECT_EQ(b, String("policy-map-qos-ingres-a536be31"));
  EXPECT_NE(a, b);

  std::set<String> shortened;
  for (int i = 0; i < 1000; ++i) {
    shortened.insert(
        shorten(Kel::String("service-policy-input-ethernet-interface-" + std::to_string(i)), 30));
  }
  EXPECT_EQ(shortened.size(), 1000U);
}

TEST(HashShortenedIdentifierTest, IsDeterministic) {
  const Kel::String name("a-name-that-is-much-longer-than-thirty-characters");
  EXPECT_EQ(shorten(name, 30), shorten(name, 30));
  EXPECT_EQ(shorten(name, 30), shorten(Kel::String(name.stringValue()), 30));
  EXPECT_EQ(HashShortenedIdentifier().generateHashShortenedIdentifier(name, 30),
            HashShortenedIdentifier().generateHashShortenedIdentifier(name, 30));
}

TEST(HashShortenedIdentifierTest, SmallestLimitWithSeparatorKeepsOneCharacter) {
  EXPECT_EQ(shorten("abcdefghijk", 10), String("a-fa682adb"));
}

TEST(HashShortenedIdentifierTest, TinyLimitsDropSeparatorThenName) {
  EXPECT_EQ(shorten("abcdefghijk", 9), String("afa682adb"));
  EXPECT_EQ(shorten("abcdefghijk", 8), String("fa682adb"));
  EXPECT_EQ(shorten("abcdefghijk", 3), String("fa6"));
  EXPECT_EQ(shorten("abcdefghijk", 1), String("f"));
  EXPECT_EQ(shorten("abcdefghijk", 0), String());
}

// Snmp::String, the type the identifiers are returned as.

TEST(HashShortenedIdentifierTest, ResultConvertsFromEveryStringKind) {
  const Kel::String kel("row");
  EXPECT_EQ(String(kel), String("row"));
  EXPECT_EQ(String(std::string_view("row")), String("row"));
  EXPECT_EQ(String(std::string("row")), String("row"));
  EXPECT_EQ(String(kel).kelString(), kel);
  EXPECT_EQ(String("row").view(), "row");
  EXPECT_EQ(String("row").stringValue(), "row");
  EXPECT_EQ(String("row").size(), 3U);
  EXPECT_FALSE(String("row").empty());
  EXPECT_TRUE(String().empty());
  EXPECT_EQ(String().size(), 0U);
  EXPECT_EQ(String(), String(""));
}

TEST(HashShortenedIdentifierTest, ResultOrdersHashesAndPrintsLikeItsCharacters) {
  EXPECT_LT(String("abc"), String("abd"));
  EXPECT_LT(String("Ethernet10"), String("Ethernet2"));  // byte order, not interface order
  EXPECT_LT(String(), String("a"));
  EXPECT_EQ(String("abc") <=> String("abc"), std::strong_ordering::equal);
  EXPECT_EQ(String("abc").hash(), Kel::String("abc").hash());
  EXPECT_EQ(std::hash<String>{}(String("abc")), String("abc").hash());

  std::unordered_set<String> names{"a", "b", "a"};
  EXPECT_EQ(names.size(), 2U);

  std::ostringstream out;
  out << String("row-name") << '|' << String() << '|';
  EXPECT_EQ(out.str(), "row-name||");
}

}  // namespace
}  // namespace Snmp
