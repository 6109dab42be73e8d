// Loads the agent plug-in the way the host does and builds a root through
// the entry point the module registers when it is loaded.
#include <dlfcn.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/core/RootSm.h"
#include "kel/ModuleRegistry.h"

namespace {

using QosSnmpTest::TestSwitch;

TEST(QosSnmpAgentModuleTest, LoadingRegistersTypesAndFactoryThatBuildsAWorkingRoot) {
  Kel::ModuleRegistry& registry = Kel::ModuleRegistry::instance();
  ASSERT_EQ(registry.module("QosSnmp"), nullptr);
  ASSERT_EQ(registry.entryPoint<QosSnmp::RootSmFactory>("QosSnmp::rootSmFactory"), nullptr);

  void* module = ::dlopen(QOS_SNMP_AGENT_MODULE, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(module, nullptr) << ::dlerror();

  const Kel::ModuleTypeTable* table = registry.module("QosSnmp");
  ASSERT_NE(table, nullptr);
  EXPECT_NE(std::find(table->types.begin(), table->types.end(), "QosSnmp::RootSm"), table->types.end());
  auto* factory = registry.entryPoint<QosSnmp::RootSmFactory>("QosSnmp::rootSmFactory");
  ASSERT_NE(factory, nullptr);

  TestSwitch testSwitch;
  testSwitch.policyMap(Qos::mapControlPlane_, "copp-system-policy");
  testSwitch.interface("Ethernet1", 1);
  {
    const Kel::Ptr<QosSnmp::RootSm> root = factory(
        testSwitch.qosConfig, testSwitch.qosStatus, testSwitch.qosHwStatus, testSwitch.qosSliceHwStatusDir,
        testSwitch.qosAclSliceHwStatusDir, testSwitch.qosMibConfig, testSwitch.allIntfStatusDir,
        testSwitch.qosHwCounter, testSwitch.qosMib, testSwitch.ecnCounterTable);
    ASSERT_TRUE(root);
    EXPECT_TRUE(root->initialized());
    EXPECT_TRUE(root->hasNotificationActive());
    testSwitch.interface("Ethernet2", 2);
  }
  EXPECT_EQ(QosSnmpTest::mibRows(*testSwitch.qosMib),
            (std::vector<std::string>{"intfIdToifIndex Ethernet1 1", "intfIdToifIndex Ethernet2 2"}));
}

TEST(QosSnmpAgentModuleTest, SecondLoadRegistersNothingNew) {
  void* first = ::dlopen(QOS_SNMP_AGENT_MODULE, RTLD_NOW | RTLD_LOCAL);
  void* second = ::dlopen(QOS_SNMP_AGENT_MODULE, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first, second);
  EXPECT_EQ(Kel::ModuleRegistry::instance().modules(), std::vector<std::string>{"QosSnmp"});
}

}  // namespace
