#include "QosSnmp/core/UniqueId.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

#include "snmp/HashShortenedIdentifier.h"

namespace QosSnmp {
namespace {

TEST(UniqueIdTest, ShortNamesAreUnchanged) {
  EXPECT_EQ(uniqueId("copp-system-policy"), Snmp::String("copp-system-policy"));
  EXPECT_EQ(uniqueId(""), Snmp::String());
  const Kel::String thirty("abcdefghijklmnopqrstuvwxyz0123");
  ASSERT_EQ(thirty.size(), 30U);
  EXPECT_EQ(uniqueId(thirty), Snmp::String(thirty));
}

TEST(UniqueIdTest, LongNamesAreShortenedToThirtyCharacters) {
  const Kel::String longName("copp-system-policy-with-a-very-long-name");
  const Snmp::String id = uniqueId(longName);
  EXPECT_EQ(id.size(), kUniqueIdMaxLength);
  EXPECT_EQ(id, Snmp::String("copp-system-policy-wi-0c422663"));
  EXPECT_EQ(uniqueId("abcdefghijklmnopqrstuvwxyz01234").size(), 30U);
}

TEST(UniqueIdTest, IsTheHostsShortenedIdentifierOfThirtyCharacters) {
  for (const char* name :
       {"", "cm", "policy-map-qos-ingress-ethernet-1-1-a", "x-------------------------------y"}) {
    EXPECT_EQ(uniqueId(name), Snmp::HashShortenedIdentifier().generateHashShortenedIdentifier(name, 30))
        << name;
  }
}

TEST(UniqueIdTest, SameNameAlwaysGivesTheSameId) {
  const std::string name = "policy-map-qos-ingress-ethernet-1-1-with-a-long-class-name";
  // Two separately built strings with the same characters.
  EXPECT_EQ(uniqueId(Kel::String(name)), uniqueId(Kel::String(name)));
  EXPECT_EQ(uniqueId(Kel::String(name)).hash(), uniqueId(Kel::String(name)).hash());
}

TEST(UniqueIdTest, LongNamesWithACommonPrefixStayDistinct) {
  std::set<Snmp::String> ids;
  for (int i = 0; i < 100; ++i) {
    ids.insert(uniqueId(Kel::String("service-policy-input-ethernet-interface-" + std::to_string(i))));
  }
  EXPECT_EQ(ids.size(), 100U);
}

}  // namespace
}  // namespace QosSnmp
