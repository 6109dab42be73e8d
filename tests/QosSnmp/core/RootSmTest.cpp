#include "QosSnmp/core/RootSm.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "QosSnmp/QosSnmpTestSupport.h"
#include "QosSnmp/core/AclSliceHwStatus.h"
#include "QosSnmp/core/ServicePolicyConfig.h"
#include "QosSnmp/core/ServicePolicyStatus.h"
#include "kel/MutatorException.h"

namespace {

using QosSnmpTest::AgentTrace;
using QosSnmpTest::RingCapture;
using QosSnmpTest::TestSwitch;
using Texts = std::vector<std::string>;

// Only the root's own trace lines.
Texts rootLines(const AgentTrace& trace) {
  Texts lines;
  for (const std::string& line : trace.lines()) {
    if (line.rfind("8 RootSm::", 0) == 0 || line.rfind("8 EcnQueueCounterTableSm::deleteEcn", 0) == 0) {
      lines.push_back(line);
    }
  }
  return lines;
}

// Only the root's own ring-buffer entries.
Texts rootEntries(const RingCapture& ring) {
  Texts entries;
  for (const std::string& entry : ring.entries()) {
    if (entry.rfind("void QosSnmp::RootSm::", 0) == 0) {
      entries.push_back(entry);
    }
  }
  return entries;
}

class RootSmTest : public ::testing::Test {
 protected:
  // The switch always publishes its control-plane policy before the agent
  // starts.
  RootSmTest() { switch_.policyMap(Qos::mapControlPlane_, "copp-system-policy"); }

  Kel::Ptr<QosSnmp::RootSm> makeRoot() {
    return QosSnmp::rootSmFactory(switch_.qosConfig, switch_.qosStatus, switch_.qosHwStatus,
                                  switch_.qosSliceHwStatusDir, switch_.qosAclSliceHwStatusDir,
                                  switch_.qosMibConfig, switch_.allIntfStatusDir, switch_.qosHwCounter,
                                  switch_.qosMib, switch_.ecnCounterTable);
  }

