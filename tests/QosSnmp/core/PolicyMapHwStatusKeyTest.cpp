#include "QosSnmp/core/PolicyMapHwStatusKey.h"

#include <functional>
#include <set>
#include <unordered_set>
#include <vector>

#include <gtest/gtest.h>

#include "InputModelTestSupport.h"
#include "QosSnmp/core/PolicyMapHwStatus.h"
#include "QosSnmp/core/PolicyMapTypeHwStatus.h"
#include "QosSnmp/core/QosEnums.h"
#include "kel/Make.h"

namespace Qos {
namespace {

using QosInputTest::printed;
using QosInputTest::Texts;

TEST(PolicyMapHwStatusKeyTest, DefaultHasNoDirectionAndNoName) {
  const PolicyMapHwStatusKey key;
  EXPECT_EQ(key.direction(), 0U);
  EXPECT_TRUE(key.pmapName().empty());
}

TEST(PolicyMapHwStatusKeyTest, FieldsReadBackAsGiven) {
  const PolicyMapHwStatusKey key(directionOutput_, "policy-out");
  EXPECT_EQ(key.direction(), 2U);
  EXPECT_EQ(key.pmapName(), Kel::String("policy-out"));
}

TEST(PolicyMapHwStatusKeyTest, EqualExactlyWhenBothFieldsAreEqual) {
  EXPECT_EQ(PolicyMapHwStatusKey(1, "p"), PolicyMapHwStatusKey(directionInput_, "p"));
  EXPECT_NE(PolicyMapHwStatusKey(1, "p"), PolicyMapHwStatusKey(2, "p"));
  EXPECT_NE(PolicyMapHwStatusKey(1, "p"), PolicyMapHwStatusKey(1, "q"));
}

TEST(PolicyMapHwStatusKeyTest, OrdersByDirectionThenName) {
  EXPECT_LT(PolicyMapHwStatusKey(1, "z"), PolicyMapHwStatusKey(2, "a"));
  EXPECT_LT(PolicyMapHwStatusKey(2, "a"), PolicyMapHwStatusKey(2, "b"));
  EXPECT_LT(PolicyMapHwStatusKey(9, "a"), PolicyMapHwStatusKey(10, "a"));
  EXPECT_FALSE(PolicyMapHwStatusKey(1, "a") < PolicyMapHwStatusKey(1, "a"));
}

TEST(PolicyMapHwStatusKeyTest, CollectionKeyedByItIteratesInFieldOrder) {
  const auto hwStatus = Kel::make<PolicyMapTypeHwStatus>(mapQos_);
  for (const PolicyMapHwStatusKey& key :
       {PolicyMapHwStatusKey(2, "a"), PolicyMapHwStatusKey(1, "policy-z"),
        PolicyMapHwStatusKey(1, "policy-a"), PolicyMapHwStatusKey(0, "b")}) {
    hwStatus->pmapIs(key, Kel::make<PolicyMapHwStatus>(key));
  }
  Texts order;
  for (const auto& [key, pmap] : hwStatus->pmap()) {
    order.push_back(printed(key));
  }
  EXPECT_EQ(order, (Texts{"0/b", "1/policy-a", "1/policy-z", "2/a"}));
}

TEST(PolicyMapHwStatusKeyTest, EqualKeysHashEqual) {
  const PolicyMapHwStatusKey key(1, "policy-in");
  EXPECT_EQ(key.hash(), PolicyMapHwStatusKey(1, Kel::String("policy-in")).hash());
  EXPECT_EQ(std::hash<PolicyMapHwStatusKey>{}(key), key.hash());
}

TEST(PolicyMapHwStatusKeyTest, KeysThatDifferInOneFieldHashApart) {
  const std::vector<PolicyMapHwStatusKey> keys{{1, "p"}, {2, "p"}, {1, "q"}, {0, "p"}, {1, ""}, {0, ""}};
  std::set<Kel::U32> hashes;
  for (const PolicyMapHwStatusKey& key : keys) {
    hashes.insert(key.hash());
  }
  EXPECT_EQ(hashes.size(), keys.size());
}

TEST(PolicyMapHwStatusKeyTest, UsableInHashedContainers) {
  const std::unordered_set<PolicyMapHwStatusKey> keys{{1, "a"}, {1, "a"}, {2, "a"}};
  EXPECT_EQ(keys.size(), 2U);
  EXPECT_EQ(keys.count(PolicyMapHwStatusKey(2, "a")), 1U);
}

TEST(PolicyMapHwStatusKeyTest, PrintsTheDirectionNumberAndTheNameSeparatedByASlash) {
  EXPECT_EQ(printed(PolicyMapHwStatusKey(directionInput_, "policy-in")), "1/policy-in");
  EXPECT_EQ(printed(PolicyMapHwStatusKey(2, "copp-system-policy")), "2/copp-system-policy");
  EXPECT_EQ(printed(PolicyMapHwStatusKey()), "0/");
}

}  // namespace
}  // namespace Qos
