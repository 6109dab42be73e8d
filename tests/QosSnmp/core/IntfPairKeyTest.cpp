#include "QosSnmp/core/IntfPairKey.h"

#include <functional>
#include <set>
#include <unordered_set>
#include <vector>

#include <gtest/gtest.h>

#include "InputModelTestSupport.h"
#include "QosSnmp/core/ServicePolicyKey.h"
#include "QosSnmp/core/ServicePolicyStatus.h"
#include "kel/Make.h"

namespace Qos {
namespace {

using QosInputTest::printed;
using QosInputTest::Texts;

Pellix::IntfId intf(const char* name) { return Pellix::IntfId(Kel::String(name)); }

IntfPairKey pair(const char* intfName, const char* subIntfName = "") {
  return {intf(intfName), intf(subIntfName)};
}

TEST(IntfPairKeyTest, DefaultHoldsTwoEmptyIds) {
  const IntfPairKey key;
  EXPECT_TRUE(key.intfId().empty());
  EXPECT_TRUE(key.subIntfId().empty());
}

TEST(IntfPairKeyTest, FieldsReadBackAsGiven) {
  const IntfPairKey key = pair("Ethernet1/1", "Ethernet1/1.100");
  EXPECT_EQ(key.intfId(), intf("Ethernet1/1"));
  EXPECT_EQ(key.subIntfId(), intf("Ethernet1/1.100"));
}

TEST(IntfPairKeyTest, EqualExactlyWhenBothIdsAreEqual) {
  EXPECT_EQ(pair("Ethernet1", "Ethernet1.5"), pair("Ethernet1", "Ethernet1.5"));
  EXPECT_EQ(pair("Ethernet1"), IntfPairKey(intf("Ethernet1"), Pellix::IntfId()));
  EXPECT_NE(pair("Ethernet1", "Ethernet1.5"), pair("Ethernet1", "Ethernet1.6"));
  EXPECT_NE(pair("Ethernet1", "Ethernet1.5"), pair("Ethernet2", "Ethernet1.5"));
  EXPECT_NE(pair("Ethernet1"), pair("Ethernet1", "Ethernet1.5"));
}

TEST(IntfPairKeyTest, OrdersByInterfaceThenSubInterfaceInNaturalOrder) {
  EXPECT_LT(pair("Ethernet2", "Ethernet2.9"), pair("Ethernet10"));
  EXPECT_LT(pair("Ethernet1"), pair("Ethernet1", "Ethernet1.1"));
  EXPECT_LT(pair("Ethernet1", "Ethernet1.2"), pair("Ethernet1", "Ethernet1.10"));
}

TEST(IntfPairKeyTest, CollectionKeyedByItIteratesInFieldOrder) {
  const ServicePolicyKey policy(mapQos_, directionInput_, "policy-in");
  const auto status = Kel::make<ServicePolicyStatus>(policy);
  for (const IntfPairKey& key : {pair("Ethernet10"), pair("Ethernet2", "Ethernet2.10"), pair("Ethernet2"),
                                 pair("Ethernet2", "Ethernet2.9"), pair("Port-Channel1")}) {
    status->intfIdsIs(key, true);
  }
  Texts order;
  for (const auto& [key, applied] : status->intfIds()) {
    order.push_back(printed(key));
  }
  EXPECT_EQ(order, (Texts{"Ethernet2", "Ethernet2,Ethernet2.9", "Ethernet2,Ethernet2.10", "Ethernet10",
                          "Port-Channel1"}));
}

TEST(IntfPairKeyTest, EqualKeysHashEqual) {
  const IntfPairKey key = pair("Ethernet1/1", "Ethernet1/1.100");
  EXPECT_EQ(key.hash(), pair("Ethernet1/1", "Ethernet1/1.100").hash());
  EXPECT_EQ(std::hash<IntfPairKey>{}(key), key.hash());
}

TEST(IntfPairKeyTest, KeysThatDifferInOneFieldHashApart) {
  const std::vector<IntfPairKey> keys{pair("Ethernet1"),     pair("Ethernet1", "Ethernet1.1"),
                                      pair("Ethernet2"),     pair("Ethernet1.1", "Ethernet1"),
                                      pair("", "Ethernet1"), pair("")};
  std::set<Kel::U32> hashes;
  for (const IntfPairKey& key : keys) {
    hashes.insert(key.hash());
  }
  EXPECT_EQ(hashes.size(), keys.size());
}

TEST(IntfPairKeyTest, UsableInHashedContainers) {
  const std::unordered_set<IntfPairKey> keys{pair("Ethernet1"), pair("Ethernet1"),
                                             pair("Ethernet1", "Ethernet1.1")};
  EXPECT_EQ(keys.size(), 2U);
  EXPECT_EQ(keys.count(pair("Ethernet1", "Ethernet1.1")), 1U);
}

TEST(IntfPairKeyTest, PrintsTheInterfaceAloneWithoutSubInterface) {
  EXPECT_EQ(printed(pair("Ethernet1/1")), "Ethernet1/1");
  EXPECT_EQ(printed(IntfPairKey()), "");
}

TEST(IntfPairKeyTest, PrintsBothIdsSeparatedByACommaWithSubInterface) {
  EXPECT_EQ(printed(pair("Ethernet1/1", "Ethernet1/1.100")), "Ethernet1/1,Ethernet1/1.100");
  EXPECT_EQ(printed(pair("", "Ethernet1/1.100")), ",Ethernet1/1.100");
}

}  // namespace
}  // namespace Qos
