#include "QosSnmp/core/Config.h"

#include <gtest/gtest.h>

#include "InputModelTestSupport.h"
#include "QosSnmp/core/ServicePolicyConfig.h"
#include "QosSnmp/core/ServicePolicyKey.h"
#include "kel/Make.h"
#include "kel/Notifiee.h"

namespace Qos {
namespace {

using QosInputTest::Recorder;
using QosInputTest::Texts;

class ConfigReactor
    : public Kel::Notifiee<ConfigReactor, Recorder, const Config, Config::ServicePolicyConfig> {
 public:
  using Notifiee::Notifiee;
  void on(Config::ServicePolicyConfig /*attr*/, const ServicePolicyKey& key) {
    owner().record("servicePolicyConfig", key);
  }
};

class ServicePolicyConfigReactor
    : public Kel::Notifiee<ServicePolicyConfigReactor, Recorder, const ServicePolicyConfig,
                           ServicePolicyConfig::IntfIds> {
 public:
  using Notifiee::Notifiee;
  void on(ServicePolicyConfig::IntfIds /*attr*/, const Pellix::IntfId& intf) {
    owner().record("intfIds", intf);
  }
};

Pellix::IntfId intf(const char* name) { return Pellix::IntfId(Kel::String(name)); }

class ConfigTest : public ::testing::Test {
 protected:
  const ServicePolicyKey key_{mapQos_, directionInput_, "policy-in"};
  Kel::Ptr<Config> config_ = Kel::make<Config>();
  Kel::Ptr<ServicePolicyConfig> servicePolicy_ = Kel::make<ServicePolicyConfig>(key_);
  Kel::Ptr<Recorder> recorder_ = Kel::make<Recorder>();
};

TEST_F(ConfigTest, ServicePolicyConfigIsKeyedByItsKeyAndNamedAfterIt) {
  EXPECT_EQ(servicePolicy_->key(), key_);
  EXPECT_EQ(servicePolicy_->name(), Kel::String("mapQos/directionInput/policy-in"));
}

TEST_F(ConfigTest, ServicePolicyAddAndDeleteAreNotifiedWithTheKey) {
  const auto reactor = Kel::makeReactor<ConfigReactor>(recorder_.get(), config_);
  config_->servicePolicyConfigIs(key_, servicePolicy_);
  EXPECT_EQ(config_->servicePolicyConfig(key_), servicePolicy_);
  config_->servicePolicyConfigDel(key_);
  EXPECT_FALSE(config_->servicePolicyConfig(key_));
  EXPECT_EQ(recorder_->log(), (Texts{"servicePolicyConfig mapQos/directionInput/policy-in",
                                     "servicePolicyConfig mapQos/directionInput/policy-in"}));
}

TEST_F(ConfigTest, MissingInterfaceReadsAsFalse) {
  EXPECT_FALSE(servicePolicy_->intfIds(intf("Ethernet1")));
  EXPECT_FALSE(servicePolicy_->intfIds().contains(intf("Ethernet1")));
}

TEST_F(ConfigTest, InterfaceValueChangesAreNotifiedAndUnchangedOnesAreNot) {
  const auto reactor = Kel::makeReactor<ServicePolicyConfigReactor>(recorder_.get(), servicePolicy_);
  servicePolicy_->intfIdsIs(intf("Ethernet1"), true);
  servicePolicy_->intfIdsIs(intf("Ethernet1"), true);
  EXPECT_TRUE(servicePolicy_->intfIds(intf("Ethernet1")));
  servicePolicy_->intfIdsIs(intf("Ethernet1"), false);
  EXPECT_FALSE(servicePolicy_->intfIds(intf("Ethernet1")));
  EXPECT_TRUE(servicePolicy_->intfIds().contains(intf("Ethernet1")));
  EXPECT_TRUE(servicePolicy_->intfIdsDel(intf("Ethernet1")));
  EXPECT_FALSE(servicePolicy_->intfIdsDel(intf("Ethernet1")));
  EXPECT_EQ(recorder_->log(), (Texts{"intfIds Ethernet1", "intfIds Ethernet1", "intfIds Ethernet1"}));
}

TEST_F(ConfigTest, InterfacesIterateInNaturalOrder) {
  for (const char* name : {"Ethernet10", "Ethernet2", "Ethernet1/10", "Ethernet1/2"}) {
    servicePolicy_->intfIdsIs(intf(name), true);
  }
  Texts order;
  servicePolicy_->intfIds().forEachKey(
      [&order](const Pellix::IntfId& id) { order.push_back(id.stringValue()); });
  EXPECT_EQ(order, (Texts{"Ethernet1/2", "Ethernet1/10", "Ethernet2", "Ethernet10"}));
}

}  // namespace
}  // namespace Qos
