#include "pellix/IntfId.h"

#include <algorithm>
#include <compare>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <unordered_map>
#include <vector>

#include <gtest/gtest.h>

namespace Pellix {
namespace {

IntfId intf(const char* name) { return IntfId(Kel::String(name)); }

std::vector<std::string> sortedNames(const std::vector<std::string>& names) {
  std::vector<IntfId> ids;
  ids.reserve(names.size());
  for (const std::string& name : names) {
    ids.emplace_back(Kel::String(name));
  }
  std::sort(ids.begin(), ids.end());
  std::vector<std::string> sorted;
  sorted.reserve(ids.size());
  for (const IntfId& id : ids) {
    sorted.push_back(id.stringValue());
  }
  return sorted;
}

TEST(IntfIdTest, DefaultIsEmptyId) {
  const IntfId id;
  EXPECT_TRUE(id.empty());
  EXPECT_TRUE(id.name().empty());
  EXPECT_EQ(id.stringValue(), "");
  EXPECT_EQ(id, IntfId(Kel::String()));
  EXPECT_EQ(id, intf(""));
  EXPECT_EQ(id.hash(), Kel::String().hash());
}

TEST(IntfIdTest, HoldsTheNameItWasBuiltFrom) {
  const IntfId id = intf("Ethernet1/1");
  EXPECT_FALSE(id.empty());
  EXPECT_EQ(id.name(), Kel::String("Ethernet1/1"));
  EXPECT_EQ(id.stringValue(), "Ethernet1/1");
}

TEST(IntfIdTest, HandleInitializedReplacesTheName) {
  IntfId id;
  id.handleInitialized(Kel::String("Ethernet3"));
  EXPECT_EQ(id, intf("Ethernet3"));
  id.handleInitialized(Kel::String("Port-Channel7"));
  EXPECT_EQ(id, intf("Port-Channel7"));
  id.handleInitialized(Kel::String());
  EXPECT_TRUE(id.empty());
}

TEST(IntfIdTest, EqualityIsEqualityOfNames) {
  EXPECT_EQ(intf("Ethernet1"), intf("Ethernet1"));
  EXPECT_NE(intf("Ethernet1"), intf("Ethernet2"));
  EXPECT_NE(intf("Ethernet1"), intf("ethernet1"));
  EXPECT_NE(intf("Ethernet1"), intf("Ethernet01"));
  EXPECT_NE(intf("Ethernet1"), IntfId());
}

TEST(IntfIdTest, HashIsTheNamesHash) {
  EXPECT_EQ(intf("Ethernet1/1").hash(), Kel::String("Ethernet1/1").hash());
  EXPECT_EQ(std::hash<IntfId>{}(intf("Ethernet1/1")), intf("Ethernet1/1").hash());
  EXPECT_EQ(intf("Ethernet1/1").hash(), intf("Ethernet1/1").hash());
}

TEST(IntfIdTest, NamesSortNaturally) {
  EXPECT_LT(intf("Ethernet2"), intf("Ethernet10"));
  EXPECT_LT(intf("Ethernet1/2"), intf("Ethernet1/10"));
  EXPECT_LT(intf("Ethernet1/10"), intf("Ethernet2/1"));
  EXPECT_LT(intf("Ethernet9/48"), intf("Ethernet10/1"));
  EXPECT_LT(intf("Ethernet1/1.2"), intf("Ethernet1/1.10"));
  EXPECT_LT(intf("Port-Channel9"), intf("Port-Channel100"));
  EXPECT_GT(intf("Ethernet10"), intf("Ethernet2"));
  EXPECT_EQ(
      sortedNames({"Ethernet10", "Ethernet1/10", "Ethernet2", "Ethernet1/2", "Ethernet1", "Ethernet1/1"}),
      (std::vector<std::string>{"Ethernet1", "Ethernet1/1", "Ethernet1/2", "Ethernet1/10", "Ethernet2",
                                "Ethernet10"}));
}

TEST(IntfIdTest, TextBetweenNumbersSortsByteWise) {
  EXPECT_LT(intf("Ethernet5"), intf("Port-Channel1"));
  EXPECT_LT(intf("Ethernet1"), intf("ethernet1"));
  EXPECT_LT(intf("Ethernet1/1"), intf("Ethernet1a"));  // '/' sorts before 'a'
}

TEST(IntfIdTest, NumberSortsWhereADigitWould) {
  // '.' and '/' are below the digits, letters above, whatever the number.
  EXPECT_LT(intf("Ethernet/"), intf("Ethernet0"));
  EXPECT_LT(intf("Ethernet."), intf("Ethernet99999"));
  EXPECT_GT(intf("EthernetA"), intf("Ethernet99999"));
  EXPECT_GT(intf("Ethernetx"), intf("Ethernet0"));
}

TEST(IntfIdTest, PrefixSortsFirst) {
  EXPECT_LT(IntfId(), intf("Ethernet1"));
  EXPECT_LT(intf("Ethernet"), intf("Ethernet1"));
  EXPECT_LT(intf("Ethernet1"), intf("Ethernet1/1"));
  EXPECT_LT(intf("Ethernet1/1"), intf("Ethernet1/1.100"));
}

TEST(IntfIdTest, LeadingZerosTieBreakByteWise) {
  // Same numbers, different spelling: distinct ids, in a fixed order.
  EXPECT_NE(intf("Ethernet01"), intf("Ethernet1"));
  EXPECT_LT(intf("Ethernet01"), intf("Ethernet1"));
  EXPECT_GT(intf("Ethernet1"), intf("Ethernet01"));
  EXPECT_LT(intf("Ethernet01"), intf("Ethernet2"));
  EXPECT_LT(intf("Ethernet1/01"), intf("Ethernet1/1"));
  EXPECT_GT(intf("Ethernet00"), intf("Ethernet0"));  // a byte-wise prefix sorts first
}

TEST(IntfIdTest, HugeNumbersCompareByValue) {
  EXPECT_LT(intf("Ethernet99999999999999999999998"), intf("Ethernet99999999999999999999999"));
  EXPECT_LT(intf("Ethernet99999999999999999999999"), intf("Ethernet100000000000000000000000"));
  EXPECT_LT(intf("Ethernet0000000000000000000000009"), intf("Ethernet10"));
}

TEST(IntfIdTest, OrderIsConsistentWithEquality) {
  const std::vector<const char*> names = {"",          "Ethernet",      "Ethernet0",       "Ethernet00",
                                          "Ethernet1", "Ethernet01",    "Ethernet1/1",     "Ethernet1/01",
                                          "Ethernet2", "Ethernet10",    "Ethernet1/1.100", "Ethernet1a",
                                          "ethernet1", "Port-Channel1", "Port-Channel1.5", "Ethernet/"};
  for (const char* a : names) {
    for (const char* b : names) {
      const std::strong_ordering ab = intf(a) <=> intf(b);
      const std::strong_ordering ba = intf(b) <=> intf(a);
      EXPECT_EQ(std::is_eq(ab), intf(a) == intf(b)) << a << " vs " << b;
      EXPECT_EQ(std::is_lt(ab), std::is_gt(ba)) << a << " vs " << b;
      for (const char* c : names) {
        if (intf(a) < intf(b) && intf(b) < intf(c)) {
          EXPECT_LT(intf(a), intf(c)) << a << " < " << b << " < " << c;
        }
      }
    }
  }
}

TEST(IntfIdTest, CompareNamesMatchesIdOrder) {
  EXPECT_EQ(IntfId::compareNames("Ethernet2", "Ethernet10"), std::strong_ordering::less);
  EXPECT_EQ(IntfId::compareNames("Ethernet10", "Ethernet10"), std::strong_ordering::equal);
  EXPECT_EQ(IntfId::compareNames("Ethernet1/10", "Ethernet1/2"), std::strong_ordering::greater);
}

TEST(IntfIdTest, WorksAsMapKey) {
  std::map<IntfId, int> ordered{{intf("Ethernet10"), 10}, {intf("Ethernet2"), 2}, {intf("Ethernet1"), 1}};
  std::vector<int> values;
  values.reserve(ordered.size());
  for (const auto& [id, value] : ordered) {
    values.push_back(value);
  }
  EXPECT_EQ(values, (std::vector<int>{1, 2, 10}));

  std::unordered_map<IntfId, int> hashed{{intf("Ethernet1"), 1}, {intf("Ethernet01"), 100}};
  EXPECT_EQ(hashed.size(), 2U);
  EXPECT_EQ(hashed.at(intf("Ethernet1")), 1);
  EXPECT_EQ(hashed.at(intf("Ethernet01")), 100);
  EXPECT_EQ(hashed.count(IntfId()), 0U);
}

TEST(IntfIdTest, PrintsTheName) {
  std::ostringstream out;
  out << intf("Ethernet1/1.100") << '|' << IntfId() << '|';
  EXPECT_EQ(out.str(), "Ethernet1/1.100||");
}

TEST(IntfIdTest, IsAsSmallAsItsName) { EXPECT_EQ(sizeof(IntfId), sizeof(Kel::String)); }

}  // namespace
}  // namespace Pellix