  TestSwitch switch_;
};

TEST_F(RootSmTest, InitialScanTracesEveryHandlerInOrder) {
  switch_.cmapType(Qos::mapQos_);
  switch_.cmapType(Qos::mapControlPlane_);
  switch_.slice("FixedSystem");
  switch_.qosAclSliceHwStatusDir->entityIs("Acl1", Kel::make<Qos::AclSliceHwStatus>("Acl1"));
  const AgentTrace trace;
  const auto root = makeRoot();
  EXPECT_EQ(rootLines(trace), (Texts{
                                  "8 RootSm::handleInitialized()",
                                  "8 RootSm::handleCmapType( mapControlPlane )",
                                  "8 RootSm::handleCmapType( mapQos )",
                                  "8 RootSm::handleSlice( FixedSystem ) ",
                                  "8 RootSm::handlePmapType( mapControlPlane )",
                                  "8 RootSm::handleAclSlice( Acl1 ) ",
                              }));
}

TEST_F(RootSmTest, HandlersWriteTheirSignaturesToTheRingBuffer) {
  switch_.cmapType(Qos::mapQos_);
  switch_.slice("FixedSystem");
  const RingCapture ring;
  const auto root = makeRoot();
  root->handlePmapType(Qos::mapPbr_);
  root->addServicePolicyEntries(Pellix::IntfId(Kel::String("Ethernet1")));
  root->deleteServicePolicyEntries(Pellix::IntfId(Kel::String("Ethernet1")));
  root->addEcnQueueCounterEntries(Pellix::IntfId(Kel::String("Ethernet2")), 7);
  root->deleteEcnQueueCounterEntries(Pellix::IntfId(Kel::String("Ethernet2")), 7);
  switch_.qosAclSliceHwStatusDir->entityIs("Acl1", Kel::make<Qos::AclSliceHwStatus>("Acl1"));
  EXPECT_EQ(rootEntries(ring),
            (Texts{
                "void QosSnmp::RootSm::handleInitialized() []",
                "void QosSnmp::RootSm::handleCmapType(Qos::MapType) [i] 1",
                "void QosSnmp::RootSm::handleSlice(Kel::String) [p] FixedSystem",
                "void QosSnmp::RootSm::handlePmapType(Qos::MapType) [i] 0",
                "void QosSnmp::RootSm::handlePmapType(Qos::MapType) [i] 2",
                "void QosSnmp::RootSm::addServicePolicyEntries(Pellix::IntfId) [p] Ethernet1",
                "void QosSnmp::RootSm::deleteServicePolicyEntries(Pellix::IntfId) [p] Ethernet1",
                "void QosSnmp::RootSm::addEcnQueueCounterEntries(Pellix::IntfId, S32) [pi] Ethernet2 7",
                "void QosSnmp::RootSm::deleteEcnQueueCounterEntries(Pellix::IntfId, S32) [pi] Ethernet2 7",
                "void QosSnmp::RootSm::handleAclSlice(Kel::String) [p] Acl1",
            }));
}

TEST_F(RootSmTest, CmapTypeAndPmapTypeNotificationsReachTheirHandlers) {
  const auto root = makeRoot();
  const AgentTrace trace;
  switch_.cmapType(Qos::mapQos_);
  switch_.pmapType(Qos::mapQos_);
  switch_.qosStatus->cmapTypeDel(Qos::mapQos_);
  switch_.qosStatus->pmapTypeDel(Qos::mapQos_);
  EXPECT_EQ(rootLines(trace), (Texts{
                                  "8 RootSm::handleCmapType( mapQos )",
                                  "8 RootSm::handlePmapType( mapQos )",
                                  "8 RootSm::handleCmapType( mapQos )",
                                  "8 RootSm::handlePmapType( mapQos )",
                              }));
}

TEST_F(RootSmTest, SliceRemovalLeavesTheSliceStatusAsItWas) {
  const auto slice = switch_.slice("FixedSystem");
  const auto root = makeRoot();
  EXPECT_EQ(root->qosSliceHwStatus(), slice);
  switch_.qosSliceHwStatusDir->entityDel("FixedSystem");
  EXPECT_EQ(root->qosSliceHwStatus(), slice);
}

TEST_F(RootSmTest, LastSliceHandledWins) {
  switch_.slice("Linecard3");
  const auto root = makeRoot();
  const auto second = switch_.slice("Linecard4");
  EXPECT_EQ(root->qosSliceHwStatus(), second);
}

TEST_F(RootSmTest, AclSliceRemovalClearsTheAclSliceStatus) {
  const auto acl = Kel::make<Qos::AclSliceHwStatus>("Acl1");
  switch_.qosAclSliceHwStatusDir->entityIs("Acl1", acl);
  const auto root = makeRoot();
  EXPECT_EQ(root->qosAclSliceHwStatus(), acl);
  switch_.qosAclSliceHwStatusDir->entityDel("Acl1");
  EXPECT_FALSE(root->qosAclSliceHwStatus());
}

TEST_F(RootSmTest, DirectoryEntryOfAnotherTypeReadsAsAbsent) {
  switch_.qosSliceHwStatusDir->entityIs("odd", Kel::make<Qos::AclSliceHwStatus>("odd"));
  switch_.qosAclSliceHwStatusDir->entityIs("odd", Kel::make<Qos::SliceHwStatus>("odd"));
  const auto root = makeRoot();
  EXPECT_FALSE(root->qosSliceHwStatus());
  EXPECT_FALSE(root->qosAclSliceHwStatus());
}

TEST_F(RootSmTest, OnlyTheStatusIsNeededBesideTheMib) {
  const auto root = QosSnmp::rootSmFactory(nullptr, switch_.qosStatus, nullptr, nullptr, nullptr, nullptr,
                                           nullptr, nullptr, switch_.qosMib, nullptr);
  EXPECT_TRUE(root->initialized());
  ASSERT_NE(root->allIntfStatusDirSm(), nullptr);
  EXPECT_EQ(root->allIntfStatusDirSm()->allIntfStatusDir(), nullptr);
  EXPECT_FALSE(root->qosSliceHwStatus());
  EXPECT_TRUE(root->policyMapTablesSm().empty());
}

TEST_F(RootSmTest, SwitchedOffRootIgnoresNotifications) {
  const auto root = makeRoot();
  root->hasNotificationActiveIs(false);
  const AgentTrace trace;
  switch_.cmapType(Qos::mapQos_);
  switch_.slice("FixedSystem");
  EXPECT_TRUE(rootLines(trace).empty());
  root->hasNotificationActiveIs(true);
  switch_.cmapType(Qos::mapControlPlane_);
  EXPECT_EQ(rootLines(trace), Texts{"8 RootSm::handleCmapType( mapControlPlane )"});
}

TEST_F(RootSmTest, EcnQueueEntriesBeforeTheirMachineExistsDoNothing) {
  const auto root = makeRoot();
  const AgentTrace trace;
  root->ecnQueueCounterTableSmDel();
  const auto before = QosSnmpTest::mibRows(*switch_.qosMib);
  root->addEcnQueueCounterEntries(Pellix::IntfId(Kel::String("Ethernet1")), 3);
  root->deleteEcnQueueCounterEntries(Pellix::IntfId(Kel::String("Ethernet1")), 3);
  EXPECT_EQ(QosSnmpTest::mibRows(*switch_.qosMib), before);
  EXPECT_EQ(rootLines(trace), (Texts{
                                  "8 RootSm::addEcnQueueCounterEntries() Ethernet1",
                                  "8 EcnQueueCounterTableSm::deleteEcnQueueCounterEntries() Ethernet1",
                              }));
}

TEST_F(RootSmTest, ReleasingTheRootLeavesNoMachineOrReactorAlive) {
  switch_.interface("Ethernet1", 1);
  switch_.classMap(Qos::mapQos_, "cm-voice");
  switch_.policyMap(Qos::mapQos_, "pm-edge");
  switch_.slice("FixedSystem");
  switch_.qosAclSliceHwStatusDir->entityIs("Acl1", Kel::make<Qos::AclSliceHwStatus>("Acl1"));
  auto root = makeRoot();
  EXPECT_GT(Kel::AllocTrackTypeInfo::liveObjectsOf("QosSnmp::MatchSm"), 0);
  root = nullptr;
  for (const Kel::AllocTrackTypeInfo* info : Kel::AllocTrackTypeInfo::all()) {
    const bool agentType =
        info->name().rfind("QosSnmp::", 0) == 0 && info->name().find("Sm") != std::string::npos;
    if (agentType) {
      EXPECT_EQ(info->live(), 0) << info->name();
    }
  }
}

TEST_F(RootSmTest, BuildsEveryChildInItsPlace) {
  switch_.cmapType(Qos::mapQos_);
  switch_.slice("FixedSystem");
  const AgentTrace trace;
  const auto root = makeRoot();
  const Texts firsts{
      "8 RootSm::handleCmapType( mapQos )",        "8 ClassMapTableSm::handleInitialized()",
      "8 RootSm::handleSlice( FixedSystem ) ",     "8 PolicyMapTablesSm::handleInitialized()",
      "8 AllIntfStatusDirSm::handleInitialized()", "8 CoppStatsTableSm::handleAllEntries()",
      "8 QosStatsTableSm::handleInitialized()",    "8 CoppStaticSm::handleInitialized()",
      "8 EcnCounterTableSm::handleInitialized()",  "8 EcnQueueCounterTableSm::handleInitialized()"};
  Texts seen;
  for (const std::string& line : trace.lines()) {
    if (std::find(firsts.begin(), firsts.end(), line) != firsts.end() &&
        std::find(seen.begin(), seen.end(), line) == seen.end()) {
      seen.push_back(line);
    }
  }
  EXPECT_EQ(seen, firsts);
  EXPECT_NE(root->classMapTableSm().find(Qos::mapQos_), nullptr);
  EXPECT_NE(root->policyMapTablesSm().find(Qos::mapControlPlane_), nullptr);
  EXPECT_NE(root->servicePolicyTableSm(), nullptr);
  EXPECT_NE(root->allIntfStatusDirSm(), nullptr);
  EXPECT_NE(root->coppStatsTableSm(), nullptr);
  EXPECT_NE(root->qosStatsTableSm(), nullptr);
  EXPECT_NE(root->coppStaticSm(), nullptr);
  EXPECT_NE(root->ecnCounterTableSm(), nullptr);
  EXPECT_NE(root->ecnQueueCounterTableSm(), nullptr);
}

TEST_F(RootSmTest, WithoutASliceNoPolicyMapMachineExistsUntilAPmapTypeChanges) {
  switch_.pmapType(Qos::mapQos_);
  const auto root = makeRoot();
  EXPECT_TRUE(root->policyMapTablesSm().empty());
  switch_.policyMap(Qos::mapQos_, "pm-edge");
  EXPECT_EQ(root->policyMapTablesSm().size(), 0U);
  Kel::notifyMemberChanged<Qos::Status::PmapType>(*switch_.qosStatus, Qos::mapQos_);
  EXPECT_NE(root->policyMapTablesSm().find(Qos::mapQos_), nullptr);
}

TEST_F(RootSmTest, ClassMapTypeComesAndGoesWithItsMachine) {
  const auto root = makeRoot();
  switch_.cmapType(Qos::mapQos_);
  EXPECT_NE(root->classMapTableSm().find(Qos::mapQos_), nullptr);
  switch_.qosStatus->cmapTypeDel(Qos::mapQos_);
  EXPECT_EQ(root->classMapTableSm().find(Qos::mapQos_), nullptr);
}

TEST_F(RootSmTest, IgnoredMapTypeCreatesNoChild) {
  const auto root = makeRoot();
  switch_.classMap(Qos::mapPbr_, "cm-pbr");
  switch_.policyMap(Qos::mapPbr_, "pm-pbr");
  Kel::notifyMemberChanged<Qos::Status::PmapType>(*switch_.qosStatus, Qos::mapPbr_);
  EXPECT_EQ(root->classMapTableSm().find(Qos::mapPbr_), nullptr);
  EXPECT_EQ(root->policyMapTablesSm().find(Qos::mapPbr_), nullptr);
  EXPECT_TRUE(QosSnmpTest::mibRows(*switch_.qosMib).empty());
}

TEST_F(RootSmTest, PresentPmapTypeIsRebuiltOnEveryNotification) {
  switch_.slice("FixedSystem");
  switch_.policyMap(Qos::mapQos_, "pm-edge");
  const auto root = makeRoot();
  const QosSnmp::PolicyMapTablesSm* first = root->policyMapTablesSm().find(Qos::mapQos_);
  ASSERT_NE(first, nullptr);
  const Kel::S64 built = Kel::allocTrackTypeInfo<QosSnmp::PolicyMapTablesSm>().allocations();
  const AgentTrace trace;
  Kel::notifyMemberChanged<Qos::Status::PmapType>(*switch_.qosStatus, Qos::mapQos_);
  EXPECT_EQ(Kel::allocTrackTypeInfo<QosSnmp::PolicyMapTablesSm>().allocations(), built + 1);
  const Texts lines = trace.lines();
  const auto closed = std::find(lines.begin(), lines.end(), "8 PolicyMapTablesSm::doClose()");
  const auto rebuilt = std::find(lines.begin(), lines.end(), "8 PolicyMapTablesSm::handleInitialized()");
  EXPECT_LT(closed, rebuilt);
  EXPECT_NE(rebuilt, lines.end());
  EXPECT_EQ(QosSnmpTest::mibRows(*switch_.qosMib),
            (Texts{"policyMapTable (pm-edge, 1) pm-edge",
                   "policyMapTable (copp-system-policy, 0) copp-system-policy"}));
}

TEST_F(RootSmTest, RemovedPmapTypeDropsItsMachineAndRows) {
  switch_.slice("FixedSystem");
  switch_.policyMap(Qos::mapQos_, "pm-edge");
  const auto root = makeRoot();
  ASSERT_NE(root->policyMapTablesSm().find(Qos::mapQos_), nullptr);
  switch_.qosStatus->pmapTypeDel(Qos::mapQos_);
  EXPECT_EQ(root->policyMapTablesSm().find(Qos::mapQos_), nullptr);
  EXPECT_EQ(QosSnmpTest::mibRows(*switch_.qosMib),
            Texts{"policyMapTable (copp-system-policy, 0) copp-system-policy"});
}

TEST_F(RootSmTest, NewSliceRebuildsTheSliceDependentChildren) {
  switch_.slice("Linecard3");
  const auto root = makeRoot();
  const Kel::S64 stats = Kel::allocTrackTypeInfo<QosSnmp::QosStatsTableSm>().allocations();
  const Kel::S64 copp = Kel::allocTrackTypeInfo<QosSnmp::CoppStaticSm>().allocations();
  const auto second = switch_.slice("Linecard4");
  EXPECT_EQ(root->qosSliceHwStatus(), second);
  EXPECT_EQ(Kel::allocTrackTypeInfo<QosSnmp::QosStatsTableSm>().allocations(), stats + 1);
  EXPECT_EQ(Kel::allocTrackTypeInfo<QosSnmp::CoppStaticSm>().allocations(), copp + 1);
  EXPECT_EQ(root->qosStatsTableSm()->qosSliceHwStatus(), second);
}

TEST_F(RootSmTest, AclSliceRemovalRebuildsTheStatisticsDriverWithoutIt) {
  switch_.slice("FixedSystem");
  switch_.qosAclSliceHwStatusDir->entityIs("Acl1", Kel::make<Qos::AclSliceHwStatus>("Acl1"));
  const auto root = makeRoot();
  EXPECT_NE(root->qosStatsTableSm()->qosAclSliceHwStatus(), nullptr);
  switch_.qosAclSliceHwStatusDir->entityDel("Acl1");
  EXPECT_EQ(root->qosStatsTableSm()->qosAclSliceHwStatus(), nullptr);
}

TEST_F(RootSmTest, KeyedChildrenRefuseANullStatusNamingIt) {
  const auto root = makeRoot();
  try {
    root->classMapTableSmIs(nullptr, switch_.qosMib);
    FAIL() << "no exception";
  } catch (const Kel::MutatorArgNullPointerException& e) {
    EXPECT_EQ(e.argument(), "classMapTypeStatus");
  }
  EXPECT_THROW(root->policyMapTablesSmIs(nullptr, nullptr, nullptr, nullptr, switch_.qosMib),
               Kel::MutatorArgNullPointerException);
}

TEST_F(RootSmTest, KeyedChildWithOtherArgumentsIsRefused) {
  const auto cmapType = switch_.cmapType(Qos::mapQos_);
  const auto root = makeRoot();
  EXPECT_EQ(root->classMapTableSmIs(cmapType, switch_.qosMib), root->classMapTableSm().find(Qos::mapQos_));
  EXPECT_THROW(root->classMapTableSmIs(cmapType, Kel::make<QosSnmp::QosMib>()),
               Kel::MutatorReinstantiatingException);
}

// Service-policy lines of the root's relays.
Texts servicePolicyLines(const AgentTrace& trace) {
  Texts lines;
  for (const std::string& line : trace.lines()) {
    if (line.find("ServicePolicyTableSm::doAddOrRemoveEntry( ") != std::string::npos ||
        line.find("ServicePolicyTableSm::doMaybeAddOrRemoveEntry") != std::string::npos) {
      lines.push_back(line);
    }
  }
  return lines;
}

class RootSmServicePolicyTest : public RootSmTest {
 protected:
  // Policy "pm-in" applied to `intf` (ifIndex `ifIndex`) by configuration
  // and reported by the status.
  void applied(const std::string& intf, Kel::S32 ifIndex) {
    switch_.interface(intf, ifIndex);
    const Pellix::IntfId id{Kel::String(intf)};
    auto config = Kel::make<Qos::ServicePolicyConfig>(key_);
    config->intfIdsIs(id, true);
    switch_.qosConfig->servicePolicyConfigIs(key_, config);
    auto status = Kel::make<Qos::ServicePolicyStatus>(key_);
    status->intfIdsIs(Qos::IntfPairKey(id, Pellix::IntfId()), true);
    switch_.qosStatus->servicePolicyStatusIs(key_, status);
  }

