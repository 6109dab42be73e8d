#include "QosSnmp/core/ServicePolicyKey.h"

#include <functional>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

#include <gtest/gtest.h>

#include "InputModelTestSupport.h"
#include "QosSnmp/core/Config.h"
#include "QosSnmp/core/ServicePolicyConfig.h"
#include "kel/Make.h"

namespace Qos {
namespace {

using QosInputTest::printed;
using QosInputTest::Texts;

TEST(ServicePolicyKeyTest, DefaultIsControlPlaneWithoutDirectionOrName) {
  const ServicePolicyKey key;
  EXPECT_EQ(key.type(), mapControlPlane_);
  EXPECT_EQ(key.direction(), directionInvalid_);
  EXPECT_TRUE(key.pmapName().empty());
}

TEST(ServicePolicyKeyTest, FieldsReadBackAsGiven) {
  const ServicePolicyKey key(mapQos_, directionOutput_, "policy-out");
  EXPECT_EQ(key.type(), mapQos_);
  EXPECT_EQ(key.direction(), directionOutput_);
  EXPECT_EQ(key.pmapName(), Kel::String("policy-out"));
}

TEST(ServicePolicyKeyTest, EqualExactlyWhenEveryFieldIsEqual) {
  const ServicePolicyKey key(mapQos_, directionInput_, "policy-in");
  EXPECT_EQ(key, ServicePolicyKey(mapQos_, directionInput_, std::string("policy-in")));
  EXPECT_NE(key, ServicePolicyKey(mapControlPlane_, directionInput_, "policy-in"));
  EXPECT_NE(key, ServicePolicyKey(mapQos_, directionOutput_, "policy-in"));
  EXPECT_NE(key, ServicePolicyKey(mapQos_, directionInput_, "policy-in2"));
}

TEST(ServicePolicyKeyTest, OrdersByTypeThenDirectionThenName) {
  EXPECT_LT(ServicePolicyKey(mapControlPlane_, directionOutput_, "z"),
            ServicePolicyKey(mapQos_, directionInput_, "a"));
  EXPECT_LT(ServicePolicyKey(mapQos_, directionInput_, "z"),
            ServicePolicyKey(mapQos_, directionOutput_, "a"));
  EXPECT_LT(ServicePolicyKey(mapQos_, directionInput_, "a"), ServicePolicyKey(mapQos_, directionInput_, "b"));
  EXPECT_FALSE(ServicePolicyKey(mapQos_, directionInput_, "a") <
               ServicePolicyKey(mapQos_, directionInput_, "a"));
}

TEST(ServicePolicyKeyTest, CollectionKeyedByItIteratesInFieldOrder) {
  const auto config = Kel::make<Config>();
  for (const ServicePolicyKey& key :
       {ServicePolicyKey(mapQos_, directionOutput_, "a"), ServicePolicyKey(mapQos_, directionInput_, "b"),
        ServicePolicyKey(mapPbr_, directionInput_, "a"), ServicePolicyKey(mapQos_, directionInput_, "a"),
        ServicePolicyKey(mapControlPlane_, directionInput_, "copp-system-policy")}) {
    config->servicePolicyConfigIs(key, Kel::make<ServicePolicyConfig>(key));
  }
  Texts order;
  for (const auto& [key, servicePolicy] : config->servicePolicyConfig()) {
    order.push_back(printed(key));
  }
  EXPECT_EQ(order, (Texts{"mapControlPlane/directionInput/copp-system-policy", "mapQos/directionInput/a",
                          "mapQos/directionInput/b", "mapQos/directionOutput/a", "mapPbr/directionInput/a"}));
}

TEST(ServicePolicyKeyTest, EqualKeysHashEqual) {
  const ServicePolicyKey key(mapQos_, directionInput_, "policy-in");
  EXPECT_EQ(key.hash(), ServicePolicyKey(mapQos_, directionInput_, std::string("policy-in")).hash());
  EXPECT_EQ(std::hash<ServicePolicyKey>{}(key), key.hash());
}

TEST(ServicePolicyKeyTest, KeysThatDifferInOneFieldHashApart) {
  const std::vector<ServicePolicyKey> keys{
      {mapQos_, directionInput_, "p"},          {mapQos_, directionOutput_, "p"},
      {mapControlPlane_, directionInput_, "p"}, {mapQos_, directionInput_, "q"},
      {mapQos_, directionInvalid_, "p"},        {mapPbr_, directionInput_, "p"},
      {mapQos_, directionInput_, ""},
  };
  std::set<Kel::U32> hashes;
  for (const ServicePolicyKey& key : keys) {
    hashes.insert(key.hash());
  }
  EXPECT_EQ(hashes.size(), keys.size());
  // Type and direction swapped must not collide either.
  EXPECT_NE(ServicePolicyKey(mapQos_, directionOutput_, "p").hash(),
            ServicePolicyKey(static_cast<MapType>(2), directionInput_, "p").hash());
}

TEST(ServicePolicyKeyTest, UsableInHashedContainers) {
  const std::unordered_set<ServicePolicyKey> keys{
      {mapQos_, directionInput_, "a"}, {mapQos_, directionInput_, "a"}, {mapQos_, directionOutput_, "a"}};
  EXPECT_EQ(keys.size(), 2U);
  EXPECT_EQ(keys.count(ServicePolicyKey(mapQos_, directionOutput_, "a")), 1U);
}

TEST(ServicePolicyKeyTest, PrintsTypeDirectionAndNameSeparatedBySlashes) {
  EXPECT_EQ(printed(ServicePolicyKey(mapQos_, directionInput_, "policy-in")),
            "mapQos/directionInput/policy-in");
  EXPECT_EQ(printed(ServicePolicyKey(mapControlPlane_, directionOutput_, "copp-system-policy")),
            "mapControlPlane/directionOutput/copp-system-policy");
  EXPECT_EQ(printed(ServicePolicyKey()), "mapControlPlane/directionInvalid/");
  EXPECT_EQ(printed(ServicePolicyKey(static_cast<MapType>(7), static_cast<PolicyMapDirection>(9), "x")),
            "7/9/x");
}

}  // namespace
}  // namespace Qos