  const Qos::ServicePolicyKey key_{Qos::mapQos_, Qos::directionInput_, "pm-in"};
};

TEST_F(RootSmServicePolicyTest, AddGoesThroughThePortChannelRuleForConfiguredPolicies) {
  applied("Ethernet1", 1);
  const auto root = makeRoot();
  const AgentTrace trace;
  root->addServicePolicyEntries(Pellix::IntfId(Kel::String("Ethernet1")));
  EXPECT_EQ(
      servicePolicyLines(trace),
      (Texts{"8 ServicePolicyTableSm::doAddOrRemoveEntry( Ethernet1, mapQos/directionInput/pm-in, 1 )",
             "8 ServicePolicyTableSm::doMaybeAddOrRemoveEntry( Ethernet1, mapQos/directionInput/pm-in )",
             "4 ServicePolicyTableSm::doMaybeAddOrRemoveEntry(): Is not a lagIntf"}));
  EXPECT_NE(switch_.qosMib->servicePolicyTable(QosSnmp::ServicePolicyTableIndex(1, Qos::directionInput_)),
            nullptr);
}

TEST_F(RootSmServicePolicyTest, DeleteRemovesConfiguredPoliciesDirectly) {
  applied("Ethernet1", 1);
  const auto root = makeRoot();
  const AgentTrace trace;
  root->deleteServicePolicyEntries(Pellix::IntfId(Kel::String("Ethernet1")));
  EXPECT_EQ(
      servicePolicyLines(trace),
      (Texts{"8 ServicePolicyTableSm::doAddOrRemoveEntry( Ethernet1, mapQos/directionInput/pm-in, 0 )",
             "8 ServicePolicyTableSm::doAddOrRemoveEntry( Ethernet1, mapQos/directionInput/pm-in, 0 )"}));
  EXPECT_EQ(switch_.qosMib->servicePolicyTable(QosSnmp::ServicePolicyTableIndex(1, Qos::directionInput_)),
            nullptr);
}

TEST_F(RootSmServicePolicyTest, InterfaceGainingItsIndexGetsItsRows) {
  applied("Port-Channel10", -1);
  const auto root = makeRoot();
  EXPECT_TRUE(switch_.qosMib->servicePolicyTable().empty());
  auto status = QosSnmpTest::TestSwitch::mutableOf(
      switch_.allIntfStatusDir->intfStatus(Pellix::IntfId(Kel::String("Port-Channel10"))));
  status->snmpIfIndexIs(1000010);
  Kel::notifyMemberChanged<Interface::AllIntfStatusDir::IntfStatus>(*switch_.allIntfStatusDir,
                                                                    status->intfId());
  EXPECT_NE(
      switch_.qosMib->servicePolicyTable(QosSnmp::ServicePolicyTableIndex(1000010, Qos::directionInput_)),
      nullptr);
  switch_.allIntfStatusDir->intfStatusDel(status->intfId());
  EXPECT_TRUE(switch_.qosMib->servicePolicyTable().empty());
}

TEST_F(RootSmServicePolicyTest, WithoutTheServicePolicyMachineNothingHappens) {
  applied("Ethernet1", 1);
  const auto root = makeRoot();
  root->servicePolicyTableSmDel();
  const AgentTrace trace;
  root->addServicePolicyEntries(Pellix::IntfId(Kel::String("Ethernet1")));
  root->deleteServicePolicyEntries(Pellix::IntfId(Kel::String("Ethernet1")));
  EXPECT_TRUE(servicePolicyLines(trace).empty());
  EXPECT_TRUE(switch_.qosMib->servicePolicyTable().empty());
}

TEST(RootSmDeathTest, SecondInitializationAborts) {
  TestSwitch testSwitch;
  testSwitch.policyMap(Qos::mapControlPlane_, "copp-system-policy");
  const auto root = QosSnmp::rootSmFactory(nullptr, testSwitch.qosStatus, nullptr, nullptr, nullptr, nullptr,
                                           nullptr, nullptr, testSwitch.qosMib, nullptr);
  EXPECT_DEATH(root->handleInitialized(),
               "RootSm.cpp:[0-9]+: .*handleInitialized.*: Assertion `!initialized\\(\\)' failed");
}

TEST(RootSmDeathTest, HandlersBeforeInitializationAbort) {
  TestSwitch testSwitch;
  testSwitch.policyMap(Qos::mapControlPlane_, "copp-system-policy");
  const auto root = QosSnmp::rootSmFactory(nullptr, testSwitch.qosStatus, nullptr, nullptr, nullptr, nullptr,
                                           nullptr, nullptr, testSwitch.qosMib, nullptr);
  root->initializedIs(false);
  EXPECT_DEATH(root->handleCmapType(Qos::mapQos_), "Assertion `initialized\\(\\)' failed");
  EXPECT_DEATH(root->handlePmapType(Qos::mapQos_), "Assertion `initialized\\(\\)' failed");
}

}  // namespace
